export type SignPadErrorCode =
  /** Nothing answers at the port. */
  | 'service-not-running'
  /** The browser refuses the page access to programs on this computer. */
  | 'permission-denied'
  /** The browser lets a page from https:// open no unencrypted connection, not even to this computer. */
  | 'mixed-content'
  /** There is no WebSocket here: the browser is too old, or Node needs one given. */
  | 'no-websocket'
  /** The connection broke, or is not there, or was closed. */
  | 'connection-lost'
  /** No reply, or no connection, in time. */
  | 'timeout'
  /** A value that the request cannot carry; nothing was sent. */
  | 'invalid-argument'
  /** The service does not know the command: it is older than this client. */
  | 'invalid-request'
  /** `open` found no pad, or `watch` lost it. */
  | 'pad-missing'
  /** The pad's library could not save a file. */
  | 'device-error'
  /** What answers does not speak the service's language. */
  | 'protocol';

/** Every error this client raises by itself. `code` tells the cases apart, `message` is for a developer's eyes. */
export class SignPadError extends Error {
  override readonly name = 'SignPadError';
  readonly code: SignPadErrorCode;
  readonly cause?: unknown;

  constructor(code: SignPadErrorCode, message: string, options?: { cause?: unknown }) {
    super(message);
    this.code = code;
    if (options) this.cause = options.cause;
  }
}

/** `expected` completes the sentence "`name` must be …". */
export function refuse(name: string, expected: string): never {
  throw new SignPadError('invalid-argument', `${name} must be ${expected}`);
}

export const malformed = (what: string) => new SignPadError('protocol', `The service sent ${what}`);

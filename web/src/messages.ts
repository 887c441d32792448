// What a message of the service is: a reply, a push, or neither.
import { COMMANDS } from './commands.js';
import { number, picture } from './decoders.js';
import { SignPadError } from './errors.js';
import type { Emit } from './events.js';

export interface Message {
  api: string;
  result: string;
}

export const INVALID_REQUEST = 'Invalid API request';

/** Undefined for what is no message of the service. */
export function parseMessage(data: string): Message | undefined {
  try {
    const { API: api, Result: result } = JSON.parse(data);
    return typeof api === 'string' && typeof result === 'string' ? { api, result } : undefined;
  } catch {
    return undefined;
  }
}

const COMMAND_NAMES = new Set(COMMANDS.map(({ api }) => api));

export const isCommand = (api: string) => COMMAND_NAMES.has(api);

/** `couldBe` tells whether a result can be a push at all. */
interface Push {
  couldBe(result: string): boolean;
  emit(result: string, emit: Emit): void;
}

/** The two messages the service sends unasked carry the names of commands and look exactly like their replies. */
const PUSHES = new Map<string, Push>([
  ['GetDeviceConfirmOrCancelKeyStatus', {
    couldBe: (result) => result === '0' || result === '1',
    emit: (result, emit) => emit('key', number(result)),
  }],
  ['GetInks', {
    couldBe: (result) => result !== '',
    emit: (result, emit) => emit('image', picture(result)),
  }],
]);

export const isPushed = (api: string) => PUSHES.has(api);

/** Where among the results of one name the reply is: it cannot be a push, or else nothing tells them apart. */
export function replyAmong(api: string, results: readonly string[]): number {
  const surely = results.findIndex((result) => !PUSHES.get(api)?.couldBe(result));
  return Math.max(surely, 0);
}

export function emitPush({ api, result }: Message, emit: Emit): void {
  try {
    PUSHES.get(api)?.emit(result, emit);
  } catch (error) {
    if (!(error instanceof SignPadError)) throw error; // a malformed push concerns no caller
  }
}

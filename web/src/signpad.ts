import { commands } from './commands.js';
import type { CallOptions, Command, CommandMethods } from './commands.js';
import { milliseconds } from './encoders.js';
import type { ModelId } from './encoders.js';
import { SignPadError } from './errors.js';
import { DetailedEvent } from './events.js';
import type { SignPadEvent, SignPadEventMap } from './events.js';
import { RequestLine } from './line.js';
import { checkedOptions } from './options.js';
import type { ConnectOptions, Settings } from './options.js';
import { openSocket } from './socket.js';
import { delay } from './surroundings.js';
import { followPad } from './watch.js';
import type { Progress, WatchOptions } from './watch.js';

const POLL_INTERVAL_MS = 40;

/** How a connection ends that the user did not allow. */
const POLICY_VIOLATION = 1008;

export interface PadDescription {
  model: ModelId;
  width: number;
  height: number;
}

export interface SignPad extends CommandMethods {
  addEventListener<Type extends keyof SignPadEventMap>(
    type: Type,
    listener: (this: SignPad, event: SignPadEvent<SignPadEventMap[Type]>) => unknown,
    options?: boolean | AddEventListenerOptions,
  ): void;
  addEventListener(type: string, listener: EventListenerOrEventListenerObject | null,
    options?: boolean | AddEventListenerOptions): void;
  removeEventListener<Type extends keyof SignPadEventMap>(
    type: Type,
    listener: (this: SignPad, event: SignPadEvent<SignPadEventMap[Type]>) => unknown,
    options?: boolean | EventListenerOptions,
  ): void;
  removeEventListener(type: string, listener: EventListenerOrEventListenerObject | null,
    options?: boolean | EventListenerOptions): void;
}

/** One connection to the service. It carries one request at a time; further calls wait in line. */
export class SignPad extends EventTarget {
  private readonly settings: Settings;
  private readonly line: RequestLine;
  private readonly closing = new AbortController();

  static async connect(options: ConnectOptions = {}): Promise<SignPad> {
    const pad = new SignPad(options);
    await pad.openLine(options.signal);
    return pad;
  }

  private constructor(options: ConnectOptions) {
    super();
    this.settings = checkedOptions(options);
    this.line = new RequestLine(this.settings.port, this.settings.timeout, (type, detail) => this.emit(type, detail));
  }

  /** Where the service is reached. */
  get url(): string {
    return `ws://${this.settings.host}:${this.settings.port}/`;
  }

  get connected(): boolean {
    return this.line.connected;
  }

  /** Ends the connection for good; calls not yet answered fail with `connection-lost`. Leaves the pad as it is. */
  close(): void {
    this.closing.abort();
    this.line.cut(new SignPadError('connection-lost', 'The connection was closed'))?.close();
  }

  /** `initialDevice` that raises `pad-missing` when no such pad answers. */
  async open({ model, width, height }: PadDescription, options?: CallOptions): Promise<void> {
    if (!await this.initialDevice({ id: model, width, height }, options)) {
      throw new SignPadError('pad-missing', 'No pad of this model answers');
    }
  }

  /**
   * Follows the signing: yields at once, after each change of ink or key, and after each `clear` of this client, until
   * the loop is left or the signal aborts. Raises `pad-missing` when the pad is gone.
   */
  async *watch({ interval = POLL_INTERVAL_MS, signal }: WatchOptions = {}): AsyncGenerator<Progress, void, void> {
    try {
      const options = signal ? { signal } : {};
      yield* followPad(this, () => this.line.freshStarts, milliseconds(interval, 'interval'), options);
    } catch (error) {
      if (!signal?.aborted) throw error;
    }
  }

  /** Carries one command of the table out; each has a method that calls this. */
  private call(command: Command<unknown>, argument: unknown, options?: CallOptions): Promise<unknown> {
    return this.line.call(command, argument, options);
  }

  private emit<Type extends keyof SignPadEventMap>(type: Type, detail: SignPadEventMap[Type]): void {
    this.dispatchEvent(new DetailedEvent(type, detail));
  }

  private async openLine(signal?: AbortSignal): Promise<void> {
    const socket = await openSocket(this.settings, this.url, signal);
    socket.onclose = (event: { code: number }) => this.lost(event);
    this.line.carryOver(socket);
  }

  private lost({ code }: { code: number }): void {
    const isTurnedAway = code === POLICY_VIOLATION;
    const error = isTurnedAway
      ? new SignPadError('permission-denied', `The user does not let this page use ${this.url}`)
      : new SignPadError('connection-lost', `The connection to ${this.url} was lost`);
    this.line.cut(error);
    const willReconnect = this.settings.reconnect && !isTurnedAway; // it would have the user asked again
    this.emit('disconnect', { error, willReconnect });
    if (willReconnect) this.reopen();
  }

  /** Tries again until it works or the client is closed, waiting twice as long each time. */
  private async reopen(): Promise<void> {
    const { reconnectDelay, maxReconnectDelay } = this.settings;
    const { signal } = this.closing;
    for (let attempt = 1; !signal.aborted && !this.connected; ++attempt) {
      const wait = Math.min(reconnectDelay * 2 ** (attempt - 1), maxReconnectDelay);
      this.emit('reconnecting', { attempt, delay: wait });
      await delay(wait, signal);
      await this.openLine(signal).catch(() => undefined);
      if (this.connected) this.emit('reconnect', { attempt });
    }
  }

  static {
    for (const [name, command] of Object.entries<Command<unknown>>(commands)) {
      const method = command.parameters.length === 0
        ? function (this: SignPad, options?: CallOptions) { return this.call(command, undefined, options); }
        : function (this: SignPad, argument: unknown, options?: CallOptions) {
          return this.call(command, argument, options);
        };
      Object.defineProperty(this.prototype, name, { value: method, writable: true, configurable: true });
    }
  }
}

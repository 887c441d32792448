// The requests of one connection: one on the wire at a time, the others wait in line.
import type { CallOptions, Command } from './commands.js';
import { milliseconds } from './encoders.js';
import { SignPadError, malformed } from './errors.js';
import type { Emit } from './events.js';
import { INVALID_REQUEST, emitPush, isCommand, isPushed, parseMessage, replyAmong } from './messages.js';
import type { Message } from './messages.js';
import type { Socket } from './options.js';
import { reasonOf } from './surroundings.js';

interface Request {
  readonly api: string;
  readonly text: string;
  /** Results of this request's name, while it is not known which of them is its reply. */
  readonly heard: string[];
  /** The number of the binary message that was sent behind it. */
  fence?: number;
  fail(error: unknown): void;
  succeed(result: string): void;
}

/** After these the pad's ink and key begin anew. */
const FRESH_STARTS = new Set(['Clear', 'InitialDevice', 'UninitialDevice']);

export class RequestLine {
  /** How often this client has emptied, opened or closed the pad. */
  freshStarts = 0;
  private socket: Socket | null = null;
  private waiting: Request[] = [];
  private current: Request | null = null;
  private fences = 0;

  constructor(private readonly port: number, private readonly timeout: number, private readonly emit: Emit) {}

  get connected(): boolean {
    return this.socket !== null;
  }

  carryOver(socket: Socket): void {
    socket.onmessage = (event: { data: unknown }) => this.receive(event.data);
    this.socket = socket;
  }

  /** Without a socket every request fails. Returns the one that was used. */
  cut(error: SignPadError): Socket | null {
    const { socket, waiting, current } = this;
    if (socket) socket.onclose = socket.onmessage = null;
    this.socket = this.current = null;
    this.waiting = [];
    for (const request of current ? [current, ...waiting] : waiting) request.fail(error);
    return socket;
  }

  /** Sends one command and resolves with its decoded result. */
  call(command: Command<unknown>, argument: unknown, options: CallOptions | null | undefined): Promise<unknown> {
    return new Promise((resolve, reject) => {
      const { timeout = this.timeout, signal } = options ?? {};
      milliseconds(timeout, 'timeout');
      if (signal?.aborted) return reject(reasonOf(signal));
      const { api } = command;
      // The service compares this prefix letter by letter, whatever host name the connection went to.
      const text = `ws://localhost:${this.port}/MVSignSDK/${api}${command.query(argument)}`;
      if (!this.socket) throw new SignPadError('connection-lost', 'There is no connection to the service');
      const settle = (act: () => void) => {
        clearTimeout(timer);
        signal?.removeEventListener('abort', aborted);
        act();
      };
      const request: Request = {
        api, text, heard: [],
        fail: (error) => settle(() => reject(error)),
        succeed: (result) => settle(() => resolve(command.decode(result, argument))),
      };
      const aborted = () => this.abandon(request, reasonOf(signal as AbortSignal));
      const timer = setTimeout(() => this.abandon(request,
        new SignPadError('timeout', `${api} was not answered within ${timeout} ms`)), timeout);
      signal?.addEventListener('abort', aborted);
      this.waiting.push(request);
      this.sendNext();
    });
  }

  /**
   * Gives up on a request. One that was sent still holds the line until its reply has come, so that a late reply
   * is never taken for the answer to another request.
   */
  private abandon(request: Request, error: unknown): void {
    this.waiting = this.waiting.filter((other) => other !== request);
    request.fail(error);
  }

  private sendNext(): void {
    const request = this.current ? undefined : this.waiting.shift();
    if (!request || !this.socket) return;
    this.current = request;
    this.socket.send(request.text);
    if (isPushed(request.api)) {
      // The service echoes binary messages in their turn: once this one is back, the reply must have come.
      request.fence = ++this.fences;
      this.socket.send(Uint32Array.of(request.fence));
    }
    this.emit('message', { direction: 'sent', text: request.text }); // last: a listener may close the connection
  }

  private finish(request: Request, act: () => void): void {
    this.current = null;
    try {
      act();
    } catch (error) {
      request.fail(error);
    }
    this.sendNext();
  }

  private receive(data: unknown): void {
    if (typeof data !== 'string') return this.receiveEcho(data as ArrayBuffer);
    this.emit('message', { direction: 'received', text: data });
    const message = parseMessage(data);
    const request = this.current;
    if (request && message && [request.api, INVALID_REQUEST].includes(message.api)) {
      this.receiveAnswer(request, message);
    } else if (message && isPushed(message.api)) {
      emitPush(message, this.emit);
    } else if (request && (!message || isCommand(message.api))) {
      this.finish(request, () => request.fail(malformed(`something that does not answer ${request.api}`)));
    } // what is named like no command concerns nobody: a later service may have further pushes
  }

  private receiveAnswer(request: Request, { api, result }: Message): void {
    if (FRESH_STARTS.has(api)) this.freshStarts += 1;
    if (api === INVALID_REQUEST) {
      this.finish(request, () => request.fail(new SignPadError('invalid-request',
        `The service does not know ${request.api}: it is older than this client`)));
    } else if (request.fence) {
      request.heard.push(result);
    } else {
      this.finish(request, () => request.succeed(result));
    }
  }

  /**
   * A request whose reply looks like a push is complete. Of several messages of its name, the reply is one that
   * cannot be a push; if all can, nothing tells them apart and the first is taken. The others are pushes.
   */
  private receiveEcho(data: ArrayBuffer): void {
    const request = this.current;
    if (!request?.fence || data.byteLength !== 4 || new Uint32Array(data)[0] !== request.fence) return;
    const { api, heard } = request;
    const [reply] = heard.splice(replyAmong(api, heard), 1);
    this.finish(request, () => reply === undefined
      ? request.fail(malformed(`no reply to ${api}`))
      : request.succeed(reply));
    for (const result of heard) emitPush({ api, result }, this.emit);
  }
}

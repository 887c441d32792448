import { milliseconds } from './encoders.js';
import { SignPadError, refuse } from './errors.js';
import { surroundings } from './surroundings.js';

/** The part of a WebSocket class that the client uses; the browser's and the `ws` package's fit. */
export type WebSocketClass = new (url: string) => Socket;

export interface Socket {
  binaryType: any;
  readonly readyState: number;
  readonly CONNECTING: number;
  onopen: any;
  onclose: any;
  onerror: any;
  onmessage: any;
  send(data: string | Uint32Array<ArrayBuffer>): void;
  close(): void;
}

export interface ConnectOptions {
  /** Default 8089. */
  port?: number;
  /** Default 'localhost'. */
  host?: string;
  /** Milliseconds for the connection and for each call, waiting in line included. Default 10000. */
  timeout?: number;
  /** Milliseconds to wait on while the browser may be asking the user for permission to connect. Default 60000. */
  promptTimeout?: number;
  /** Connect again after the connection broke. Default true. */
  reconnect?: boolean;
  /** Milliseconds before the first attempt; doubled for each further one. Default 500. */
  reconnectDelay?: number;
  /** The longest pause between two attempts in milliseconds. Default 10000. */
  maxReconnectDelay?: number;
  /** Default: the global WebSocket. */
  WebSocket?: WebSocketClass;
  /** Gives up the first connection; the call rejects with the signal's reason. */
  signal?: AbortSignal;
}

export type Settings = Required<Omit<ConnectOptions, 'signal'>>;

function webSocketClass(given: WebSocketClass | undefined): WebSocketClass {
  if (given !== undefined && typeof given !== 'function') refuse('WebSocket', 'a class');
  const found = given ?? surroundings.WebSocket as WebSocketClass | undefined;
  if (!found) throw new SignPadError('no-websocket', 'There is no WebSocket here: give one to connect()');
  return found;
}

/** The options with every default; what makes no sense is refused. */
export function checkedOptions(options: ConnectOptions): Settings {
  const settings = {
    port: 8089, host: 'localhost', timeout: 10_000, promptTimeout: 60_000, reconnect: true, reconnectDelay: 500,
    maxReconnectDelay: 10_000, ...given(options),
  };
  const { port, timeout, promptTimeout, reconnectDelay, maxReconnectDelay } = settings;
  if (!Number.isInteger(port) || port < 1 || port > 65535) refuse('port', 'a number from 1 to 65535');
  for (const [name, value] of Object.entries({ timeout, promptTimeout, reconnectDelay, maxReconnectDelay })) {
    milliseconds(value, name);
  }
  return { ...settings, WebSocket: webSocketClass(options.WebSocket) };
}

/** Without what is undefined: that means the default. */
function given<Options extends object>(options: Options): Options {
  const whole = { ...options };
  for (const name of Object.keys(whole) as (keyof Options)[]) if (whole[name] === undefined) delete whole[name];
  return whole;
}

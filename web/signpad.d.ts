/** Device IDs of the pad models. */
export declare const Model: Readonly<{ Alder: 2; Birch: 5; Cedar: 7; Maple: 3; Rowan: 4 }>;
export type ModelId = (typeof Model)[keyof typeof Model];

/** What `getDeviceConfirmOrCancelKeyStatus` reads once a key was pressed; any other value: none was. */
export declare const KeyStatus: Readonly<{ cancel: 0; confirm: 1 }>;

/** The applications that have signature settings of their own: writer, spreadsheet, presentation. */
export type WPSApplication = 'WPS' | 'ET' | 'WPP';

export interface DecodedPoint {
  x: number;
  y: number;
  /** True on the last point of a stroke. */
  strokeEnd: boolean;
}

export interface InkPoint extends DecodedPoint {
  pressure: number;
  /** The point's time, in the pad's own notation. */
  time: string;
}

export interface WPSSettings {
  /** Stamp date and time onto the picture. */
  dateTime: boolean;
  autoFit: boolean;
  penWidth: number;
  /** The signer's name; must not contain '&' or '='. */
  name: string;
}

export type SignPadErrorCode =
  /** Nothing answers at the port. */
  | 'service-not-running'
  /** The browser refuses the page access to programs on this computer. */
  | 'permission-denied'
  /** The connection broke, or is not there, or was closed. */
  | 'connection-lost'
  /** No reply, or no connection, in time. */
  | 'timeout'
  /** A value that the request cannot carry; nothing was sent. */
  | 'invalid-argument'
  /** The service refused the request. */
  | 'invalid-request'
  /** `open` found no pad, or `watch` lost it. */
  | 'pad-missing'
  /** The pad's library could not save a file. */
  | 'device-error'
  /** What answers does not speak the service's language. */
  | 'protocol';

export declare class SignPadError extends Error {
  constructor(code: SignPadErrorCode, message: string, options?: ErrorOptions);
  readonly name: 'SignPadError';
  readonly code: SignPadErrorCode;
}

/** Binary data as the service delivers it: base64 text, most often a picture. */
export declare class SignPadData {
  constructor(base64: string);
  readonly base64: string;
  readonly bytes: Uint8Array<ArrayBuffer>;
  /** Read off the data: image/png, image/jpeg, image/bmp, image/svg+xml or application/octet-stream. */
  readonly mediaType: string;
  readonly blob: Blob;
  readonly dataURL: string;
}

/** The part of a WebSocket class that the client uses; the browser's and the `ws` package's fit. */
export type WebSocketClass = new (url: string) => {
  binaryType: any;
  readonly readyState: number;
  readonly CONNECTING: number;
  onopen: any;
  onclose: any;
  onerror: any;
  onmessage: any;
  send(data: string | Uint32Array<ArrayBuffer>): void;
  close(): void;
};

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

export interface CallOptions {
  /** Milliseconds, in place of the connection's. */
  timeout?: number;
  /** Gives up waiting; the call rejects with the signal's reason. A command already sent is carried out. */
  signal?: AbortSignal;
}

export interface PadDescription {
  model: ModelId;
  width: number;
  height: number;
}

export interface WatchOptions {
  /** Milliseconds between two looks at the pad. Default 40. */
  interval?: number;
  /** Ends the loop without an error. */
  signal?: AbortSignal;
}

export interface Progress {
  points: InkPoint[];
  /** See `KeyStatus`. */
  key: number;
}

export interface SignPadEventMap {
  /** A key of the pad was pressed: its status. */
  key: number;
  /** The picture while the signer writes. */
  image: SignPadData | null;
  /** Every text that goes over the connection, for logs. */
  message: { direction: 'sent' | 'received'; text: string };
  disconnect: { error: SignPadError; willReconnect: boolean };
  reconnecting: { attempt: number; delay: number };
  /** Connected again. The service may be a new one: open the pad again. */
  reconnect: { attempt: number };
}

export interface SignPadEvent<Detail> extends Event {
  readonly detail: Detail;
}

/**
 * One connection to the service. It carries one request at a time; further calls wait in line. Every method may raise
 * a `SignPadError`: `connection-lost`, `timeout`, `invalid-argument`, `invalid-request`, `protocol`.
 */
export declare class SignPad extends EventTarget {
  static connect(options?: ConnectOptions): Promise<SignPad>;
  private constructor();

  readonly url: string;
  readonly connected: boolean;

  /** Ends the connection for good; leaves the pad as it is. */
  close(): void;

  /** `initialDevice` that raises `pad-missing` when no such pad answers. */
  open(pad: PadDescription, options?: CallOptions): Promise<void>;

  /** Yields at once, after each change of ink or key, and after each `clear` of this client. Raises `pad-missing` when the pad is gone. */
  watch(options?: WatchOptions): AsyncGenerator<Progress, void, void>;

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

  // The pad

  /** False: no such pad answers. Opening closes the pad that was open before, for all clients. */
  initialDevice(pad: { id: ModelId; width: number; height: number }, options?: CallOptions): Promise<boolean>;
  uninitialDevice(options?: CallOptions): Promise<boolean>;
  isValid(options?: CallOptions): Promise<boolean>;
  /** Removes the ink. */
  clear(options?: CallOptions): Promise<void>;
  /** See `KeyStatus`; -1 while no pad is open. */
  getDeviceConfirmOrCancelKeyStatus(options?: CallOptions): Promise<number>;
  openLCD(options?: CallOptions): Promise<void>;
  closeLCD(options?: CallOptions): Promise<void>;
  displayDeviceInfoInLCD(show: boolean, options?: CallOptions): Promise<void>;
  /** Null while no pad is open. Type 1: whether the pad is connected. */
  getDeviceInfo(type: 1, options?: CallOptions): Promise<boolean | null>;
  getDeviceInfo(type: 2 | 3 | 4, options?: CallOptions): Promise<[number, number] | null>;
  getDeviceInfo(type: number, options?: CallOptions): Promise<string | boolean | [number, number] | null>;
  versionID(options?: CallOptions): Promise<string>;
  padID(options?: CallOptions): Promise<string>;
  penID(options?: CallOptions): Promise<string>;
  getAboutInfo(options?: CallOptions): Promise<string>;

  // The pen

  setPenWidth(width: number, options?: CallOptions): Promise<void>;
  /** True: the stroke's width follows the pressure. */
  setPenStyle(pressure: boolean, options?: CallOptions): Promise<void>;
  setPenColor(color: { r: number; g: number; b: number }, options?: CallOptions): Promise<void>;

  // The ink

  getSize(options?: CallOptions): Promise<number>;
  getPointer(options?: CallOptions): Promise<InkPoint[]>;
  /** Null: no ink, or the same picture as the last one that any client fetched by one of these three. */
  getInks(options?: CallOptions): Promise<SignPadData | null>;
  getOpaqueInks(options?: CallOptions): Promise<SignPadData | null>;
  wpsGetInks(options?: CallOptions): Promise<SignPadData | null>;
  /** The drawing in one of the pad library's formats, each time it is asked for. Null: none. */
  encode(type: number, options?: CallOptions): Promise<SignPadData | null>;
  getSVGImageBase64Data(options?: CallOptions): Promise<SignPadData | null>;
  /** Margin around the ink in saved pictures; 0 and 0: the whole pad, a negative value: no change. */
  setClip(margin: { width: number; height: number }, options?: CallOptions): Promise<void>;
  /** Pushes of `key` and `image` to every client; false: the model has none. */
  enableRealtimeSigningNotification(type: number, options?: CallOptions): Promise<boolean>;

  // Files on the service's machine

  /** The path of the saved picture; raises `device-error`. Null while no pad is open. */
  saveDrawingImage(file: { type: number; dpi: number; path: string }, options?: CallOptions): Promise<string | null>;
  /** Writes the data to /tmp/ + path. The points of ink data (type 6), null for every other type. */
  decode(file: { type: number; path?: string; data: string | SignPadData },
    options?: CallOptions): Promise<DecodedPoint[] | null>;
  getDecodeFilePath(options?: CallOptions): Promise<string>;

  // The WPS office suite

  getWPSSettings(app: WPSApplication, options?: CallOptions): Promise<WPSSettings>;
  /** Replaces all four settings. */
  updateWPSSettings(settings: WPSSettings & { app: WPSApplication }, options?: CallOptions): Promise<void>;
  /** The path of the finished picture; raises `device-error`. Null while no pad is open. */
  wpsSignConfirmed(app: WPSApplication, options?: CallOptions): Promise<string | null>;
  initialWPSSignCanvas(size: { width: number; height: number }, options?: CallOptions): Promise<boolean>;

  // The fingerprint sensor

  /** Null: no sensor, or the same picture as the last one that any client fetched. */
  getFingerPrintImage(imageOnly: boolean, options?: CallOptions): Promise<SignPadData | null>;
  setDisplayedFPImageAt(place: {
    canvasWidth: number; canvasHeight: number; left: number; top: number; width: number; height: number;
  }, options?: CallOptions): Promise<void>;
}

/** One row per command, in the order of the command numbers. */
export declare const COMMANDS: readonly Readonly<{
  api: string;
  method: keyof SignPad;
  parameters: readonly Readonly<{ key: string; name: string }>[];
}>[];

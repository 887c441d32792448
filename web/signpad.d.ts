// Generated from src/ by `npm run build`: change it there.
/** Binary data as the service delivers it: base64 text, most often a picture. */
export declare class SignPadData {
	readonly base64: string;
	constructor(base64: string);
	get bytes(): Uint8Array<ArrayBuffer>;
	/** Read off the data: image/png, image/jpeg, image/bmp, image/svg+xml or application/octet-stream. */
	get mediaType(): string;
	get blob(): Blob;
	get dataURL(): string;
}
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
/** What `getDeviceConfirmOrCancelKeyStatus` reads once a key was pressed; any other value: none was. */
export declare const KeyStatus: Readonly<{
	readonly cancel: 0;
	readonly confirm: 1;
}>;
/** Device IDs of the pad models. */
export declare const Model: Readonly<{
	readonly Alder: 2;
	readonly Birch: 5;
	readonly Cedar: 7;
	readonly Maple: 3;
	readonly Rowan: 4;
}>;
export type ModelId = (typeof Model)[keyof typeof Model];
/** The applications that have signature settings of their own: writer, spreadsheet, presentation. */
export type WPSApplication = "WPS" | "ET" | "WPP";
interface DecodeArguments {
	type: number;
	path?: string;
	data: string | SignPadData;
}
export interface CallOptions {
	/** Milliseconds, in place of the connection's. */
	timeout?: number;
	/** Gives up waiting; the call rejects with the signal's reason. A command already sent is carried out. */
	signal?: AbortSignal;
}
interface Parameter {
	readonly key: string;
	readonly name: string;
}
interface Command<Method> {
	readonly api: string;
	readonly parameters: readonly Parameter[];
	/** The request's part behind the name, "?…" or nothing. */
	readonly query: (argument: any) => string;
	readonly decode: (result: string, argument: any) => unknown;
	/** Never there: carries the type of the client's method. */
	readonly method?: Method;
}
interface GetDeviceInfo {
	(type: 1, options?: CallOptions): Promise<boolean | null>;
	(type: 2 | 3 | 4, options?: CallOptions): Promise<[
		number,
		number
	] | null>;
	(type: number, options?: CallOptions): Promise<string | boolean | [
		number,
		number
	] | null>;
}
type Decode = (file: DecodeArguments, options?: CallOptions) => Promise<DecodedPoint[] | null>;
declare const commands: {
	/** Removes the ink. */
	clear: Command<(options?: CallOptions) => Promise<void>>;
	closeLCD: Command<(options?: CallOptions) => Promise<void>>;
	/** Writes the data to /tmp/ + path. The points of ink data (type 6), null for every other type. */
	decode: Command<Decode>;
	displayDeviceInfoInLCD: Command<(value: boolean, options?: CallOptions) => Promise<void>>;
	/** The drawing in one of the pad library's formats, each time it is asked for. Null: none. */
	encode: Command<(value: number, options?: CallOptions) => Promise<SignPadData | null>>;
	getAboutInfo: Command<(options?: CallOptions) => Promise<string>>;
	getDecodeFilePath: Command<(options?: CallOptions) => Promise<string>>;
	/** See `KeyStatus`; -1 while no pad is open. */
	getDeviceConfirmOrCancelKeyStatus: Command<(options?: CallOptions) => Promise<number>>;
	/** Null while no pad is open. Type 1: whether the pad is connected. */
	getDeviceInfo: Command<GetDeviceInfo>;
	/** Of the finger alone (true) or with its surroundings. Null: no sensor, or the picture that was fetched last. */
	getFingerPrintImage: Command<(value: boolean, options?: CallOptions) => Promise<SignPadData | null>>;
	/** Null: no ink, or the same picture as the last one that any client fetched by this, wpsGetInks or getOpaqueInks. */
	getInks: Command<(options?: CallOptions) => Promise<SignPadData | null>>;
	getPointer: Command<(options?: CallOptions) => Promise<InkPoint[]>>;
	getSize: Command<(options?: CallOptions) => Promise<number>>;
	/** False: no such pad answers. Opening closes the pad that was open before, for all clients. */
	initialDevice: Command<(values: {
		id: ModelId;
		width: number;
		height: number;
	}, options?: CallOptions) => Promise<boolean>>;
	isValid: Command<(options?: CallOptions) => Promise<boolean>>;
	openLCD: Command<(options?: CallOptions) => Promise<void>>;
	padID: Command<(options?: CallOptions) => Promise<string>>;
	penID: Command<(options?: CallOptions) => Promise<string>>;
	/** The path of the saved picture; raises `device-error`. Null while no pad is open. */
	saveDrawingImage: Command<(values: {
		type: number;
		dpi: number;
		path: string;
	}, options?: CallOptions) => Promise<string | null>>;
	/** Margin around the ink in saved pictures; 0 and 0: the whole pad, a negative value: no change. */
	setClip: Command<(values: {
		width: number;
		height: number;
	}, options?: CallOptions) => Promise<void>>;
	setDisplayedFPImageAt: Command<(values: {
		canvasWidth: number;
		canvasHeight: number;
		left: number;
		top: number;
		width: number;
		height: number;
	}, options?: CallOptions) => Promise<void>>;
	setPenColor: Command<(values: {
		r: number;
		g: number;
		b: number;
	}, options?: CallOptions) => Promise<void>>;
	/** True: the stroke's width follows the pressure. */
	setPenStyle: Command<(value: boolean, options?: CallOptions) => Promise<void>>;
	setPenWidth: Command<(value: number, options?: CallOptions) => Promise<void>>;
	uninitialDevice: Command<(options?: CallOptions) => Promise<boolean>>;
	versionID: Command<(options?: CallOptions) => Promise<string>>;
	getWPSSettings: Command<(value: WPSApplication, options?: CallOptions) => Promise<WPSSettings>>;
	/** Replaces all four settings. */
	updateWPSSettings: Command<(values: {
		app: WPSApplication;
		dateTime: boolean;
		autoFit: boolean;
		penWidth: number;
		name: string;
	}, options?: CallOptions) => Promise<void>>;
	/** The path of the finished picture; raises `device-error`. Null while no pad is open. */
	wpsSignConfirmed: Command<(value: WPSApplication, options?: CallOptions) => Promise<string | null>>;
	/** Null as with getInks. */
	wpsGetInks: Command<(options?: CallOptions) => Promise<SignPadData | null>>;
	initialWPSSignCanvas: Command<(values: {
		width: number;
		height: number;
	}, options?: CallOptions) => Promise<boolean>>;
	getSVGImageBase64Data: Command<(options?: CallOptions) => Promise<SignPadData | null>>;
	/** Pushes of `key` and `image` to every client; false: the model has none. */
	enableRealtimeSigningNotification: Command<(value: number, options?: CallOptions) => Promise<boolean>>;
	/** Null as with getInks. */
	getOpaqueInks: Command<(options?: CallOptions) => Promise<SignPadData | null>>;
};
type Commands = typeof commands;
type CommandMethods = {
	[Name in keyof Commands]: Commands[Name] extends Command<infer Method> ? Method : never;
};
/** One row per command, in the order of the command numbers. */
export declare const COMMANDS: readonly Readonly<{
	api: string;
	method: keyof CommandMethods;
	parameters: readonly Readonly<Parameter>[];
}>[];
export type SignPadErrorCode =
/** Nothing answers at the port. */
"service-not-running"
/** The browser refuses the page access to programs on this computer. */
 | "permission-denied"
/** The browser lets a page from https:// open no unencrypted connection, not even to this computer. */
 | "mixed-content"
/** There is no WebSocket here: the browser is too old, or Node needs one given. */
 | "no-websocket"
/** The connection broke, or is not there, or was closed. */
 | "connection-lost"
/** No reply, or no connection, in time. */
 | "timeout"
/** A value that the request cannot carry; nothing was sent. */
 | "invalid-argument"
/** The service does not know the command: it is older than this client. */
 | "invalid-request"
/** `open` found no pad, or `watch` lost it. */
 | "pad-missing"
/** The pad's library could not save a file. */
 | "device-error"
/** What answers does not speak the service's language. */
 | "protocol";
/** Every error this client raises by itself. `code` tells the cases apart, `message` is for a developer's eyes. */
export declare class SignPadError extends Error {
	readonly name = "SignPadError";
	readonly code: SignPadErrorCode;
	readonly cause?: unknown;
	constructor(code: SignPadErrorCode, message: string, options?: {
		cause?: unknown;
	});
}
export interface SignPadEventMap {
	/** A key of the pad was pressed: its status. */
	key: number;
	/** The picture while the signer writes. */
	image: SignPadData | null;
	/** Every text that goes over the connection, for logs. */
	message: {
		direction: "sent" | "received";
		text: string;
	};
	disconnect: {
		error: SignPadError;
		willReconnect: boolean;
	};
	reconnecting: {
		attempt: number;
		delay: number;
	};
	/** Connected again. The service may be a new one: open the pad again. */
	reconnect: {
		attempt: number;
	};
}
export interface SignPadEvent<Detail> extends Event {
	readonly detail: Detail;
}
/** The part of a WebSocket class that the client uses; the browser's and the `ws` package's fit. */
export type WebSocketClass = new (url: string) => Socket;
interface Socket {
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
export interface WatchOptions {
	/** Milliseconds from one look at the pad to the next; a look that takes longer is followed at once. Default 40. */
	interval?: number;
	/** Ends the loop without an error. */
	signal?: AbortSignal;
}
export interface Progress {
	points: InkPoint[];
	/** See `KeyStatus`. */
	key: number;
}
export interface PadDescription {
	model: ModelId;
	width: number;
	height: number;
}
export interface SignPad extends CommandMethods {
	addEventListener<Type extends keyof SignPadEventMap>(type: Type, listener: (this: SignPad, event: SignPadEvent<SignPadEventMap[Type]>) => unknown, options?: boolean | AddEventListenerOptions): void;
	addEventListener(type: string, listener: EventListenerOrEventListenerObject | null, options?: boolean | AddEventListenerOptions): void;
	removeEventListener<Type extends keyof SignPadEventMap>(type: Type, listener: (this: SignPad, event: SignPadEvent<SignPadEventMap[Type]>) => unknown, options?: boolean | EventListenerOptions): void;
	removeEventListener(type: string, listener: EventListenerOrEventListenerObject | null, options?: boolean | EventListenerOptions): void;
}
/** One connection to the service. It carries one request at a time; further calls wait in line. */
export declare class SignPad extends EventTarget {
	private readonly settings;
	private readonly line;
	private readonly closing;
	static connect(options?: ConnectOptions): Promise<SignPad>;
	private constructor();
	/** Where the service is reached. */
	get url(): string;
	get connected(): boolean;
	/** Ends the connection for good; calls not yet answered fail with `connection-lost`. Leaves the pad as it is. */
	close(): void;
	/** `initialDevice` that raises `pad-missing` when no such pad answers. */
	open({ model, width, height }: PadDescription, options?: CallOptions): Promise<void>;
	/**
	 * Follows the signing: yields at once, after each change of ink or key, and after each `clear` of this client, until
	 * the loop is left or the signal aborts. Raises `pad-missing` when the pad is gone.
	 */
	watch({ interval, signal }?: WatchOptions): AsyncGenerator<Progress, void, void>;
	/** Carries one command of the table out; each has a method that calls this. */
	private call;
	private emit;
	private openLine;
	private lost;
	/** Tries again until it works or the client is closed, waiting twice as long each time. */
	private reopen;
}

export {};

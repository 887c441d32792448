// Every command, once: a row makes the method, its types, its request and its result.
import {
  base64Data, decodedPoints, deviceInfo, nothing, number, picture, points, savedPath, text, truth, wpsSettings,
} from './decoders.js';
import type { DecodedPoint } from './decoders.js';
import {
  application, decodeQuery, flag, integer, model, plainText, pressureFlag, queryText,
} from './encoders.js';
import type { DecodeArguments, Encoder } from './encoders.js';
import { refuse } from './errors.js';

export interface CallOptions {
  /** Milliseconds, in place of the connection's. */
  timeout?: number;
  /** Gives up waiting; the call rejects with the signal's reason. A command already sent is carried out. */
  signal?: AbortSignal;
}

/** A parameter's name on the wire and in the argument. */
export interface Parameter {
  readonly key: string;
  readonly name: string;
}

export interface Command<Method> {
  readonly api: string;
  readonly parameters: readonly Parameter[];
  /** The request's part behind the name, "?…" or nothing. */
  readonly query: (argument: any) => string;
  readonly decode: (result: string, argument: any) => unknown;
  /** Never there: carries the type of the client's method. */
  readonly method?: Method;
}

/** How a parameter goes out: its encoder, with the key where that is not the argument's name. */
type Encoding<Value> = Encoder<Value> | readonly [key: string, encode: Encoder<Value>];
type Encodings<Values> = { readonly [Name in keyof Values]: Encoding<Values[Name]> };

const rowsOf = (encodings: Encodings<Record<string, any>>) =>
  Object.entries(encodings).map(([name, encoding]) => {
    const [key, encode] = typeof encoding === 'function' ? [name, encoding] as const : encoding;
    return { key, name, encode };
  });

const plain = <Result>(
  api: string, decode: (result: string) => Result,
): Command<(options?: CallOptions) => Promise<Result>> => ({ api, parameters: [], query: () => '', decode });

/** A single parameter is passed as it is. */
function oneValue<Values extends object, Result>(
  api: string, encodings: Encodings<Values>, decode: (result: string, value: Values[keyof Values]) => Result,
): Command<(value: Values[keyof Values], options?: CallOptions) => Promise<Result>> {
  const parameters = rowsOf(encodings);
  const query = (value: unknown) => `?${parameters.map(({ key, name, encode }) => `${key}=${encode(value, name)}`)}`;
  return { api, parameters, query, decode };
}

/** Several parameters are passed as one object. */
function values<Values extends object, Result>(
  api: string, encodings: Encodings<Values>, decode: (result: string) => Result,
): Command<(values: Values, options?: CallOptions) => Promise<Result>> {
  const parameters = rowsOf(encodings);
  const query = (argument: Record<string, unknown>) =>
    `?${parameters.map(({ key, name, encode }) => `${key}=${encode(argument[name], name)}`).join('&')}`;
  return { api, parameters, query: (argument) => query(objectWith(parameters, argument)), decode };
}

function objectWith<Argument>(parameters: readonly Parameter[], argument: Argument): Argument {
  if (typeof argument === 'object' && argument !== null) return argument;
  return refuse('the argument', `an object with ${parameters.map(({ name }) => name).join(', ')}`);
}

interface GetDeviceInfo {
  (type: 1, options?: CallOptions): Promise<boolean | null>;
  (type: 2 | 3 | 4, options?: CallOptions): Promise<[number, number] | null>;
  (type: number, options?: CallOptions): Promise<string | boolean | [number, number] | null>;
}

type Decode = (file: DecodeArguments, options?: CallOptions) => Promise<DecodedPoint[] | null>;
const decodeParameters = rowsOf({ type: integer, path: plainText, data: plainText });
const decode: Command<Decode> = {
  api: 'Decode',
  parameters: decodeParameters,
  query: (argument) => decodeQuery(objectWith(decodeParameters, argument)),
  decode: decodedPoints,
};

/** By the method's name, in the order of the commands' numbers. */
export const commands = {
  /** Removes the ink. */
  clear: plain('Clear', nothing),
  closeLCD: plain('CloseLCD', nothing),
  /** Writes the data to /tmp/ + path. The points of ink data (type 6), null for every other type. */
  decode,
  displayDeviceInfoInLCD: oneValue('DisplayDeviceInfoInLCD', { show: flag }, nothing),
  /** The drawing in one of the pad library's formats, each time it is asked for. Null: none. */
  encode: oneValue('Encode', { type: integer }, base64Data),
  getAboutInfo: plain('GetAboutInfo', text),
  getDecodeFilePath: plain('GetDecodeFilePath', text),
  /** See `KeyStatus`; -1 while no pad is open. */
  getDeviceConfirmOrCancelKeyStatus: plain('GetDeviceConfirmOrCancelKeyStatus', number),
  /** Null while no pad is open. Type 1: whether the pad is connected. */
  getDeviceInfo: oneValue('GetDeviceInfo', { type: integer }, deviceInfo) as Command<GetDeviceInfo>,
  /** Of the finger alone (true) or with its surroundings. Null: no sensor, or the picture that was fetched last. */
  getFingerPrintImage: oneValue('GetFingerPrintImage', { fpImageOnly: ['FPImageOnly', flag] }, picture),
  /** Null: no ink, or the same picture as the last one that any client fetched by this, wpsGetInks or getOpaqueInks. */
  getInks: plain('GetInks', picture),
  getPointer: plain('GetPointer', points),
  getSize: plain('GetSize', number),
  /** False: no such pad answers. Opening closes the pad that was open before, for all clients. */
  initialDevice: values('InitialDevice', { id: model, width: integer, height: integer }, truth),
  isValid: plain('IsValid', truth),
  openLCD: plain('OpenLCD', nothing),
  padID: plain('PadID', text),
  penID: plain('PenID', text),
  /** The path of the saved picture; raises `device-error`. Null while no pad is open. */
  saveDrawingImage: values('SaveDrawingImage', { type: integer, dpi: integer, path: queryText }, savedPath),
  /** Margin around the ink in saved pictures; 0 and 0: the whole pad, a negative value: no change. */
  setClip: values('SetClip', { width: integer, height: integer }, nothing),
  setDisplayedFPImageAt: values('SetDisplayedFPImageAt', {
    canvasWidth: ['CanvasWidth', integer], canvasHeight: ['CanvasHeight', integer],
    left: ['Left', integer], top: ['Top', integer], width: ['Width', integer], height: ['Height', integer],
  }, nothing),
  setPenColor: values('SetPenColor', { r: ['R', integer], g: ['G', integer], b: ['B', integer] }, nothing),
  /** True: the stroke's width follows the pressure. */
  setPenStyle: oneValue('SetPenStyle', { pressure: ['Style', pressureFlag] }, nothing),
  setPenWidth: oneValue('SetPenWidth', { width: ['Width', integer] }, nothing),
  uninitialDevice: plain('UninitialDevice', truth),
  versionID: plain('VersionID', text),
  getWPSSettings: oneValue('GetWPSSettings', { app: ['id', application] }, wpsSettings),
  /** Replaces all four settings. */
  updateWPSSettings: values('UpdateWPSSettings', {
    app: ['id', application], dateTime: ['dt', flag], autoFit: ['af', flag], penWidth: ['pw', integer],
    name: queryText,
  }, nothing),
  /** The path of the finished picture; raises `device-error`. Null while no pad is open. */
  wpsSignConfirmed: oneValue('WPSSignConfirmed', { app: ['id', application] }, savedPath),
  /** Null as with getInks. */
  wpsGetInks: plain('WPSGetInks', picture),
  initialWPSSignCanvas: values('InitialWPSSignCanvas', { width: integer, height: integer }, truth),
  getSVGImageBase64Data: plain('GetSVGImageBase64Data', base64Data),
  /** Pushes of `key` and `image` to every client; false: the model has none. */
  enableRealtimeSigningNotification: oneValue('EnableRealtimeSigningNotification', { type: integer }, truth),
  /** Null as with getInks. */
  getOpaqueInks: plain('GetOpaqueInks', picture),
};

type Commands = typeof commands;

/** One method per command. Each may raise `connection-lost`, `timeout`, `invalid-argument`, `invalid-request`, `protocol`. */
export type CommandMethods = {
  [Name in keyof Commands]: Commands[Name] extends Command<infer Method> ? Method : never;
};

/** One row per command, in the order of the command numbers. */
export const COMMANDS: readonly Readonly<{
  api: string;
  method: keyof CommandMethods;
  parameters: readonly Readonly<Parameter>[];
}>[] = Object.freeze((Object.keys(commands) as (keyof Commands)[]).map((method) => {
  const { api, parameters } = commands[method];
  return Object.freeze({ api, method, parameters: Object.freeze(parameters.map(({ key, name }) => ({ key, name }))) });
}));

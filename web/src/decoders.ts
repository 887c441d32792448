// Values that come back.
import { SignPadData } from './data.js';
import { SignPadError, malformed } from './errors.js';

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
export const KeyStatus = Object.freeze({ cancel: 0, confirm: 1 } as const);

type Fields = Record<string, unknown>;

function parseJson(text: string): unknown {
  try {
    return JSON.parse(text);
  } catch (cause) {
    throw new SignPadError('protocol', 'The service sent a result that is not JSON', { cause });
  }
}

function fieldsOf(value: unknown, what: string): Fields {
  if (typeof value !== 'object' || value === null) throw malformed(`no ${what}`);
  return value as Fields;
}

function listOf(result: string, what: string): unknown[] {
  const list = parseJson(result);
  if (!Array.isArray(list)) throw malformed(`no ${what}`);
  return list;
}

export const nothing = (): void => undefined;

export const text = (result: string) => result;

export function number(result: unknown): number {
  if (typeof result !== 'string' || !/^-?\d+$/.test(result)) throw malformed(`'${result}' where a number belongs`);
  return Number(result);
}

export const truth = (result: unknown) => number(result) !== 0;

function decodedPoint(value: unknown): DecodedPoint {
  const { x, y, bStrokeEnd } = fieldsOf(value, 'point');
  return { x: number(x), y: number(y), strokeEnd: truth(bStrokeEnd) };
}

function inkPoint(value: unknown): InkPoint {
  const { x, y, bStrokeEnd, pressure, Time } = fieldsOf(value, 'point');
  return {
    x: number(x), y: number(y), strokeEnd: truth(bStrokeEnd), pressure: number(pressure), time: String(Time),
  };
}

export const points = (result: string) => listOf(result, 'list of points').map(inkPoint);

export const decodedPoints = (result: string) =>
  result === '' ? null : listOf(result, 'list of points').map(decodedPoint);

export const base64Data = (result: string) => result === '' ? null : new SignPadData(result);

export function picture(result: string): SignPadData | null {
  if (result === '') return null;
  const { Image: base64 } = fieldsOf(listOf(result, 'picture')[0], 'picture');
  if (typeof base64 !== 'string') throw malformed('no picture');
  return new SignPadData(base64);
}

/** A path, or the error number of the pad's library in its place. */
export function savedPath(result: string): string | null {
  if (/^-?\d+$/.test(result)) throw new SignPadError('device-error', `The pad could not save the file: ${result}`);
  return result === '' ? null : result;
}

export function deviceInfo(result: string, type: number): string | boolean | [number, number] | null {
  if (result === '') return null;
  if (type === 1) return result === 'true';
  return type >= 2 && type <= 4 ? result.split(',').map(number) as [number, number] : result;
}

export function wpsSettings(result: string): WPSSettings {
  const settings = fieldsOf(parseJson(result), 'settings');
  return {
    dateTime: truth(settings['EnableDateTime']),
    autoFit: truth(settings['EnableAutoFit']),
    penWidth: number(settings['CurrentPenWidth']),
    name: String(settings['Name']),
  };
}

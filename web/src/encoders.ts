// Values that go out. Each encoder refuses what the request cannot carry, whatever the caller's types say.
import { SignPadData } from './data.js';
import { refuse } from './errors.js';

/** `name` is the argument's, for the error. */
export type Encoder<Value> = (value: Value, name: string) => string;

const LONGEST_WAIT_MS = 0x7fffffff; // a timer takes more for none at all

/** Device IDs of the pad models. */
export const Model = Object.freeze({ Alder: 2, Birch: 5, Cedar: 7, Maple: 3, Rowan: 4 } as const);
export type ModelId = (typeof Model)[keyof typeof Model];

/** The applications that have signature settings of their own: writer, spreadsheet, presentation. */
export type WPSApplication = 'WPS' | 'ET' | 'WPP';

const WPS_APPLICATION_IDS = new Map<WPSApplication, string>([['WPS', '1'], ['ET', '2'], ['WPP', '3']]);

export function integer(value: number, name: string): string {
  if (!Number.isInteger(value) || value < -0x80000000 || value > 0x7fffffff) refuse(name, 'a 32-bit integer');
  return String(value);
}

export const model: Encoder<ModelId> = integer;

export function milliseconds(value: number, name: string): number {
  const isTime = typeof value === 'number' && value >= 0 && value <= LONGEST_WAIT_MS;
  if (!isTime) refuse(name, `a number of milliseconds from 0 to ${LONGEST_WAIT_MS}`);
  return value;
}

export function flag(value: boolean, name: string): string {
  if (typeof value !== 'boolean') refuse(name, 'true or false');
  return value ? '1' : '0';
}

/** The service reads Style=0 as pressure on. */
export const pressureFlag: Encoder<boolean> = (value, name) => flag(value, name) === '1' ? '0' : '1';

export function application(value: WPSApplication, name: string): string {
  return WPS_APPLICATION_IDS.get(value) ?? refuse(name, "'WPS', 'ET' or 'WPP'");
}

/** Text that arrives unchanged: the wire format has no escapes, the pad's library ends a text at a NUL. */
export function plainText(value: string, name: string): string {
  if (typeof value !== 'string') refuse(name, 'a string');
  if (/\0|[\ud800-\udfff]/u.test(value)) refuse(name, 'free of NUL characters and lone surrogates');
  return value;
}

export function queryText(value: string, name: string): string {
  if (/[&=]/.test(plainText(value, name))) refuse(name, "free of '&' and '=', which the request cannot carry");
  return value;
}

export interface DecodeArguments {
  type: number;
  path?: string;
  data: string | SignPadData;
}

/** Decode is read by its markers, so that its data may hold '='; only a marker inside a value would break it. */
export function decodeQuery({ type, path, data }: DecodeArguments): string {
  const payload = plainText(data instanceof SignPadData ? data.base64 : data, 'data');
  if (payload === '') refuse('data', 'not empty');
  if (path === undefined) {
    if (payload.includes('&path=')) refuse('data', "free of '&path='");
    return `?type=${integer(type, 'type')}&data=${payload}`;
  }
  if (path === '') refuse('path', 'left out or not empty');
  if (plainText(path, 'path').includes('&data=')) refuse('path', "free of '&data='");
  return `?type=${integer(type, 'type')}&path=${path}&data=${payload}`;
}

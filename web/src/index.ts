// The client of the signature pad service, for browsers and Node. No dependencies.
export { COMMANDS } from './commands.js';
export type { CallOptions } from './commands.js';
export { SignPadData } from './data.js';
export { KeyStatus } from './decoders.js';
export type { DecodedPoint, InkPoint, WPSSettings } from './decoders.js';
export { Model } from './encoders.js';
export type { ModelId, WPSApplication } from './encoders.js';
export { SignPadError } from './errors.js';
export type { SignPadErrorCode } from './errors.js';
export type { SignPadEvent, SignPadEventMap } from './events.js';
export type { ConnectOptions, WebSocketClass } from './options.js';
export { SignPad } from './signpad.js';
export type { PadDescription } from './signpad.js';
export type { Progress, WatchOptions } from './watch.js';

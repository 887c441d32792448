// The client of the signature pad service as an ES module; signpad-classic.js says why the code stands there.
import './signpad-classic.js';

export const { SignPad, SignPadError, SignPadData, Model, KeyStatus, COMMANDS } = globalThis.MVSignPad;

// Pages opened from file:// load no ES modules: for them, the members of the module in one global, MVSignPad.
import { COMMANDS, KeyStatus, Model, SignPad, SignPadData, SignPadError } from './index.js';
import { surroundings } from './surroundings.js';

const client = Object.freeze({ SignPad, SignPadError, SignPadData, Model, KeyStatus, COMMANDS });
if (!('MVSignPad' in surroundings)) Object.assign(surroundings, { MVSignPad: client });

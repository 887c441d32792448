import type { SignPadData } from './data.js';
import type { SignPadError } from './errors.js';

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

/** What the client dispatches. */
export class DetailedEvent<Detail> extends Event implements SignPadEvent<Detail> {
  readonly detail: Detail;

  constructor(type: string, detail: Detail) {
    super(type);
    this.detail = detail;
  }
}

export type Emit = <Type extends keyof SignPadEventMap>(type: Type, detail: SignPadEventMap[Type]) => void;

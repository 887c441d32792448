import type { CallOptions, CommandMethods } from './commands.js';
import type { InkPoint } from './decoders.js';
import { SignPadError } from './errors.js';
import { delay } from './surroundings.js';

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

interface Seen extends Partial<Progress> {
  start?: number;
}

type Pad = Pick<CommandMethods, 'isValid' | 'getDeviceConfirmOrCancelKeyStatus' | 'getSize' | 'getPointer'>;

const PRESENCE_CHECK_MS = 1_000;

const lastOf = (points: InkPoint[]) => points[points.length - 1];

const sameInk = (a: InkPoint[], b: InkPoint[] | undefined) =>
  a === b || (a.length === b?.length && JSON.stringify(lastOf(a)) === JSON.stringify(lastOf(b)));

/** Fetches the points when they may differ. Lifting the pen marks the last one and adds none. */
async function pointsAfter(pad: Pad, seen: InkPoint[] | undefined, options: CallOptions): Promise<InkPoint[]> {
  const size = await pad.getSize(options);
  return seen && size === seen.length && lastOf(seen)?.strokeEnd !== false ? seen : pad.getPointer(options);
}

/** Yields at once and after each change. `freshStarts` counts when ink and key began anew. */
export async function* followPad(
  pad: Pad, freshStarts: () => number, interval: number, options: CallOptions,
): AsyncGenerator<Progress, void, void> {
  let seen: Seen = {};
  let presenceCheckedAt = -Infinity;
  while (!options.signal?.aborted) {
    const lookedAt = performance.now();
    if (lookedAt - presenceCheckedAt >= PRESENCE_CHECK_MS) {
      if (!await pad.isValid(options)) throw new SignPadError('pad-missing', 'The pad is no longer there');
      presenceCheckedAt = lookedAt;
    }
    const start = freshStarts();
    if (start !== seen.start) seen = { start };
    // The key first: the ink then holds all that came before it.
    const key = await pad.getDeviceConfirmOrCancelKeyStatus(options);
    const points = await pointsAfter(pad, seen.points, options);
    if (start !== freshStarts()) continue; // the key may be from before, the ink from after
    const isNews = key !== seen.key || !sameInk(points, seen.points);
    seen = { start, key, points };
    if (isNews) yield { points, key };
    await delay(Math.max(lookedAt + interval - performance.now(), 0), options.signal);
  }
}

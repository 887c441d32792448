// What the client finds around itself: a browser of any age, or Node.

/** The global object, also where the language has no name for it yet. */
export const surroundings: typeof globalThis = typeof self === 'undefined' ? globalThis : self;

/** The reason to reject with; older browsers' signals keep none. */
export const reasonOf = (signal: AbortSignal): unknown =>
  signal.reason === undefined ? new DOMException('The operation was aborted', 'AbortError') : signal.reason;

/** Resolves after the time, or as soon as the signal aborts. */
export function delay(milliseconds: number, signal?: AbortSignal): Promise<void> {
  return new Promise((resolve) => {
    if (signal?.aborted) return resolve();
    const done = () => {
      clearTimeout(timer);
      signal?.removeEventListener('abort', done);
      resolve();
    };
    const timer = setTimeout(done, milliseconds);
    signal?.addEventListener('abort', done);
  });
}

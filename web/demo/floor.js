// What the page cannot do without. A browser that does not understand this file or lacks what it names goes on showing
// the one sentence that says so.
(() => {
  'use strict';

  const understood = async function* (parts) {
    for await (const part of parts) yield { ...part };
  };

  try {
    new EventTarget().dispatchEvent(new Event('understood'));
    const needed = [understood, window.AbortController, window.WebSocket, window.URLSearchParams, Object.entries];
    if (needed.every((part) => typeof part === 'function')) document.documentElement.dataset.fits = 'yes';
  } catch {
    // the sentence stays
  }
})();

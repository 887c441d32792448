// Small help with the document, for browsers that lack it themselves.
(() => {
  'use strict';

  function replaceChildren(element, children) {
    while (element.lastChild) element.removeChild(element.lastChild);
    element.append(...children);
  }

  /** Calls back when the element's width may have changed. */
  function onResize(element, listener) {
    if (window.ResizeObserver) new ResizeObserver(listener).observe(element);
    else window.addEventListener('resize', listener);
  }

  Object.assign(window.Demo, { replaceChildren, onResize });
})();

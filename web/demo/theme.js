// Light or dark: as chosen, else as the system has it. Loaded before the first paint.
(() => {
  'use strict';

  const STORE = 'signpad-demo-';

  /** Pages opened from file:// may have no storage: a choice then lasts as long as the page. */
  function stored(key) {
    try {
      return localStorage.getItem(STORE + key);
    } catch {
      return null;
    }
  }

  function store(key, value) {
    try {
      localStorage.setItem(STORE + key, value);
    } catch {
      // see stored()
    }
  }

  const { dataset } = document.documentElement;
  const systemIsDark = matchMedia('(prefers-color-scheme: dark)');

  function apply() {
    dataset.theme = stored('theme') || (systemIsDark.matches ? 'dark' : 'light');
  }

  function toggle() {
    dataset.theme = dataset.theme === 'dark' ? 'light' : 'dark';
    store('theme', dataset.theme);
  }

  systemIsDark.addEventListener('change', apply);
  apply();

  window.Demo = { stored, store, toggleTheme: toggle };
})();

// The page's own course: connect, open the pad, follow the pen, confirm or cancel.
(() => {
  'use strict';

  const { SignPad, SignPadError, Model, KeyStatus } = window.MVSignPad;
  const { t, onLanguage, translatePage, switchLanguage, toggleTheme, stored, store, extras, log, result, strokesOf,
    createInkView, replaceChildren, STRONGEST_PRESSURE } = window.Demo;
  const find = (id) => document.getElementById(id);

  const options = (group) => find(group).querySelector('.options');

  const PAD_SIZE = { width: 800, height: 480 };
  const CONNECT_TIMEOUT_MS = 5000;
  const RETRY_MS = 3000;
  const TURN_NOTICE_MS = 150;
  const TRANSPARENT_PNG = 3;
  const COLORS = { Black: '#101418', Blue: '#1846b8', Red: '#b3202a', Green: '#14713f' };

  const view = createInkView(find('ink'), PAD_SIZE);
  let pad = null;
  let wish = null; // aborted when the wish to be connected ends
  let session = null; // while signing; `decided` is aborted once `decision` is 'confirm', 'cancel' or 'leave'
  let shownInk = [];
  let stopwatch = null; // {first, last} in milliseconds: when the first and the latest ink came

  // ---- What the page says ------------------------------------------------------------------------------------------

  /** Keeps what was said by its key, so that a switch of the language says it again. */
  const said = { status: null, notice: null, service: ['stateConnecting', 'connecting'] };

  const isConnected = () => pad !== null && pad.connected;

  const wishesThisPort = () => wish !== null && wish.port === find('port').valueAsNumber;

  function renderWords() {
    const { status, notice, service: [stateKey, lamp] } = said;
    find('status').textContent = status ? t(...status) : '';
    find('service-state').textContent = t(stateKey);
    find('lamp').dataset.state = lamp;
    find('connect').textContent = t(!wishesThisPort() ? 'connect' : isConnected() ? 'disconnect' : 'stopTrying');
    find('notice').hidden = !notice;
    if (!notice) return;
    find('notice').dataset.tone = notice.tone || 'calm';
    find('notice-title').textContent = t(`${notice.name}Title`, notice.values);
    find('notice-text').textContent = notice.words || t(`${notice.name}Text`, notice.values);
    find('notice-action').hidden = !notice.action;
    if (notice.action) find('notice-action').textContent = t(notice.action);
  }

  function say(changes) {
    Object.assign(said, changes);
    renderWords();
    renderButtons();
  }

  const idleNotice = () => ({ name: 'idle', action: 'start', act: sign });

  const status = (key, values) => say({ status: key ? [key, values] : null });

  /** A button that is gone or out of use takes the keyboard's place in the page with it: this gives it a new one. */
  function rescueFocus(target) {
    const { activeElement } = document;
    const isLost = !activeElement || activeElement === document.body || activeElement.disabled ||
      activeElement.closest('[hidden]');
    if (isLost) find(target).focus({ preventScroll: true });
  }

  // ---- Choices -----------------------------------------------------------------------------------------------------

  function radio(group, value, key, checked) {
    const label = document.createElement('label');
    const input = Object.assign(document.createElement('input'), { type: 'radio', name: group, value, checked });
    const words = document.createElement('span');
    if (key) words.dataset.t = key;
    words.textContent = key ? t(key) : value;
    label.append(input, words);
    return label;
  }

  function buildChoices() {
    const model = stored('model') || 'Alder';
    options('models').append(...Object.keys(Model).map((name) => radio('model', name, null, name === model)));
    options('colors').append(...Object.entries(COLORS).map(([name, color], index) => {
      const label = radio('color', color, `color${name}`, index === 0);
      label.style.setProperty('--swatch', color);
      return label;
    }));
  }

  const chosenModel = () => (document.querySelector('input[name=model]:checked') || { value: 'Alder' }).value;

  const isPadOpen = () => session !== null && session.isOpen;

  const chosenPen = () => ({
    width: find('pen-width').valueAsNumber,
    color: document.querySelector('input[name=color]:checked').value,
    pressure: find('pen-pressure').checked,
  });

  function rgb(color) {
    const value = Number.parseInt(color.slice(1), 16);
    return { r: value >> 16, g: (value >> 8) & 255, b: value & 255 };
  }

  async function applyPen() {
    const pen = chosenPen();
    find('pen-width-value').textContent = pen.width;
    if (session || shownInk.length === 0) view.setPen(pen); // a finished signature keeps the pen that wrote it
    if (!isPadOpen()) return;
    await pad.setPenWidth(pen.width);
    await pad.setPenColor(rgb(pen.color));
    await pad.setPenStyle(pen.pressure);
  }

  // ---- The connection ----------------------------------------------------------------------------------------------

  const FAILURES = {
    'service-not-running': { name: 'absent', service: ['stateAbsent', 'bad'] },
    'permission-denied': { name: 'refused', service: ['stateRefused', 'bad'] },
    'mixed-content': { name: 'mixed', service: ['stateRefused', 'bad'] },
    timeout: { name: 'silent', service: ['stateAbsent', 'bad'] },
  };

  const sleep = (milliseconds, signal) => new Promise((resolve) => {
    const timer = setTimeout(resolve, milliseconds);
    signal.addEventListener('abort', () => {
      clearTimeout(timer);
      resolve();
    });
  });

  /** Tries until it works or the wish ends. */
  async function connect() {
    if (!find('service').reportValidity()) return;
    disconnect();
    const port = find('port').valueAsNumber;
    const { signal } = wish = Object.assign(new AbortController(), { port });
    store('port', port);
    const values = { url: `ws://localhost:${port}/` };
    say({ service: ['stateConnecting', 'connecting'], notice: { name: 'connecting', values } });
    while (!signal.aborted) {
      try {
        return adopt(await SignPad.connect({ port, signal, timeout: CONNECT_TIMEOUT_MS }));
      } catch (error) {
        if (signal.aborted) return;
        const { name, service } = FAILURES[error.code] || FAILURES['service-not-running'];
        say({ service, notice: { name, values, tone: 'bad', action: 'tryAgain', act: connect } });
      }
      await sleep(RETRY_MS, signal);
    }
  }

  function adopt(connected) {
    if (wish.signal.aborted) return connected.close();
    pad = connected;
    pad.addEventListener('message', ({ detail }) => log.add(detail));
    pad.addEventListener('disconnect', () => {
      decide('leave');
      forgetPad({ pad: null });
      say({ service: ['stateLost', 'bad'], status: null });
    });
    pad.addEventListener('reconnecting', ({ detail: { attempt, delay } }) => say({
      notice: { name: 'lost', tone: 'bad', values: { attempt, seconds: (delay / 1000).toFixed(1) } },
    }));
    pad.addEventListener('reconnect', ready);
    ready();
  }

  /** No pad is open any more, as far as the page knows. */
  function forgetPad(changes) {
    extras.update({ openModel: null, ...changes });
    showFacts([]);
  }

  function ready() {
    extras.update({ pad });
    say({
      service: ['stateConnected', 'good'],
      notice: idleNotice(),
      status: ['statusConnected', { url: pad.url }],
    });
  }

  function disconnect() {
    decide('leave');
    if (wish) wish.abort();
    wish = null;
    if (pad) pad.close();
    pad = null;
    forgetPad({ pad: null });
    say({ service: ['stateClosed', 'off'], notice: { name: 'closed', action: 'connect', act: connect }, status: null });
  }

  // ---- Signing -----------------------------------------------------------------------------------------------------

  /** Tabs of one origin take turns at the one pad, where the browser has locks for it. */
  async function inTurn(signal, work) {
    const canTakeTurns = navigator.locks && await navigator.locks.query().then(() => true, () => false);
    if (!canTakeTurns) return work();
    const timer = setTimeout(() => say({
      notice: { name: 'waiting', action: 'stopWaiting', act: () => decide('cancel') },
    }), TURN_NOTICE_MS);
    const begin = () => {
      clearTimeout(timer);
      return work();
    };
    return navigator.locks.request('signature-pad', { signal }, begin).finally(() => clearTimeout(timer));
  }

  async function sign() {
    if (session || !isConnected()) return;
    session = { decided: new AbortController(), decision: null, isOpen: false, isClearing: false };
    renderButtons();
    try {
      await inTurn(session.decided.signal, follow);
    } catch (error) {
      explain(error);
    } finally {
      session = null;
      find('paper-hint').hidden = true;
      renderGauges();
      renderButtons();
      rescueFocus(!said.notice ? 'result-title' : said.notice.action ? 'notice-action' : 'paper');
    }
  }

  async function follow() {
    await openPad();
    const { signal } = session.decided;
    const decision = await followPen(signal) || session.decision;
    decide(decision);
    if (decision === 'confirm') await collect();
    if (decision === 'cancel') await discard();
  }

  function decide(decision) {
    if (session && !session.decision) {
      session.decision = decision;
      session.decided.abort();
    }
    renderButtons();
  }

  async function openPad() {
    say({ notice: null, status: ['statusOpening'] });
    rescueFocus('paper');
    showInk([]);
    result.show(null);
    forgetPad({ signature: null });
    await pad.open({ model: Model[chosenModel()], ...PAD_SIZE });
    session.isOpen = true;
    await applyPen();
    await pad.clear();
    extras.update({ openModel: chosenModel() });
    find('paper-hint').hidden = false;
    status('statusSigning');
    showFacts(await factsOfPad());
  }

  /** Returns what a key of the pad decided, undefined when the page decided. */
  async function followPen(signal) {
    for await (const { points, key } of pad.watch({ signal })) {
      if (points.length < shownInk.length) status('statusTaken');
      showInk(points);
      const decision = { [KeyStatus.confirm]: 'confirm', [KeyStatus.cancel]: 'cancel' }[key];
      if (decision === 'confirm' && points.length === 0) await refuseEmpty();
      else if (decision) return decision;
    }
  }

  /** Clearing releases the pad's key, so that it can be pressed again. */
  async function refuseEmpty() {
    await pad.clear();
    status('statusEmpty');
  }

  async function collect() {
    const points = await pad.getPointer();
    if (points.length === 0) // cleared at the same moment
      return say({ status: ['statusEmpty'], notice: idleNotice() });
    const png = await pad.encode(TRANSPARENT_PNG);
    const pngWhite = await pad.getOpaqueInks();
    const svg = await pad.getSVGImageBase64Data();
    showInk(points);
    result.show({ points, png, pngWhite, svg });
    extras.update({ signature: { points } });
    status('statusConfirmed', { points: points.length, strokes: strokesOf(points) });
    find('result').scrollIntoView({ block: 'nearest', behavior: 'smooth' });
  }

  async function discard() {
    await pad.clear();
    await pad.uninitialDevice();
    showInk([]);
    forgetPad();
    say({ status: ['statusCancelled'], notice: idleNotice() });
  }

  async function clear() {
    const clearing = session;
    clearing.isClearing = true;
    renderButtons();
    try {
      await pad.clear();
      if (clearing.decided.signal.aborted) return;
      showInk([]);
      status('statusCleared');
    } finally {
      clearing.isClearing = false;
      renderButtons();
      rescueFocus('paper');
    }
  }

  function explain(error) {
    const decision = session && session.decision;
    if (decision === 'leave') return;
    if (decision === 'cancel' && error.name === 'AbortError') return say({ status: ['statusCancelled'], notice: idleNotice() });
    if (!(error instanceof SignPadError)) throw error;
    if (error.code === 'connection-lost') return status(null); // the connection speaks for itself
    const name = {
      'pad-missing': isPadOpen() ? 'padGone' : 'padMissing',
      'invalid-request': 'outdated',
    }[error.code] || 'failed';
    forgetPad();
    decide('leave'); // what fails beside the signing ends it, too
    say({
      status: null,
      notice: { name, tone: 'bad', action: 'start', act: sign, values: { model: chosenModel() },
        words: name === 'failed' ? error.message : undefined },
    });
  }

  // ---- What the page shows -----------------------------------------------------------------------------------------

  function showInk(points) {
    view.show(points);
    if (points.length === 0) stopwatch = null;
    else if (points.length !== shownInk.length) {
      const now = performance.now();
      stopwatch = { first: stopwatch ? stopwatch.first : now, last: now };
    }
    if (points.length > 0) find('paper-hint').hidden = true;
    shownInk = points;
    renderGauges();
    renderButtons();
  }

  function renderGauges() {
    const strokes = strokesOf(shownInk);
    const last = shownInk[shownInk.length - 1];
    find('gauge-points').textContent = shownInk.length;
    find('gauge-strokes').textContent = strokes;
    find('gauge-pressure').value = session && last && !last.strokeEnd ? last.pressure / STRONGEST_PRESSURE : 0;
    find('gauge-time').textContent =
      t('seconds', { value: (stopwatch ? (stopwatch.last - stopwatch.first) / 1000 : 0).toFixed(1) });
    find('ink').setAttribute('aria-label',
      last ? t('paperInk', { strokes, points: shownInk.length }) : t('paperEmpty'));
  }

  function renderButtons() {
    const isEmpty = shownInk.length === 0;
    const isDecided = !session || session.decided.signal.aborted;
    find('start').hidden = session !== null || said.notice !== null;
    find('live').hidden = !isPadOpen();
    find('models').disabled = session !== null;
    find('clear').disabled = find('confirm').disabled = isDecided || !session.isOpen || session.isClearing || isEmpty;
    find('cancel').disabled = isDecided;
  }

  const factsOfPad = async () => [
    ['factVersion', await pad.versionID()], ['factPad', await pad.padID()], ['factPen', await pad.penID()],
    ['factAbout', await pad.getAboutInfo()],
  ];

  /** None while no pad is open. */
  function showFacts(facts) {
    const term = (key) => {
      const element = Object.assign(document.createElement('dt'), { textContent: t(key) });
      element.dataset.t = key;
      return element;
    };
    const value = (textContent) => Object.assign(document.createElement('dd'), { textContent });
    const rows = facts.map(([key, words]) => [term(key), value(words || '–')]);
    replaceChildren(find('facts'), rows.length > 0 ? [].concat(...rows) : [term('noPadYet')]);
  }

  // ---- Start -------------------------------------------------------------------------------------------------------

  window.Demo.radio = radio;
  buildChoices();
  extras.start();
  const port = Number(new URLSearchParams(location.search).get('port') || stored('port'));
  if (port > 0) find('port').value = port;
  if (!find('port').validity.valid) find('port').value = find('port').defaultValue;
  onLanguage(renderWords);
  onLanguage(renderGauges);

  find('language').addEventListener('click', switchLanguage);
  find('theme').addEventListener('click', toggleTheme);
  find('service').addEventListener('submit', (event) => {
    event.preventDefault();
    if (!wishesThisPort() || !isConnected()) connect();
  });
  find('connect').addEventListener('click', () => {
    if (wishesThisPort()) disconnect();
    else connect();
  });
  find('port').addEventListener('input', renderWords);
  find('start').addEventListener('click', sign);
  find('clear').addEventListener('click', () => clear().catch(explain));
  find('cancel').addEventListener('click', () => {
    status('statusCancelling');
    decide('cancel');
  });
  find('confirm').addEventListener('click', () => decide('confirm'));
  find('notice-action').addEventListener('click', () => {
    if (said.notice) said.notice.act();
    rescueFocus('paper');
  });
  find('models').addEventListener('change', () => {
    store('model', chosenModel());
    extras.update({ model: chosenModel() });
  });
  for (const id of ['pen-width', 'colors', 'pen-pressure']) {
    find(id).addEventListener('input', () => applyPen().catch(explain));
  }

  extras.update({ model: chosenModel(), size: PAD_SIZE });
  translatePage();
  applyPen();
  connect();
})();

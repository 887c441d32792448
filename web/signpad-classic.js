// The client of the signature pad service, for browsers and Node. No dependencies.
//
// This is a classic script on purpose: browsers load no ES modules into pages opened from file://. It defines one
// global, MVSignPad. Code that can import uses signpad.js, which exports the same members.
globalThis.MVSignPad ??= (() => {
  'use strict';

  const DEFAULT_PORT = 8089;
  const DEFAULT_TIMEOUT_MS = 10_000;
  const PROMPT_TIMEOUT_MS = 60_000;
  const POLL_INTERVAL_MS = 40;
  const PRESENCE_CHECK_MS = 1_000;
  const LONGEST_WAIT_MS = 0x7fffffff; // a timer takes more for none at all
  const INVALID_REQUEST = 'Invalid API request';

  /** Device IDs of the pad models. */
  const Model = Object.freeze({ Alder: 2, Birch: 5, Cedar: 7, Maple: 3, Rowan: 4 });

  /** What getDeviceConfirmOrCancelKeyStatus reads once a key was pressed; any other value: none was. */
  const KeyStatus = Object.freeze({ cancel: 0, confirm: 1 });

  /** Selectors of the three applications that have signature settings of their own. */
  const WPS_APPLICATION_IDS = Object.freeze({ WPS: '1', ET: '2', WPP: '3' });

  /** Every error this client raises by itself. `code` tells the cases apart, `message` is for a developer's eyes. */
  class SignPadError extends Error {
    constructor(code, message, options) {
      super(message, options);
      this.name = 'SignPadError';
      this.code = code;
    }
  }

  // ---- Values that go out ------------------------------------------------------------------------------------------

  const refuse = (name, expected) => {
    throw new SignPadError('invalid-argument', `${name} must be ${expected}`);
  };

  function integer(value, name) {
    if (!Number.isInteger(value) || value < -0x80000000 || value > 0x7fffffff) refuse(name, 'a 32-bit integer');
    return String(value);
  }

  function milliseconds(value, name) {
    const isTime = typeof value === 'number' && value >= 0 && value <= LONGEST_WAIT_MS;
    if (!isTime) refuse(name, `a number of milliseconds from 0 to ${LONGEST_WAIT_MS}`);
    return value;
  }

  function flag(value, name) {
    if (typeof value !== 'boolean') refuse(name, 'true or false');
    return value ? '1' : '0';
  }

  /** The service reads Style=0 as pressure on. */
  const pressureFlag = (value, name) => flag(value, name) === '1' ? '0' : '1';

  function application(value, name) {
    if (!Object.hasOwn(WPS_APPLICATION_IDS, value)) refuse(name, "'WPS', 'ET' or 'WPP'");
    return WPS_APPLICATION_IDS[value];
  }

  /** Text that arrives unchanged: the wire format has no escapes, the pad's library ends a text at a NUL. */
  function plainText(value, name) {
    if (typeof value !== 'string') refuse(name, 'a string');
    if (/\0|[\ud800-\udfff]/u.test(value)) refuse(name, 'free of NUL characters and lone surrogates');
    return value;
  }

  function queryText(value, name) {
    if (/[&=]/.test(plainText(value, name))) refuse(name, "free of '&' and '=', which the request cannot carry");
    return value;
  }

  /** Decode is read by its markers, so that its data may hold '='; only a marker inside a value would break it. */
  function decodeQuery({ type, path, data }) {
    const payload = plainText(data instanceof SignPadData ? data.base64 : data, 'data');
    if (payload === '') refuse('data', 'not empty');
    if (path === undefined) {
      if (payload.includes('&path=')) refuse('data', "free of '&path='");
      return `?type=${integer(type, 'type')}&data=${payload}`;
    }
    if (path === '') refuse('path', 'left out or not empty');
    if (plainText(path, 'path').includes('&data=')) refuse('path', "free of '&data='");
    return `?type=${integer(type, 'type')}&path=${path}&data=${payload}`;
  }

  // ---- Values that come back ---------------------------------------------------------------------------------------

  const malformed = (what) => new SignPadError('protocol', `The service sent ${what}`);

  function parseJson(text) {
    try {
      return JSON.parse(text);
    } catch (cause) {
      throw new SignPadError('protocol', 'The service sent a result that is not JSON', { cause });
    }
  }

  const nothing = () => undefined;

  const text = (result) => result;

  function number(result) {
    if (typeof result !== 'string' || !/^-?\d+$/.test(result)) throw malformed(`'${result}' where a number belongs`);
    return Number(result);
  }

  const truth = (result) => number(result) !== 0;

  function points(result) {
    const list = parseJson(result);
    if (!Array.isArray(list)) throw malformed('no list of points');
    return list.map((point) => ({
      x: number(point?.x),
      y: number(point.y),
      strokeEnd: truth(point.bStrokeEnd),
      ...('pressure' in point && { pressure: number(point.pressure) }),
      ...('Time' in point && { time: String(point.Time) }),
    }));
  }

  const decodedPoints = (result) => result === '' ? null : points(result);

  const base64Data = (result) => result === '' ? null : new SignPadData(result);

  function picture(result) {
    if (result === '') return null;
    const base64 = parseJson(result)?.[0]?.Image;
    if (typeof base64 !== 'string') throw malformed('no picture');
    return new SignPadData(base64);
  }

  /** A path, or the error number of the pad's library in its place. */
  function savedPath(result) {
    if (/^-?\d+$/.test(result)) throw new SignPadError('device-error', `The pad could not save the file: ${result}`);
    return result === '' ? null : result;
  }

  function deviceInfo(result, type) {
    if (result === '') return null;
    if (type === 1) return result === 'true';
    return type >= 2 && type <= 4 ? result.split(',').map(number) : result;
  }

  function wpsSettings(result) {
    const settings = parseJson(result);
    return {
      dateTime: truth(settings?.EnableDateTime),
      autoFit: truth(settings.EnableAutoFit),
      penWidth: number(settings.CurrentPenWidth),
      name: String(settings.Name),
    };
  }

  /** Binary data as the service delivers it: base64 text, most often a picture. */
  class SignPadData {
    constructor(base64) {
      this.base64 = base64.replace(/\s/g, '');
      const whole = this.base64.endsWith('=') ? this.base64.length % 4 === 0 : this.base64.length % 4 !== 1;
      if (!whole || !/^[A-Za-z0-9+/]*={0,2}$/.test(this.base64)) throw malformed('data that is not base64');
    }

    get bytes() {
      return Uint8Array.from(atob(this.base64), (character) => character.charCodeAt(0));
    }

    /** Read off the data itself: what an image type number means is up to the pad's library. */
    get mediaType() {
      const start = atob(this.base64.slice(0, 64));
      return MEDIA_TYPES.find(([pattern]) => pattern.test(start))?.[1] ?? 'application/octet-stream';
    }

    get blob() {
      return new Blob([this.bytes], { type: this.mediaType });
    }

    get dataURL() {
      return `data:${this.mediaType};base64,${this.base64}`;
    }
  }

  const MEDIA_TYPES = [
    [/^\x89PNG\r\n/, 'image/png'],
    [/^\xff\xd8\xff/, 'image/jpeg'],
    [/^BM/, 'image/bmp'],
    [/^(\xef\xbb\xbf)?\s*<(\?xml|svg|!DOCTYPE svg|!--)/, 'image/svg+xml'],
  ];

  // ---- The commands ------------------------------------------------------------------------------------------------

  /** "GetInks" becomes getInks, "WPSGetInks" wpsGetInks, "R" r. */
  const lowerFirst = (name) => name.replace(/^[A-Z]+(?=[A-Z][a-z])|^[A-Z]/, (start) => start.toLowerCase());

  const command = (api, parameters, decode, buildQuery) => Object.freeze({
    api,
    method: lowerFirst(api),
    parameters: Object.freeze(parameters.map(([key, encode, name = lowerFirst(key)]) => ({ key, encode, name }))),
    decode,
    buildQuery,
  });

  /** Every command in the order of its number: API name, parameters (key, encoder, argument's name), result. */
  const COMMANDS = Object.freeze([
    command('Clear', [], nothing),
    command('CloseLCD', [], nothing),
    command('Decode', [['type', integer], ['path', plainText], ['data', plainText]], decodedPoints, decodeQuery),
    command('DisplayDeviceInfoInLCD', [['show', flag]], nothing),
    command('Encode', [['type', integer]], base64Data),
    command('GetAboutInfo', [], text),
    command('GetDecodeFilePath', [], text),
    command('GetDeviceConfirmOrCancelKeyStatus', [], number),
    command('GetDeviceInfo', [['type', integer]], deviceInfo),
    command('GetFingerPrintImage', [['FPImageOnly', flag]], picture),
    command('GetInks', [], picture),
    command('GetPointer', [], points),
    command('GetSize', [], number),
    command('InitialDevice', [['id', integer], ['width', integer], ['height', integer]], truth),
    command('IsValid', [], truth),
    command('OpenLCD', [], nothing),
    command('PadID', [], text),
    command('PenID', [], text),
    command('SaveDrawingImage', [['type', integer], ['dpi', integer], ['path', queryText]], savedPath),
    command('SetClip', [['width', integer], ['height', integer]], nothing),
    command('SetDisplayedFPImageAt', [
      ['CanvasWidth', integer], ['CanvasHeight', integer],
      ['Left', integer], ['Top', integer], ['Width', integer], ['Height', integer],
    ], nothing),
    command('SetPenColor', [['R', integer], ['G', integer], ['B', integer]], nothing),
    command('SetPenStyle', [['Style', pressureFlag]], nothing),
    command('SetPenWidth', [['Width', integer]], nothing),
    command('UninitialDevice', [], truth),
    command('VersionID', [], text),
    command('GetWPSSettings', [['id', application]], wpsSettings),
    command('UpdateWPSSettings', [
      ['id', application, 'app'], ['dt', flag, 'dateTime'], ['af', flag, 'autoFit'],
      ['pw', integer, 'penWidth'], ['name', queryText],
    ], nothing),
    command('WPSSignConfirmed', [['id', application]], savedPath),
    command('WPSGetInks', [], picture),
    command('InitialWPSSignCanvas', [['width', integer], ['height', integer]], truth),
    command('GetSVGImageBase64Data', [], base64Data),
    command('EnableRealtimeSigningNotification', [['type', integer]], truth),
    command('GetOpaqueInks', [], picture),
  ]);

  /** A single parameter is passed as it is, several as one object. */
  function queryOf({ parameters, buildQuery }, argument) {
    if (parameters.length === 0) return '';
    if (parameters.length > 1 && (typeof argument !== 'object' || argument === null)) {
      refuse('the argument', `an object with ${parameters.map(({ name }) => name).join(', ')}`);
    }
    if (buildQuery) return buildQuery(argument);
    const pairs = parameters.map(({ key, encode, name }) =>
      `${key}=${encode(parameters.length === 1 ? argument : argument[name], name)}`);
    return `?${pairs.join('&')}`;
  }

  // ---- Pushes ------------------------------------------------------------------------------------------------------

  /**
   * The two messages the service sends unasked carry the names of commands and look exactly like their replies.
   * `couldBe` tells whether a result can be a push at all.
   */
  const PUSHES = Object.freeze({
    GetDeviceConfirmOrCancelKeyStatus: {
      event: 'key', decode: number, couldBe: (result) => result === '0' || result === '1',
    },
    GetInks: { event: 'image', decode: picture, couldBe: (result) => result !== '' },
  });

  class SignPadEvent extends Event {
    constructor(type, detail) {
      super(type);
      this.detail = detail;
    }
  }

  /** After these the pad's ink and key begin anew. */
  const FRESH_STARTS = new Set(['Clear', 'InitialDevice', 'UninitialDevice']);

  const sameInk = (a, b) =>
    a === b || (a.length === b?.length && JSON.stringify(a.at(-1)) === JSON.stringify(b.at(-1)));

  // ---- Time --------------------------------------------------------------------------------------------------------

  function delay(milliseconds, signal) {
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

  // ---- Connecting --------------------------------------------------------------------------------------------------

  /**
   * 'granted', 'denied' or 'prompt'; undefined where no such permission exists. Browsers hide why a connection failed:
   * this alone tells a refusal from a closed port.
   */
  async function localNetworkPermission() {
    for (const name of ['loopback-network', 'local-network-access']) {
      const status = await globalThis.navigator?.permissions?.query?.({ name }).catch(() => undefined);
      if (status) return status.state;
    }
    return undefined;
  }

  /** The connection waits while the browser asks the user. It never asks for pages of this computer. */
  async function mayBeAsking() {
    const { protocol, hostname } = globalThis.location ?? { protocol: 'file:' };
    const isLocalPage = protocol === 'file:' || /^(localhost|127\..*|\[::1\])$/.test(hostname);
    return !isLocalPage && await localNetworkPermission() === 'prompt';
  }

  async function unreachable(url, cause) {
    return await localNetworkPermission() === 'denied'
      ? new SignPadError('permission-denied', `The browser does not let this page reach ${url}: ` +
          'it was refused access to programs on this computer', { cause })
      : new SignPadError('service-not-running', `Nothing answers at ${url}: is the service started?`, { cause });
  }

  function createSocket(WebSocketClass, url) {
    try {
      return new WebSocketClass(url);
    } catch (cause) {
      if (cause?.name === 'SyntaxError') refuse('host', 'the name or the address of a computer, an IPv6 address in brackets');
      if (cause?.name !== 'SecurityError') throw cause;
      throw new SignPadError('permission-denied', `The browser does not let this page reach ${url}`, { cause });
    }
  }

  /** Resolves with an open socket; a socket that does not open is given up. */
  function openSocket({ WebSocket: WebSocketClass, timeout, promptTimeout }, url, signal) {
    return new Promise((resolve, reject) => {
      if (signal?.aborted) return reject(signal.reason);
      const socket = createSocket(WebSocketClass, url);
      socket.binaryType = 'arraybuffer';
      let cause;
      const settle = (act, value) => {
        clearTimeout(timer);
        signal?.removeEventListener('abort', aborted);
        socket.onopen = socket.onclose = null;
        act(value);
      };
      const giveUp = (reason) => {
        settle(reject, reason);
        socket.close();
      };
      const aborted = () => giveUp(signal.reason);
      const expired = () => giveUp(new SignPadError('timeout', `${url} did not answer in time`));
      let timer = setTimeout(async () => {
        const isAsking = await mayBeAsking();
        if (socket.readyState !== socket.CONNECTING) return;
        timer = setTimeout(expired, isAsking ? promptTimeout : 0);
      }, timeout);
      signal?.addEventListener('abort', aborted);
      socket.onerror = (event) => { cause = event.error; };
      socket.onclose = () => {
        clearTimeout(timer);
        unreachable(url, cause).then((error) => settle(reject, error));
      };
      socket.onopen = () => settle(resolve, socket);
    });
  }

  function checkedOptions(options) {
    const { port = DEFAULT_PORT, host = 'localhost', timeout = DEFAULT_TIMEOUT_MS, promptTimeout = PROMPT_TIMEOUT_MS,
      reconnect = true, reconnectDelay = 500, maxReconnectDelay = 10_000, WebSocket = globalThis.WebSocket,
      signal } = options;
    if (!Number.isInteger(port) || port < 1 || port > 65535) refuse('port', 'a number from 1 to 65535');
    const times = { timeout, promptTimeout, reconnectDelay, maxReconnectDelay };
    for (const [name, value] of Object.entries(times)) milliseconds(value, name);
    if (typeof WebSocket !== 'function') refuse('WebSocket', 'given where there is no global WebSocket');
    return { port, host, timeout, promptTimeout, reconnect, reconnectDelay, maxReconnectDelay, WebSocket, signal };
  }

  // ---- The client --------------------------------------------------------------------------------------------------

  /**
   * One connection to the service. It carries one request at a time; further calls wait in line.
   *
   * Events (each with a `detail`): `key`, `image` (pushes), `message` ({direction, text}), `disconnect`,
   * `reconnecting` and `reconnect`.
   */
  class SignPad extends EventTarget {
    #options;
    #socket = null;
    #closing = new AbortController();
    #waiting = [];
    #current = null;
    #fences = 0;
    #freshStarts = 0; // how often this client has emptied, opened or closed the pad

    static async connect(options = {}) {
      const pad = new SignPad(options);
      await pad.#open(pad.#options.signal);
      return pad;
    }

    /** Use SignPad.connect(): an instance made by `new` is not connected. */
    constructor(options = {}) {
      super();
      this.#options = checkedOptions(options);
    }

    /** Where the service is reached. */
    get url() {
      return `ws://${this.#options.host}:${this.#options.port}/`;
    }

    get connected() {
      return this.#socket !== null;
    }

    /** Ends the connection for good; calls not yet answered fail with `connection-lost`. Leaves the pad as it is. */
    close() {
      this.#closing.abort();
      const socket = this.#socket;
      this.#dropSocket(new SignPadError('connection-lost', 'The connection was closed'));
      socket?.close();
    }

    /** Opens a pad, so that `pad-missing` is raised instead of answered with false. */
    async open({ model, width, height }, options) {
      if (!await this.initialDevice({ id: model, width, height }, options)) {
        throw new SignPadError('pad-missing', 'No pad of this model answers');
      }
    }

    /**
     * Follows the signing: yields {points, key} at once, after each change, and after each clear() of this client, until
     * the loop is left or the signal aborts. Raises `pad-missing` when the pad is gone.
     */
    async *watch({ interval = POLL_INTERVAL_MS, signal } = {}) {
      try {
        yield* this.#watch(milliseconds(interval, 'interval'), { signal });
      } catch (error) {
        if (!signal?.aborted) throw error;
      }
    }

    async *#watch(interval, options) {
      let seen = {};
      let presenceCheckedAt = -Infinity;
      while (!options.signal?.aborted) {
        if (performance.now() - presenceCheckedAt >= PRESENCE_CHECK_MS) {
          if (!await this.isValid(options)) throw new SignPadError('pad-missing', 'The pad is no longer there');
          presenceCheckedAt = performance.now();
        }
        const start = this.#freshStarts;
        if (start !== seen.start) seen = { start };
        // The key first: the ink then holds all that came before it.
        const key = await this.getDeviceConfirmOrCancelKeyStatus(options);
        const points = await this.#pointsAfter(seen.points, options);
        if (start !== this.#freshStarts) continue; // the key may be from before, the ink from after
        const isNews = key !== seen.key || !sameInk(points, seen.points);
        seen = { start, key, points };
        if (isNews) yield { points, key };
        await delay(interval, options.signal);
      }
    }

    /** Fetches the points when they may differ. Lifting the pen marks the last one and adds none. */
    async #pointsAfter(seen, options) {
      const size = await this.getSize(options);
      return size === seen?.length && seen.at(-1)?.strokeEnd !== false ? seen : this.getPointer(options);
    }

    // Requests

    /** Sends one command of the table and resolves with its decoded result. */
    #call(row, argument, options) {
      return new Promise((resolve, reject) => {
        const { timeout = this.#options.timeout, signal } = options ?? {};
        milliseconds(timeout, 'timeout');
        if (signal?.aborted) return reject(signal.reason);
        const query = queryOf(row, argument);
        if (!this.#socket) throw new SignPadError('connection-lost', `There is no connection to ${this.url}`);
        const request = {
          row,
          // The service compares this prefix letter by letter, whatever host name the connection went to.
          text: `ws://localhost:${this.#options.port}/MVSignSDK/${row.api}${query}`,
          heard: [],
          fail: (error) => request.settle(reject, error),
          succeed: (result) => request.settle(resolve, row.decode(result, argument)),
          settle: (act, value) => {
            clearTimeout(timer);
            signal?.removeEventListener('abort', aborted);
            act(value);
          },
        };
        const aborted = () => this.#abandon(request, signal.reason);
        const timer = setTimeout(() => this.#abandon(request,
          new SignPadError('timeout', `${row.api} was not answered within ${timeout} ms`)), timeout);
        signal?.addEventListener('abort', aborted);
        this.#waiting.push(request);
        this.#sendNext();
      });
    }

    /**
     * Gives up on a request. One that was sent still holds the line until its reply has come, so that a late reply
     * is never taken for the answer to another request.
     */
    #abandon(request, error) {
      this.#waiting = this.#waiting.filter((other) => other !== request);
      request.fail(error);
    }

    #sendNext() {
      if (this.#current || this.#waiting.length === 0) return;
      const request = this.#current = this.#waiting.shift();
      this.#socket.send(request.text);
      if (Object.hasOwn(PUSHES, request.row.api)) {
        // The service echoes binary messages in their turn: once this one is back, the reply must have come.
        request.fence = ++this.#fences;
        this.#socket.send(Uint32Array.of(request.fence));
      }
      this.#announce('sent', request.text); // last: a listener may close the connection
    }

    #finish(act) {
      const request = this.#current;
      this.#current = null;
      try {
        act(request);
      } catch (error) {
        request.fail(error);
      }
      this.#sendNext();
    }

    // Messages

    #receive(data) {
      if (typeof data !== 'string') return this.#receiveEcho(data);
      this.#announce('received', data);
      const message = envelope(data);
      const request = this.#current;
      const answers = request && (message?.API === request.row.api || message?.API === INVALID_REQUEST);
      if (answers && FRESH_STARTS.has(message.API)) this.#freshStarts += 1;
      if (answers && request.fence && message.API !== INVALID_REQUEST) {
        request.heard.push(message.Result);
      } else if (answers) {
        this.#finish(({ succeed, fail }) => message.API === INVALID_REQUEST
          ? fail(new SignPadError('invalid-request', `The service does not accept ${request.row.api}`))
          : succeed(message.Result));
      } else if (message && Object.hasOwn(PUSHES, message.API)) {
        this.#push(message.API, message.Result);
      } else if (request && (!message || COMMANDS.some(({ api }) => api === message.API))) {
        this.#finish(({ fail }) => fail(malformed(`something that does not answer ${request.row.api}`)));
      } // what is named like no command concerns nobody: a later service may have further pushes
    }

    /**
     * A request whose reply looks like a push is complete. Of several messages of its name, the reply is one that
     * cannot be a push; if all can, nothing tells them apart and the first is taken. The others are pushes.
     */
    #receiveEcho(data) {
      const request = this.#current;
      if (!request?.fence || data.byteLength !== 4 || new Uint32Array(data)[0] !== request.fence) return;
      const { api } = request.row;
      const surely = request.heard.findIndex((result) => !PUSHES[api].couldBe(result));
      const [reply] = request.heard.splice(Math.max(surely, 0), 1);
      this.#finish(({ succeed, fail }) => reply === undefined ? fail(malformed(`no reply to ${api}`)) : succeed(reply));
      for (const result of request.heard) this.#push(api, result);
    }

    #push(api, result) {
      const { event, decode } = PUSHES[api];
      try {
        this.#emit(event, decode(result));
      } catch (error) {
        if (!(error instanceof SignPadError)) throw error; // a malformed push concerns no caller
      }
    }

    #emit(type, detail) {
      this.dispatchEvent(new SignPadEvent(type, detail));
    }

    #announce(direction, message) {
      this.#emit('message', { direction, text: message });
    }

    // The connection

    async #open(signal) {
      const socket = await openSocket(this.#options, this.url, signal);
      socket.onmessage = (event) => this.#receive(event.data);
      socket.onclose = () => this.#lost(socket);
      this.#socket = socket;
    }

    #lost(socket) {
      if (socket !== this.#socket) return;
      const error = new SignPadError('connection-lost', `The connection to ${this.url} was lost`);
      this.#dropSocket(error);
      this.#emit('disconnect', { error, willReconnect: this.#options.reconnect });
      if (this.#options.reconnect) this.#reopen();
    }

    #dropSocket(error) {
      if (this.#socket) this.#socket.onclose = this.#socket.onmessage = null;
      this.#socket = null;
      const unanswered = [this.#current, ...this.#waiting].filter(Boolean);
      this.#current = null;
      this.#waiting = [];
      for (const request of unanswered) request.fail(error);
    }

    /** Tries again until it works or the client is closed, waiting twice as long each time. */
    async #reopen() {
      const { reconnectDelay, maxReconnectDelay } = this.#options;
      const { signal } = this.#closing;
      for (let attempt = 1; !signal.aborted && !this.#socket; ++attempt) {
        const wait = Math.min(reconnectDelay * 2 ** (attempt - 1), maxReconnectDelay);
        this.#emit('reconnecting', { attempt, delay: wait });
        await delay(wait, signal);
        await this.#open(signal).catch(() => undefined);
        if (this.#socket) this.#emit('reconnect', { attempt });
      }
    }

    static {
      for (const row of COMMANDS) {
        const method = row.parameters.length === 0
          ? function (options) { return this.#call(row, undefined, options); }
          : function (argument, options) { return this.#call(row, argument, options); };
        Object.defineProperty(this.prototype, row.method, { value: method, writable: true, configurable: true });
      }
    }
  }

  /** The message as {API, Result}, both strings; undefined for anything else. */
  function envelope(data) {
    try {
      const { API, Result } = JSON.parse(data);
      return typeof API === 'string' && typeof Result === 'string' ? { API, Result } : undefined;
    } catch {
      return undefined;
    }
  }

  return Object.freeze({ SignPad, SignPadError, SignPadData, Model, KeyStatus, COMMANDS });
})();

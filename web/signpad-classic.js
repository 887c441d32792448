// Generated from src/ by `npm run build`: change it there.
"use strict";
(() => {
  // src/errors.ts
  var SignPadError = class extends Error {
    constructor(code, message, options) {
      super(message);
      this.name = "SignPadError";
      this.code = code;
      if (options) this.cause = options.cause;
    }
  };
  function refuse(name, expected) {
    throw new SignPadError("invalid-argument", `${name} must be ${expected}`);
  }
  var malformed = (what) => new SignPadError("protocol", `The service sent ${what}`);

  // src/data.ts
  var MEDIA_TYPES = [
    [/^\x89PNG\r\n/, "image/png"],
    [/^\xff\xd8\xff/, "image/jpeg"],
    [/^BM/, "image/bmp"],
    [/^(\xef\xbb\xbf)?\s*<(\?xml|svg|!DOCTYPE svg|!--)/, "image/svg+xml"]
  ];
  var SignPadData = class {
    constructor(base64) {
      this.base64 = base64.replace(/\s/g, "");
      const whole = this.base64.endsWith("=") ? this.base64.length % 4 === 0 : this.base64.length % 4 !== 1;
      if (!whole || !/^[A-Za-z0-9+/]*={0,2}$/.test(this.base64)) throw malformed("data that is not base64");
    }
    get bytes() {
      return Uint8Array.from(atob(this.base64), (character) => character.charCodeAt(0));
    }
    /** Read off the data: image/png, image/jpeg, image/bmp, image/svg+xml or application/octet-stream. */
    get mediaType() {
      const start = atob(this.base64.slice(0, 64));
      const known = MEDIA_TYPES.find(([pattern]) => pattern.test(start));
      return known ? known[1] : "application/octet-stream";
    }
    get blob() {
      return new Blob([this.bytes], { type: this.mediaType });
    }
    get dataURL() {
      return `data:${this.mediaType};base64,${this.base64}`;
    }
  };

  // src/decoders.ts
  var KeyStatus = Object.freeze({ cancel: 0, confirm: 1 });
  function parseJson(text2) {
    try {
      return JSON.parse(text2);
    } catch (cause) {
      throw new SignPadError("protocol", "The service sent a result that is not JSON", { cause });
    }
  }
  function fieldsOf(value, what) {
    if (typeof value !== "object" || value === null) throw malformed(`no ${what}`);
    return value;
  }
  function listOf(result, what) {
    const list = parseJson(result);
    if (!Array.isArray(list)) throw malformed(`no ${what}`);
    return list;
  }
  var nothing = () => void 0;
  var text = (result) => result;
  function number(result) {
    if (typeof result !== "string" || !/^-?\d+$/.test(result)) throw malformed(`'${result}' where a number belongs`);
    return Number(result);
  }
  var truth = (result) => number(result) !== 0;
  function decodedPoint(value) {
    const { x, y, bStrokeEnd } = fieldsOf(value, "point");
    return { x: number(x), y: number(y), strokeEnd: truth(bStrokeEnd) };
  }
  function inkPoint(value) {
    const { x, y, bStrokeEnd, pressure, Time } = fieldsOf(value, "point");
    return {
      x: number(x),
      y: number(y),
      strokeEnd: truth(bStrokeEnd),
      pressure: number(pressure),
      time: String(Time)
    };
  }
  var points = (result) => listOf(result, "list of points").map(inkPoint);
  var decodedPoints = (result) => result === "" ? null : listOf(result, "list of points").map(decodedPoint);
  var base64Data = (result) => result === "" ? null : new SignPadData(result);
  function picture(result) {
    if (result === "") return null;
    const { Image: base64 } = fieldsOf(listOf(result, "picture")[0], "picture");
    if (typeof base64 !== "string") throw malformed("no picture");
    return new SignPadData(base64);
  }
  function savedPath(result) {
    if (/^-?\d+$/.test(result)) throw new SignPadError("device-error", `The pad could not save the file: ${result}`);
    return result === "" ? null : result;
  }
  function deviceInfo(result, type) {
    if (result === "") return null;
    if (type === 1) return result === "true";
    return type >= 2 && type <= 4 ? result.split(",").map(number) : result;
  }
  function wpsSettings(result) {
    const settings = fieldsOf(parseJson(result), "settings");
    return {
      dateTime: truth(settings["EnableDateTime"]),
      autoFit: truth(settings["EnableAutoFit"]),
      penWidth: number(settings["CurrentPenWidth"]),
      name: String(settings["Name"])
    };
  }

  // src/encoders.ts
  var LONGEST_WAIT_MS = 2147483647;
  var Model = Object.freeze({ Alder: 2, Birch: 5, Cedar: 7, Maple: 3, Rowan: 4 });
  var WPS_APPLICATION_IDS = /* @__PURE__ */ new Map([["WPS", "1"], ["ET", "2"], ["WPP", "3"]]);
  function integer(value, name) {
    if (!Number.isInteger(value) || value < -2147483648 || value > 2147483647) refuse(name, "a 32-bit integer");
    return String(value);
  }
  var model = integer;
  function milliseconds(value, name) {
    const isTime = typeof value === "number" && value >= 0 && value <= LONGEST_WAIT_MS;
    if (!isTime) refuse(name, `a number of milliseconds from 0 to ${LONGEST_WAIT_MS}`);
    return value;
  }
  function flag(value, name) {
    if (typeof value !== "boolean") refuse(name, "true or false");
    return value ? "1" : "0";
  }
  var pressureFlag = (value, name) => flag(value, name) === "1" ? "0" : "1";
  function application(value, name) {
    var _a;
    return (_a = WPS_APPLICATION_IDS.get(value)) != null ? _a : refuse(name, "'WPS', 'ET' or 'WPP'");
  }
  function plainText(value, name) {
    if (typeof value !== "string") refuse(name, "a string");
    if (/\0|[\ud800-\udfff]/u.test(value)) refuse(name, "free of NUL characters and lone surrogates");
    return value;
  }
  function queryText(value, name) {
    if (/[&=]/.test(plainText(value, name))) refuse(name, "free of '&' and '=', which the request cannot carry");
    return value;
  }
  function decodeQuery({ type, path, data }) {
    const payload = plainText(data instanceof SignPadData ? data.base64 : data, "data");
    if (payload === "") refuse("data", "not empty");
    if (path === void 0) {
      if (payload.includes("&path=")) refuse("data", "free of '&path='");
      return `?type=${integer(type, "type")}&data=${payload}`;
    }
    if (path === "") refuse("path", "left out or not empty");
    if (plainText(path, "path").includes("&data=")) refuse("path", "free of '&data='");
    return `?type=${integer(type, "type")}&path=${path}&data=${payload}`;
  }

  // src/commands.ts
  var rowsOf = (encodings) => Object.entries(encodings).map(([name, encoding]) => {
    const [key, encode] = typeof encoding === "function" ? [name, encoding] : encoding;
    return { key, name, encode };
  });
  var plain = (api, decode2) => ({ api, parameters: [], query: () => "", decode: decode2 });
  function oneValue(api, encodings, decode2) {
    const parameters = rowsOf(encodings);
    const query = (value) => `?${parameters.map(({ key, name, encode }) => `${key}=${encode(value, name)}`)}`;
    return { api, parameters, query, decode: decode2 };
  }
  function values(api, encodings, decode2) {
    const parameters = rowsOf(encodings);
    const query = (argument) => `?${parameters.map(({ key, name, encode }) => `${key}=${encode(argument[name], name)}`).join("&")}`;
    return { api, parameters, query: (argument) => query(objectWith(parameters, argument)), decode: decode2 };
  }
  function objectWith(parameters, argument) {
    if (typeof argument === "object" && argument !== null) return argument;
    return refuse("the argument", `an object with ${parameters.map(({ name }) => name).join(", ")}`);
  }
  var decodeParameters = rowsOf({ type: integer, path: plainText, data: plainText });
  var decode = {
    api: "Decode",
    parameters: decodeParameters,
    query: (argument) => decodeQuery(objectWith(decodeParameters, argument)),
    decode: decodedPoints
  };
  var commands = {
    /** Removes the ink. */
    clear: plain("Clear", nothing),
    closeLCD: plain("CloseLCD", nothing),
    /** Writes the data to /tmp/ + path. The points of ink data (type 6), null for every other type. */
    decode,
    displayDeviceInfoInLCD: oneValue("DisplayDeviceInfoInLCD", { show: flag }, nothing),
    /** The drawing in one of the pad library's formats, each time it is asked for. Null: none. */
    encode: oneValue("Encode", { type: integer }, base64Data),
    getAboutInfo: plain("GetAboutInfo", text),
    getDecodeFilePath: plain("GetDecodeFilePath", text),
    /** See `KeyStatus`; -1 while no pad is open. */
    getDeviceConfirmOrCancelKeyStatus: plain("GetDeviceConfirmOrCancelKeyStatus", number),
    /** Null while no pad is open. Type 1: whether the pad is connected. */
    getDeviceInfo: oneValue("GetDeviceInfo", { type: integer }, deviceInfo),
    /** Of the finger alone (true) or with its surroundings. Null: no sensor, or the picture that was fetched last. */
    getFingerPrintImage: oneValue("GetFingerPrintImage", { fpImageOnly: ["FPImageOnly", flag] }, picture),
    /** Null: no ink, or the same picture as the last one that any client fetched by this, wpsGetInks or getOpaqueInks. */
    getInks: plain("GetInks", picture),
    getPointer: plain("GetPointer", points),
    getSize: plain("GetSize", number),
    /** False: no such pad answers. Opening closes the pad that was open before, for all clients. */
    initialDevice: values("InitialDevice", { id: model, width: integer, height: integer }, truth),
    isValid: plain("IsValid", truth),
    openLCD: plain("OpenLCD", nothing),
    padID: plain("PadID", text),
    penID: plain("PenID", text),
    /** The path of the saved picture; raises `device-error`. Null while no pad is open. */
    saveDrawingImage: values("SaveDrawingImage", { type: integer, dpi: integer, path: queryText }, savedPath),
    /** Margin around the ink in saved pictures; 0 and 0: the whole pad, a negative value: no change. */
    setClip: values("SetClip", { width: integer, height: integer }, nothing),
    setDisplayedFPImageAt: values("SetDisplayedFPImageAt", {
      canvasWidth: ["CanvasWidth", integer],
      canvasHeight: ["CanvasHeight", integer],
      left: ["Left", integer],
      top: ["Top", integer],
      width: ["Width", integer],
      height: ["Height", integer]
    }, nothing),
    setPenColor: values("SetPenColor", { r: ["R", integer], g: ["G", integer], b: ["B", integer] }, nothing),
    /** True: the stroke's width follows the pressure. */
    setPenStyle: oneValue("SetPenStyle", { pressure: ["Style", pressureFlag] }, nothing),
    setPenWidth: oneValue("SetPenWidth", { width: ["Width", integer] }, nothing),
    uninitialDevice: plain("UninitialDevice", truth),
    versionID: plain("VersionID", text),
    getWPSSettings: oneValue("GetWPSSettings", { app: ["id", application] }, wpsSettings),
    /** Replaces all four settings. */
    updateWPSSettings: values("UpdateWPSSettings", {
      app: ["id", application],
      dateTime: ["dt", flag],
      autoFit: ["af", flag],
      penWidth: ["pw", integer],
      name: queryText
    }, nothing),
    /** The path of the finished picture; raises `device-error`. Null while no pad is open. */
    wpsSignConfirmed: oneValue("WPSSignConfirmed", { app: ["id", application] }, savedPath),
    /** Null as with getInks. */
    wpsGetInks: plain("WPSGetInks", picture),
    initialWPSSignCanvas: values("InitialWPSSignCanvas", { width: integer, height: integer }, truth),
    getSVGImageBase64Data: plain("GetSVGImageBase64Data", base64Data),
    /** Pushes of `key` and `image` to every client; false: the model has none. */
    enableRealtimeSigningNotification: oneValue("EnableRealtimeSigningNotification", { type: integer }, truth),
    /** Null as with getInks. */
    getOpaqueInks: plain("GetOpaqueInks", picture)
  };
  var COMMANDS = Object.freeze(Object.keys(commands).map((method) => {
    const { api, parameters } = commands[method];
    return Object.freeze({ api, method, parameters: Object.freeze(parameters.map(({ key, name }) => ({ key, name }))) });
  }));

  // src/events.ts
  var DetailedEvent = class extends Event {
    constructor(type, detail) {
      super(type);
      this.detail = detail;
    }
  };

  // src/messages.ts
  var INVALID_REQUEST = "Invalid API request";
  function parseMessage(data) {
    try {
      const { API: api, Result: result } = JSON.parse(data);
      return typeof api === "string" && typeof result === "string" ? { api, result } : void 0;
    } catch {
      return void 0;
    }
  }
  var COMMAND_NAMES = new Set(COMMANDS.map(({ api }) => api));
  var isCommand = (api) => COMMAND_NAMES.has(api);
  var PUSHES = /* @__PURE__ */ new Map([
    ["GetDeviceConfirmOrCancelKeyStatus", {
      couldBe: (result) => result === "0" || result === "1",
      emit: (result, emit) => emit("key", number(result))
    }],
    ["GetInks", {
      couldBe: (result) => result !== "",
      emit: (result, emit) => emit("image", picture(result))
    }]
  ]);
  var isPushed = (api) => PUSHES.has(api);
  function replyAmong(api, results) {
    const surely = results.findIndex((result) => {
      var _a;
      return !((_a = PUSHES.get(api)) == null ? void 0 : _a.couldBe(result));
    });
    return Math.max(surely, 0);
  }
  function emitPush({ api, result }, emit) {
    var _a;
    try {
      (_a = PUSHES.get(api)) == null ? void 0 : _a.emit(result, emit);
    } catch (error) {
      if (!(error instanceof SignPadError)) throw error;
    }
  }

  // src/surroundings.ts
  var surroundings = typeof self === "undefined" ? globalThis : self;
  var reasonOf = (signal) => signal.reason === void 0 ? new DOMException("The operation was aborted", "AbortError") : signal.reason;
  function delay(milliseconds2, signal) {
    return new Promise((resolve) => {
      if (signal == null ? void 0 : signal.aborted) return resolve();
      const done = () => {
        clearTimeout(timer);
        signal == null ? void 0 : signal.removeEventListener("abort", done);
        resolve();
      };
      const timer = setTimeout(done, milliseconds2);
      signal == null ? void 0 : signal.addEventListener("abort", done);
    });
  }

  // src/line.ts
  var FRESH_STARTS = /* @__PURE__ */ new Set(["Clear", "InitialDevice", "UninitialDevice"]);
  var RequestLine = class {
    constructor(port, timeout, emit) {
      this.port = port;
      this.timeout = timeout;
      this.emit = emit;
      /** How often this client has emptied, opened or closed the pad. */
      this.freshStarts = 0;
      this.socket = null;
      this.waiting = [];
      this.current = null;
      this.fences = 0;
    }
    get connected() {
      return this.socket !== null;
    }
    carryOver(socket) {
      socket.onmessage = (event) => this.receive(event.data);
      this.socket = socket;
    }
    /** Without a socket every request fails. Returns the one that was used. */
    cut(error) {
      const { socket, waiting, current } = this;
      if (socket) socket.onclose = socket.onmessage = null;
      this.socket = this.current = null;
      this.waiting = [];
      for (const request of current ? [current, ...waiting] : waiting) request.fail(error);
      return socket;
    }
    /** Sends one command and resolves with its decoded result. */
    call(command, argument, options) {
      return new Promise((resolve, reject) => {
        const { timeout = this.timeout, signal } = options != null ? options : {};
        milliseconds(timeout, "timeout");
        if (signal == null ? void 0 : signal.aborted) return reject(reasonOf(signal));
        const { api } = command;
        const text2 = `ws://localhost:${this.port}/MVSignSDK/${api}${command.query(argument)}`;
        if (!this.socket) throw new SignPadError("connection-lost", "There is no connection to the service");
        const settle = (act) => {
          clearTimeout(timer);
          signal == null ? void 0 : signal.removeEventListener("abort", aborted);
          act();
        };
        const request = {
          api,
          text: text2,
          heard: [],
          fail: (error) => settle(() => reject(error)),
          succeed: (result) => settle(() => resolve(command.decode(result, argument)))
        };
        const aborted = () => this.abandon(request, reasonOf(signal));
        const timer = setTimeout(() => this.abandon(
          request,
          new SignPadError("timeout", `${api} was not answered within ${timeout} ms`)
        ), timeout);
        signal == null ? void 0 : signal.addEventListener("abort", aborted);
        this.waiting.push(request);
        this.sendNext();
      });
    }
    /**
     * Gives up on a request. One that was sent still holds the line until its reply has come, so that a late reply
     * is never taken for the answer to another request.
     */
    abandon(request, error) {
      this.waiting = this.waiting.filter((other) => other !== request);
      request.fail(error);
    }
    sendNext() {
      const request = this.current ? void 0 : this.waiting.shift();
      if (!request || !this.socket) return;
      this.current = request;
      this.socket.send(request.text);
      if (isPushed(request.api)) {
        request.fence = ++this.fences;
        this.socket.send(Uint32Array.of(request.fence));
      }
      this.emit("message", { direction: "sent", text: request.text });
    }
    finish(request, act) {
      this.current = null;
      try {
        act();
      } catch (error) {
        request.fail(error);
      }
      this.sendNext();
    }
    receive(data) {
      if (typeof data !== "string") return this.receiveEcho(data);
      this.emit("message", { direction: "received", text: data });
      const message = parseMessage(data);
      const request = this.current;
      if (request && message && [request.api, INVALID_REQUEST].includes(message.api)) {
        this.receiveAnswer(request, message);
      } else if (message && isPushed(message.api)) {
        emitPush(message, this.emit);
      } else if (request && (!message || isCommand(message.api))) {
        this.finish(request, () => request.fail(malformed(`something that does not answer ${request.api}`)));
      }
    }
    receiveAnswer(request, { api, result }) {
      if (FRESH_STARTS.has(api)) this.freshStarts += 1;
      if (api === INVALID_REQUEST) {
        this.finish(request, () => request.fail(new SignPadError(
          "invalid-request",
          `The service does not know ${request.api}: it is older than this client`
        )));
      } else if (request.fence) {
        request.heard.push(result);
      } else {
        this.finish(request, () => request.succeed(result));
      }
    }
    /**
     * A request whose reply looks like a push is complete. Of several messages of its name, the reply is one that
     * cannot be a push; if all can, nothing tells them apart and the first is taken. The others are pushes.
     */
    receiveEcho(data) {
      const request = this.current;
      if (!(request == null ? void 0 : request.fence) || data.byteLength !== 4 || new Uint32Array(data)[0] !== request.fence) return;
      const { api, heard } = request;
      const [reply] = heard.splice(replyAmong(api, heard), 1);
      this.finish(request, () => reply === void 0 ? request.fail(malformed(`no reply to ${api}`)) : request.succeed(reply));
      for (const result of heard) emitPush({ api, result }, this.emit);
    }
  };

  // src/options.ts
  function webSocketClass(given2) {
    if (given2 !== void 0 && typeof given2 !== "function") refuse("WebSocket", "a class");
    const found = given2 != null ? given2 : surroundings.WebSocket;
    if (!found) throw new SignPadError("no-websocket", "There is no WebSocket here: give one to connect()");
    return found;
  }
  function checkedOptions(options) {
    const settings = {
      port: 8089,
      host: "localhost",
      timeout: 1e4,
      promptTimeout: 6e4,
      reconnect: true,
      reconnectDelay: 500,
      maxReconnectDelay: 1e4,
      ...given(options)
    };
    const { port, timeout, promptTimeout, reconnectDelay, maxReconnectDelay } = settings;
    if (!Number.isInteger(port) || port < 1 || port > 65535) refuse("port", "a number from 1 to 65535");
    for (const [name, value] of Object.entries({ timeout, promptTimeout, reconnectDelay, maxReconnectDelay })) {
      milliseconds(value, name);
    }
    return { ...settings, WebSocket: webSocketClass(options.WebSocket) };
  }
  function given(options) {
    const whole = { ...options };
    for (const name of Object.keys(whole)) if (whole[name] === void 0) delete whole[name];
    return whole;
  }

  // src/socket.ts
  async function localNetworkPermission() {
    var _a, _b, _c;
    for (const name of ["loopback-network", "local-network-access"]) {
      const status = await ((_c = (_b = (_a = surroundings.navigator) == null ? void 0 : _a.permissions) == null ? void 0 : _b.query) == null ? void 0 : _c.call(_b, { name }).catch(() => void 0));
      if (status) return status.state;
    }
    return void 0;
  }
  var page = () => {
    var _a;
    return (_a = surroundings.location) != null ? _a : { protocol: "file:", hostname: "" };
  };
  async function mayBeAsking() {
    const { protocol, hostname } = page();
    const isLocalPage = protocol === "file:" || /^(localhost|127\..*|\[::1\])$/.test(hostname);
    return !isLocalPage && await localNetworkPermission() === "prompt";
  }
  async function unreachable(url, cause) {
    return await localNetworkPermission() === "denied" ? new SignPadError("permission-denied", `The browser does not let this page reach ${url}: it was refused access to programs on this computer`, { cause }) : new SignPadError("service-not-running", `Nothing answers at ${url}: is the service started?`, { cause });
  }
  var refusedByBrowser = (url, cause) => page().protocol === "https:" ? new SignPadError("mixed-content", `This browser lets no page from https:// reach ${url}`, { cause }) : new SignPadError("permission-denied", `The browser does not let this page reach ${url}`, { cause });
  function createSocket({ WebSocket }, url) {
    try {
      return new WebSocket(url);
    } catch (cause) {
      const { name } = cause;
      if (name === "SyntaxError") refuse("host", "the name or the address of a computer, an IPv6 address in brackets");
      throw name === "SecurityError" || !(cause instanceof Error) ? refusedByBrowser(url, cause) : cause;
    }
  }
  function openSocket(settings, url, signal) {
    return new Promise((resolve, reject) => {
      if (signal == null ? void 0 : signal.aborted) return reject(reasonOf(signal));
      const { timeout, promptTimeout } = settings;
      const socket = createSocket(settings, url);
      socket.binaryType = "arraybuffer";
      const settle = (act) => {
        clearTimeout(timer);
        signal == null ? void 0 : signal.removeEventListener("abort", aborted);
        socket.onopen = socket.onclose = null;
        socket.onerror = () => void 0;
        act();
      };
      const giveUp = (reason) => {
        settle(() => reject(reason));
        socket.close();
      };
      const aborted = () => giveUp(reasonOf(signal));
      const expired = () => giveUp(new SignPadError("timeout", `${url} did not answer in time`));
      let timer = setTimeout(async () => {
        const isAsking = await mayBeAsking();
        if (socket.readyState !== socket.CONNECTING) return;
        timer = setTimeout(expired, isAsking ? promptTimeout : 0);
      }, timeout);
      signal == null ? void 0 : signal.addEventListener("abort", aborted);
      const failed = (event) => {
        clearTimeout(timer);
        unreachable(url, event.error).then((error) => settle(() => reject(error)));
      };
      socket.onerror = socket.onclose = failed;
      socket.onopen = () => settle(() => resolve(socket));
    });
  }

  // src/watch.ts
  var PRESENCE_CHECK_MS = 1e3;
  var lastOf = (points2) => points2[points2.length - 1];
  var sameInk = (a, b) => a === b || a.length === (b == null ? void 0 : b.length) && JSON.stringify(lastOf(a)) === JSON.stringify(lastOf(b));
  async function pointsAfter(pad, seen, options) {
    var _a;
    const size = await pad.getSize(options);
    return seen && size === seen.length && ((_a = lastOf(seen)) == null ? void 0 : _a.strokeEnd) !== false ? seen : pad.getPointer(options);
  }
  async function* followPad(pad, freshStarts, interval, options) {
    var _a;
    let seen = {};
    let presenceCheckedAt = -Infinity;
    while (!((_a = options.signal) == null ? void 0 : _a.aborted)) {
      const lookedAt = performance.now();
      if (lookedAt - presenceCheckedAt >= PRESENCE_CHECK_MS) {
        if (!await pad.isValid(options)) throw new SignPadError("pad-missing", "The pad is no longer there");
        presenceCheckedAt = lookedAt;
      }
      const start = freshStarts();
      if (start !== seen.start) seen = { start };
      const key = await pad.getDeviceConfirmOrCancelKeyStatus(options);
      const points2 = await pointsAfter(pad, seen.points, options);
      if (start !== freshStarts()) continue;
      const isNews = key !== seen.key || !sameInk(points2, seen.points);
      seen = { start, key, points: points2 };
      if (isNews) yield { points: points2, key };
      await delay(Math.max(lookedAt + interval - performance.now(), 0), options.signal);
    }
  }

  // src/signpad.ts
  var POLL_INTERVAL_MS = 40;
  var POLICY_VIOLATION = 1008;
  var _SignPad = class _SignPad extends EventTarget {
    constructor(options) {
      super();
      this.closing = new AbortController();
      this.settings = checkedOptions(options);
      this.line = new RequestLine(this.settings.port, this.settings.timeout, (type, detail) => this.emit(type, detail));
    }
    static async connect(options = {}) {
      const pad = new _SignPad(options);
      await pad.openLine(options.signal);
      return pad;
    }
    /** Where the service is reached. */
    get url() {
      return `ws://${this.settings.host}:${this.settings.port}/`;
    }
    get connected() {
      return this.line.connected;
    }
    /** Ends the connection for good; calls not yet answered fail with `connection-lost`. Leaves the pad as it is. */
    close() {
      var _a;
      this.closing.abort();
      (_a = this.line.cut(new SignPadError("connection-lost", "The connection was closed"))) == null ? void 0 : _a.close();
    }
    /** `initialDevice` that raises `pad-missing` when no such pad answers. */
    async open({ model: model2, width, height }, options) {
      if (!await this.initialDevice({ id: model2, width, height }, options)) {
        throw new SignPadError("pad-missing", "No pad of this model answers");
      }
    }
    /**
     * Follows the signing: yields at once, after each change of ink or key, and after each `clear` of this client, until
     * the loop is left or the signal aborts. Raises `pad-missing` when the pad is gone.
     */
    async *watch({ interval = POLL_INTERVAL_MS, signal } = {}) {
      try {
        const options = signal ? { signal } : {};
        yield* followPad(this, () => this.line.freshStarts, milliseconds(interval, "interval"), options);
      } catch (error) {
        if (!(signal == null ? void 0 : signal.aborted)) throw error;
      }
    }
    /** Carries one command of the table out; each has a method that calls this. */
    call(command, argument, options) {
      return this.line.call(command, argument, options);
    }
    emit(type, detail) {
      this.dispatchEvent(new DetailedEvent(type, detail));
    }
    async openLine(signal) {
      const socket = await openSocket(this.settings, this.url, signal);
      socket.onclose = (event) => this.lost(event);
      this.line.carryOver(socket);
    }
    lost({ code }) {
      const isTurnedAway = code === POLICY_VIOLATION;
      const error = isTurnedAway ? new SignPadError("permission-denied", `The user does not let this page use ${this.url}`) : new SignPadError("connection-lost", `The connection to ${this.url} was lost`);
      this.line.cut(error);
      const willReconnect = this.settings.reconnect && !isTurnedAway;
      this.emit("disconnect", { error, willReconnect });
      if (willReconnect) this.reopen();
    }
    /** Tries again until it works or the client is closed, waiting twice as long each time. */
    async reopen() {
      const { reconnectDelay, maxReconnectDelay } = this.settings;
      const { signal } = this.closing;
      for (let attempt = 1; !signal.aborted && !this.connected; ++attempt) {
        const wait = Math.min(reconnectDelay * 2 ** (attempt - 1), maxReconnectDelay);
        this.emit("reconnecting", { attempt, delay: wait });
        await delay(wait, signal);
        await this.openLine(signal).catch(() => void 0);
        if (this.connected) this.emit("reconnect", { attempt });
      }
    }
  };
  (() => {
    for (const [name, command] of Object.entries(commands)) {
      const method = command.parameters.length === 0 ? function(options) {
        return this.call(command, void 0, options);
      } : function(argument, options) {
        return this.call(command, argument, options);
      };
      Object.defineProperty(_SignPad.prototype, name, { value: method, writable: true, configurable: true });
    }
  })();
  var SignPad = _SignPad;

  // src/classic.ts
  var client = Object.freeze({ SignPad, SignPadError, SignPadData, Model, KeyStatus, COMMANDS });
  if (!("MVSignPad" in surroundings)) Object.assign(surroundings, { MVSignPad: client });
})();

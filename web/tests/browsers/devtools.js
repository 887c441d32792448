// A tab of a Chromium of any age over the DevTools protocol: today's libraries speak to today's browsers only.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { createInterface } from 'node:readline';
import WebSocket from 'ws';

// Without a graphics card the oldest of them crash at the first canvas unless nothing stands in for it.
const ARGUMENTS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-software-rasterizer', '--no-zygote',
  '--disable-dev-shm-usage', '--hide-scrollbars', '--ignore-certificate-errors', '--remote-debugging-port=0'];

/** The port of the DevTools, which the browser prints as soon as it listens there. */
async function portOf(browser) {
  for await (const line of createInterface({ input: browser.stderr })) {
    const [, port] = /DevTools listening on ws:\/\/[^:]+:(\d+)\//.exec(line) || [];
    if (port) return port;
  }
  throw new Error('the browser ended at once');
}

/** `send(method, parameters)` asks the browser; `listeners` hold what to do at an event of a name. */
async function connect(port) {
  const { webSocketDebuggerUrl } = await (await fetch(`http://127.0.0.1:${port}/json/new?about:blank`)).json();
  const socket = new WebSocket(webSocketDebuggerUrl, { perMessageDeflate: false });
  await once(socket, 'open');
  const waiting = new Map();
  const listeners = {};
  socket.on('message', (text) => {
    const { id, result, error, method, params } = JSON.parse(text);
    if (method) return listeners[method]?.(params);
    const { resolve, reject } = waiting.get(id);
    waiting.delete(id);
    return error ? reject(new Error(error.message)) : resolve(result);
  });
  let requests = 0;
  const send = (method, params = {}) => new Promise((resolve, reject) => {
    waiting.set(++requests, { resolve, reject });
    socket.send(JSON.stringify({ id: requests, method, params }));
  });
  return { send, listeners, disconnect: () => socket.close() };
}

const evaluate = (send) => async (act, ...words) => {
  const expression = `(${act})(...${JSON.stringify(words)})`;
  const { result, exceptionDetails } =
    await send('Runtime.evaluate', { expression, awaitPromise: true, returnByValue: true, userGesture: true });
  if (exceptionDetails) throw new Error(`${exceptionDetails.exception?.description}\nin ${expression}`);
  return result.value;
};

/** What the page's console shows as an error fills `errors`. */
function listen(listeners, errors) {
  listeners['Runtime.exceptionThrown'] = ({ exceptionDetails: { text, exception } }) =>
    errors.push(exception?.description ?? text);
  listeners['Runtime.consoleAPICalled'] = ({ type, args }) => {
    if (type === 'error') errors.push(args.map(({ value }) => value).join(' '));
  };
  listeners['Log.entryAdded'] = ({ entry: { level, text } }) => {
    if (level === 'error') errors.push(text);
  };
}

export async function openDevtoolsTab(executablePath) {
  const profile = await mkdtemp(path.join(tmpdir(), 'signpad-browser-'));
  const browser = spawn(executablePath, [...ARGUMENTS, `--user-data-dir=${profile}`, 'about:blank'],
    { stdio: ['ignore', 'ignore', 'pipe'] });
  const { send, listeners, disconnect } = await connect(await portOf(browser));
  browser.stderr.resume();
  const errors = [];
  listen(listeners, errors);
  for (const domain of ['Page', 'Runtime', 'Log']) await send(`${domain}.enable`);
  const run = evaluate(send);
  const resize = (width, height) =>
    send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: 1, mobile: false });
  return {
    errors,
    run,
    resize,
    async open(url) {
      const loaded = new Promise((resolve) => { listeners['Page.loadEventFired'] = resolve; });
      await send('Page.navigate', { url });
      await loaded;
    },
    /** Runs the source in each page before its own scripts. */
    prepare: (source) => send('Page.addScriptToEvaluateOnNewDocument', { source }),
    async screenshot(width) {
      await resize(width, await run(() => document.documentElement.scrollHeight));
      const { data } = await send('Page.captureScreenshot', { format: 'png' });
      return Buffer.from(data, 'base64');
    },
    async close() {
      disconnect();
      const ended = once(browser, 'exit');
      browser.kill('SIGKILL');
      await ended;
      await rm(profile, { recursive: true, force: true });
    },
  };
}

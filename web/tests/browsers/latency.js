// How far the preview is behind the pen: from a point's appearance in the pad to the frame that shows it.
//
// usage: node latency.js BROWSER...   prints milliseconds: median, 99th percentile, longest
//        INK=FILE                     of the virtual pad's ink, in place of its own signature
import { FILE_PAGE } from '../page/browser.js';
import { freePort, startDesktop, startService, until } from '../page/desktop.js';
import { BROWSERS } from './tab.js';

/** Runs in the page. The points' time stamps are milliseconds since the pad was emptied. */
function watchLatency() {
  const { log } = window.Demo;
  const { add } = log;
  const latencies = window.latencies = [];
  let clearedAt = 0;
  let seen = 0;
  log.add = (message) => {
    add(message);
    const { direction, text } = message;
    if (direction === 'sent' && /\/Clear$/.test(text)) clearedAt = performance.now();
    if (direction !== 'received' || !text.startsWith('{"API":"GetPointer"')) return;
    const times = JSON.parse(JSON.parse(text).Result).map(({ Time }) => Number(Time));
    const fresh = times.slice(seen);
    seen = times.length;
    // The ink is drawn before the next frame; what follows that frame runs when it is on its way to the screen.
    requestAnimationFrame(() => setTimeout(() => {
      const now = performance.now();
      for (const time of fresh) latencies.push(now - clearedAt - time);
    }));
  };
}

const ink = process.env.INK ? { INK: process.env.INK } : {};
const desktop = await startDesktop();
for (const name of process.argv.slice(2)) {
  const port = await freePort();
  const service = await startService(desktop, { port, virtual: ink });
  const tab = await BROWSERS[name]();
  await tab.resize(1280, 900);
  await tab.open(`${FILE_PAGE}?port=${port}`);
  await until(() => tab.run(() => document.getElementById('notice-title').textContent === 'Ready to sign'), 'the service');
  await tab.run(watchLatency);
  await tab.run(() => document.getElementById('notice-action').click());
  await until(() => tab.run(() => /^Signed/.test(document.getElementById('status').textContent)), 'the signature');
  const latencies = (await tab.run(() => window.latencies)).sort((a, b) => a - b);
  const at = (part) => latencies[Math.min(Math.floor(latencies.length * part), latencies.length - 1)].toFixed(0);
  console.log(`${name}: ${latencies.length} points, median ${at(0.5)}, p99 ${at(0.99)}, longest ${at(1)}`);
  await tab.close();
  await service.stop();
}
await desktop.stop();

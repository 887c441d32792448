// The whole page in one browser: $MVSIGNPAD_BROWSER, or each that there is, one after the other.
import assert from 'node:assert/strict';
import { mkdir, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { FILE_PAGE, madeCertificate, servePage } from '../page/browser.js';
import { freePort, startDesktop, startService, until } from '../page/desktop.js';
import { BROWSERS } from './tab.js';

const OUTPUT = process.env.MVSIGNPAD_TEST_OUTPUT;
const chosen = process.env.MVSIGNPAD_BROWSER ? [process.env.MVSIGNPAD_BROWSER] : Object.keys(BROWSERS);
const REFUSED_CONNECTION = /WebSocket connection to .* failed|can.t establish a connection to the server/;

let desktop;

before(async () => { desktop = await startDesktop(); });
after(() => desktop?.stop());

/** Runs in the page: why the client cannot connect. */
const failure = (options) => window.MVSignPad.SignPad.connect(options).then(() => 'none', ({ code }) => code);

/** An ink file of 5,000 points: the first 4,000 are there at once, the others come within five seconds. */
async function longInk() {
  const file = path.join(desktop.home, 'ink.json');
  await writeFile(file, JSON.stringify(Array.from({ length: 5000 }, (_, i) => ({
    Time: String(Math.max(i - 4000, 0) * 5), bStrokeEnd: String(Number(i % 500 === 499)), pressure: '500',
    x: String(50 + i % 500), y: String(40 + Math.floor(i / 500) * 40),
  }))));
  return file;
}

/** Runs in the page: counts the pieces of line that it draws, and how often it shows new ink. */
function countDrawing() {
  const counts = window.counts = { strokes: 0, updates: 0 };
  const { stroke } = CanvasRenderingContext2D.prototype;
  CanvasRenderingContext2D.prototype.stroke = function () {
    counts.strokes += 1;
    stroke.call(this);
  };
  const points = document.getElementById('gauge-points');
  new MutationObserver(() => {
    if (Number(points.textContent) > 4000) counts.updates += 1;
  }).observe(points, { childList: true });
}

/** What a user does and sees, in words that every browser understands. */
const user = (tab) => ({
  press: (id) => tab.run((name) => document.getElementById(name).click(), id),
  choose: (value) => tab.run((name) => document.querySelector(`input[value=${name}]`).click(), value),
  reads: (selector) => tab.run((where) => {
    const element = document.querySelector(where);
    return element && element.offsetParent !== null ? element.textContent.trim() : null;
  }, selector),
  async waitFor(selector, wanted) {
    let seen;
    await until(async () => {
      seen = await this.reads(selector);
      return wanted instanceof RegExp ? wanted.test(seen) : seen === wanted;
    }, () => `${selector} to read ${wanted}; it reads ${seen}`);
  },
  /** A button that is out of use is waited for, as users do. */
  async pressWhenReady(id) {
    await until(() => tab.run((name) => document.getElementById(name).matches(':enabled'), id), `${id} to be in use`);
    await this.press(id);
  },
  points: async () => Number(await tab.run(() => document.getElementById('gauge-points').textContent)),
  /** Pixels with ink on a canvas or a picture, and its size. */
  ink: (id) => tab.run((name) => {
    const element = document.getElementById(name);
    const canvas = document.createElement('canvas');
    canvas.width = element.naturalWidth || element.width;
    canvas.height = element.naturalHeight || element.height;
    const context = canvas.getContext('2d');
    context.drawImage(element, 0, 0);
    const { data } = context.getImageData(0, 0, canvas.width, canvas.height);
    let pixels = 0;
    for (let at = 0; at < data.length; at += 4) {
      if (data[at + 3] > 127 && data[at] + data[at + 1] + data[at + 2] < 384) pixels += 1;
    }
    return { width: canvas.width, height: canvas.height, pixels };
  }, id),
});

for (const name of chosen) {
  describe(name, () => {
    let tab;
    let visitor;
    let port;
    let service;

    before(async () => {
      port = await freePort();
      service = await startService(desktop, { port });
      tab = await BROWSERS[name]();
      visitor = user(tab);
      await tab.resize(1280, 900);
      await tab.open(`${FILE_PAGE}?port=${port}`);
    });

    after(async () => {
      await tab?.close();
      await service?.stop();
    });

    async function keepScreenshots(what) {
      for (const width of [1280, 390]) {
        await tab.resize(width, 900);
        const [needed, there] = await tab.run(() => ['scrollWidth', 'clientWidth'].map((name) => document.documentElement[name]));
        assert.equal(needed, there, 'the page is wider than the window');
        const picture = await tab.screenshot(width);
        if (!OUTPUT) continue;
        await mkdir(OUTPUT, { recursive: true });
        await writeFile(path.join(OUTPUT, `${what}-${name}-${width}.png`), picture);
      }
      await tab.resize(1280, 900);
    }

    test('connects and follows the ink up to the pad\'s own key', async () => {
      await visitor.waitFor('#notice-title', 'Ready to sign');
      await keepScreenshots('ready');
      await visitor.press('notice-action');
      await until(async () => await visitor.points() > 100, 'ink in the preview');
      const early = await visitor.ink('ink');
      assert.ok(await visitor.points() < 600, 'the preview shows the ink while it is written');
      assert.ok(early.pixels > 500);
      await visitor.waitFor('#status', 'Signed: 600 points in 4 strokes.');
      const whole = await visitor.ink('ink');
      assert.ok(whole.pixels > early.pixels);
      assert.ok(Math.abs(whole.width / whole.height - 800 / 480) < 0.01);
    });

    test('shows the picture in all its forms', async () => {
      for (const format of ['Png', 'PngWhite', 'Svg']) {
        await visitor.press(`tab-format${format}`);
        await visitor.waitFor('#format-facts', /^800 × 480 pixels/);
        const { width, height, pixels } = await visitor.ink('picture');
        assert.deepEqual([width, height], [800, 480]);
        assert.ok(pixels > 5000 && pixels < 20_000, `${pixels} pixels of ink in ${format}`);
        if (format === 'PngWhite') await keepScreenshots('signed');
      }
      await visitor.press('tab-formatPoints');
      await visitor.waitFor('#format-facts', /^600 points in 4 strokes/);
      assert.equal(await tab.run(() => document.querySelectorAll('#points-rows tr').length), 600);
    });

    test('keeps WPS settings and makes the picture', async () => {
      await tab.run(() => { document.getElementById('wps-name').value = '李明'; });
      await visitor.pressWhenReady('wps-save');
      await visitor.waitFor('#wps-status', 'The settings are saved.');
      await visitor.press('wps-picture');
      await visitor.waitFor('#wps-status', /\/tmp\/MVeSignWPS.*\.png$/);
    });

    test('speaks both languages', async () => {
      await visitor.press('language');
      await visitor.waitFor('#status', '签名完成：4 笔，600 个点。');
      await visitor.press('theme');
      await keepScreenshots('chinese');
      await visitor.press('theme');
      await visitor.press('language');
      await visitor.waitFor('#status', 'Signed: 600 points in 4 strokes.');
    });

    test('cancels', async () => {
      await visitor.press('start');
      await visitor.waitFor('#live', 'Signing'); // the ink of the signature before is gone
      await until(async () => await visitor.points() > 20, 'ink');
      await visitor.press('cancel');
      await visitor.waitFor('#status', 'Cancelled.');
      assert.equal((await visitor.ink('ink')).pixels, 0);
    });

    test('finds the service again, confirms on the page and fetches the fingerprint', async () => {
      await service.stop();
      await visitor.waitFor('#notice-title', 'The connection was lost');
      service = await startService(desktop, { port, virtual: { SPEED: '0.2' } });
      await visitor.waitFor('#notice-title', 'Ready to sign');
      await visitor.choose('Cedar');
      await visitor.press('notice-action');
      await until(async () => await visitor.points() > 20, 'ink');
      await visitor.press('confirm');
      await visitor.waitFor('#status', /^Signed: \d+ points in \d strokes?\.$/);
      await until(async () => {
        await visitor.pressWhenReady('fingerprint-get'); // the sensor takes its time: ask again
        await visitor.waitFor('#fingerprint-status', /^(The fingerprint is there|No fingerprint, or the same one as before)\.$/);
        return await visitor.reads('#fingerprint-status') === 'The fingerprint is there.';
      }, 'the fingerprint');
      await until(async () => (await visitor.ink('fingerprint-picture')).pixels > 500, 'its picture');
      await keepScreenshots('fingerprint');
    });

    test('stays fluent in a long signature', async () => {
      await service.stop();
      await visitor.waitFor('#notice-title', 'The connection was lost');
      service = await startService(desktop, { port, virtual: { INK: await longInk() } });
      await visitor.waitFor('#notice-title', 'Ready to sign');
      await tab.run(countDrawing);
      await visitor.press('notice-action');
      await visitor.waitFor('#status', 'Signed: 5000 points in 10 strokes.');
      const { strokes, updates } = await tab.run(() => window.counts);
      assert.ok(updates >= 10, `the preview was renewed ${updates} times in five seconds`);
      assert.ok(strokes >= 5000 && strokes < 5500, `${strokes} pieces drawn: each point once, most of them`);
    });

    test('leaves no error in the console', () => {
      assert.deepEqual(tab.errors.filter((text) => !REFUSED_CONNECTION.test(text)), []);
    });

    test('connects from https, and tells what the browser takes for mixed content', async (t) => {
      const server = await servePage(await madeCertificate());
      t.after(() => server.stop());
      await tab.open(`${server.page}?port=${port}`);
      await visitor.waitFor('#notice-title', 'Ready to sign');
      const { origin } = new URL(server.page);
      await tab.open(`${origin}/tests/browsers/bare.html`);
      assert.equal(await tab.run(failure, { host: 'signpad.example' }), 'mixed-content');
    });

    test('the page\'s own policy is no reason to wait', async () => {
      await tab.open(FILE_PAGE);
      assert.match(await tab.run(failure, { host: '127.0.0.1', port }), /^(service-not-running|permission-denied)$/);
    });

    test('the client tells that there is no WebSocket', async () => {
      await tab.prepare('delete window.WebSocket');
      await tab.open(FILE_PAGE);
      assert.equal(await tab.run(failure), 'no-websocket');
    });

    test('without what the page needs it shows one sentence', async () => {
      await tab.prepare('delete window.AbortController');
      await tab.open(FILE_PAGE);
      const shown = await tab.run(() => document.body.innerText.trim());
      assert.match(shown, /^This page needs JavaScript and a browser not older than Chromium 69 or Firefox 60\.[^\n]*$/);
    });
  });
}

// The demo page in real Chromium against the real program with the virtual pad.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdir, mkdtemp, readFile, rm, stat, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import WebSocket from 'ws';
import { SignPad } from '../../signpad.js';
import { reply, startMockService } from '../mock-service.js';
import { FILE_PAGE, download, inkOf, madeCertificate, openContext, openPage, servePage, startBrowser } from './browser.js';
import { drawStroke, freePort, padWindow, pressKey, startDesktop, startService, until, xdotool } from './desktop.js';
import {
  button, choose, control, count, fillIn, isEnabled, isVisible, notice, points, says, shows, words,
} from './looking.js';

const OUTPUT = process.env.MVSIGNPAD_TEST_OUTPUT;
const ENGLISH = { language: 'en-US', viewport: { width: 1280, height: 900 } };
const SELECTED_TAB = '#formats [aria-selected="true"]';
const CHINESE = { ...ENGLISH, language: 'zh-CN' };

// Two strokes in a corner: an upright line at x 100 and a level one at y 300.
const POINTS = JSON.stringify([
  ...[0, 1, 2, 3].map((i) => ({ x: 100, y: 100 + i * 50, strokeEnd: i === 3 })),
  ...[0, 1, 2, 3].map((i) => ({ x: 200 + i * 50, y: 300, strokeEnd: i === 3 })),
].map(({ x, y, strokeEnd }, i) => ({
  Time: String(i * 100), bStrokeEnd: strokeEnd ? '1' : '0', pressure: '800', x: String(x), y: String(y),
})));

let desktop;
let browser;
let web;
let directory;
let inkFile;

before(async () => {
  directory = await mkdtemp(path.join(tmpdir(), 'signpad-page-'));
  inkFile = path.join(directory, 'ink.json');
  await writeFile(inkFile, POINTS);
  [desktop, browser, web] = await Promise.all([startDesktop(), startBrowser(), servePage()]);
});

after(async () => {
  await browser?.close();
  await web?.stop();
  await desktop?.stop();
  await rm(directory, { recursive: true, force: true });
});

/** A service for one test. */
async function service(t, { where = desktop, ...options } = {}) {
  const port = options.port ?? await freePort();
  const running = await startService(where, { ...options, port });
  t.after(() => running.stop());
  return { port, ...running };
}

/** The page in a browser window of the test's own; at the end it must have done nothing that no page should do. */
async function visit(t, url, port, settings = ENGLISH) {
  const { context, downloads, close } = await openContext(browser);
  const { page, errors } = await openPage(context, url, port, settings);
  t.after(async () => {
    await close();
    assert.deepEqual(errors, []);
  });
  return Object.assign(page, { downloads });
}

async function keepScreenshot(page, name, options) {
  if (!OUTPUT) return;
  await mkdir(OUTPUT, { recursive: true });
  await page.screenshot({ path: path.join(OUTPUT, name), ...options });
}

async function keepDesktop(name) {
  if (!OUTPUT) return;
  await mkdir(OUTPUT, { recursive: true });
  execFileSync('import', ['-window', 'root', path.join(OUTPUT, name)], { env: desktop.environment });
}

const save = (page, link = control(page, 'link', 'Download')) => download(page.downloads, () => link.click());

describe('a whole capture', () => {
  for (const [from, url] of [['file://', () => FILE_PAGE], ['http://', () => web.page]]) {
    test(`from ${from}: live preview, the pad's key, every format`, async (t) => {
      const { port } = await service(t);
      const page = await visit(t, url(), port);
      await button(page, 'Start signing').click();
      await until(async () => await points(page) > 100, 'ink in the preview');
      const early = await inkOf(page, '#ink');
      assert.ok(await points(page) < 600, 'the preview shows the ink while it is written');
      assert.ok(early.pixels > 500);
      await keepScreenshot(page, `page-signing-${from.slice(0, 4)}.png`);

      await says(page, 'Signed: 600 points in 4 strokes.');
      const { width, height, pixels } = await inkOf(page, '#ink');
      assert.ok(pixels > early.pixels * 1.1);
      assert.ok(Math.abs(width / height - 800 / 480) < 0.01, `${width} × ${height}`);

      await shows(page, SELECTED_TAB, 'PNG');
      await shows(page, '#format-facts', /^800 × 480 pixels/);
      const picture = await inkOf(page, '#picture');
      assert.equal(`${picture.width} × ${picture.height}`, '800 × 480');
      assert.ok(picture.pixels > 5000 && picture.pixels < 20_000, `${picture.pixels} pixels of ink`);
      assert.equal(picture.corner, '0,0,0,0');
      const png = await save(page);
      assert.equal(png.name, 'signature.png');
      assert.equal(png.bytes.subarray(0, 8).toString('latin1'), '\x89PNG\r\n\x1a\n');
      await page.$eval('#result', (element) => element.scrollIntoView());
      await keepScreenshot(page, `page-signed-${from.slice(0, 4)}.png`, { fullPage: true });

      await control(page, 'tab', 'PNG on white').click();
      await until(async () => (await inkOf(page, '#picture')).corner === '255,255,255,255', 'the picture on white');
      assert.ok((await inkOf(page, '#picture')).pixels > 5000);
      assert.equal((await save(page)).name, 'signature-white.png');

      await control(page, 'tab', 'SVG').click();
      const svg = await save(page);
      assert.equal(svg.name, 'signature.svg');
      assert.match(svg.bytes.toString(), /^<svg xmlns="http:\/\/www\.w3\.org\/2000\/svg" width="800" height="480"/);

      await control(page, 'tab', 'Points').click();
      assert.equal(await count(page, '#points-rows tr'), 600);
      const json = JSON.parse((await save(page)).bytes);
      assert.equal(json.length, 600);
      assert.equal(json.filter(({ strokeEnd }) => strokeEnd).length, 4);
      assert.deepEqual(Object.keys(json[0]).sort(), ['pressure', 'strokeEnd', 'time', 'x', 'y']);

      await page.locator('#log-details summary').click();
      await page.evaluate(() => {
        const poll = { direction: 'sent', text: 'ws://localhost:8089/MVSignSDK/GetSize' };
        for (let i = 0; i < 600; ++i) window.Demo.log.add(poll);
      });
      const saved = (await save(page, button(page, 'Save as text'))).bytes.toString();
      assert.match(saved, /-> ws:.*InitialDevice\?/);
      await choose(page, '#log-polls');
      assert.equal(await page.$$eval('#log .text', (texts) =>
        texts.filter(({ textContent }) => textContent.endsWith('GetSize')).length), 500);
      await choose(page, '#log-polls');
      await shows(page, '#log', /InitialDevice\?/);
    });
  }

  test('a port that is none gives way to the usual one, and is not connected to', async (t) => {
    const page = await visit(t, web.page, 70000);
    assert.equal(await page.$eval('#port', ({ value }) => value), '8089');
    await notice(page, 'The signature service is not running');
    await control(page, 'spinbutton', 'Port').fill('');
    await button(page, 'Try again').click();
    assert.equal(await page.$eval('#port', (field) => field.validity.valid), false);
    assert.doesNotMatch(await words(page, '#notice-text'), /NaN/);
  });

  test('of a very long signature the table shows the beginning, the download all', async (t) => {
    const ink = path.join(directory, 'long.json');
    const long = Array.from({ length: 3000 }, (_, i) => ({ x: String(100 + i % 600), y: String(100 + i % 280),
      pressure: '500', bStrokeEnd: i === 2999 ? '1' : '0', Time: String(i) }));
    await writeFile(ink, JSON.stringify(long));
    const { port } = await service(t, { virtual: { INK: ink, SPEED: '0' } });
    const page = await visit(t, web.page, port);
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 3000 points in 1 stroke.');
    await control(page, 'tab', 'Points').click();
    await shows(page, '#format-facts', /\(the first 1000 are shown, the download has them all\)$/);
    assert.equal(await count(page, '#points-rows tr'), 1000);
    assert.equal(JSON.parse((await save(page)).bytes).length, 3000);
  });

  test('the picture, the preview and the points show the same ink', async (t) => {
    const { port } = await service(t, { virtual: { INK: inkFile, SPEED: '0' } });
    const page = await visit(t, web.page, port);
    await control(page, 'slider', 'Width').fill('10');
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 8 points in 2 strokes.');
    await shows(page, '#format-facts', /^800 × 480 pixels/);
    const { box } = await inkOf(page, '#picture');
    for (const [side, value] of Object.entries({ left: 95, top: 95, right: 355, bottom: 305 })) {
      assert.ok(Math.abs(box[side] - value) <= 3, `${side} is ${box[side]}`);
    }
    const preview = await inkOf(page, '#ink');
    const scale = preview.width / 800;
    for (const [side, value] of Object.entries({ left: 95, top: 95, right: 355, bottom: 305 })) {
      assert.ok(Math.abs(preview.box[side] / scale - value) <= 3, `${side} of the preview is ${preview.box[side]}`);
    }
  });

  test('by keyboard alone, confirmed on the page before the pad does', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0.2' } });
    const page = await visit(t, web.page, port);
    await notice(page, 'Ready to sign');
    const presses = [];
    const focusOn = (name) => until(async () => {
      await page.keyboard.press('Tab');
      presses.push(name);
      return await page.evaluate(() => document.activeElement.textContent.trim()) === name;
    }, `the focus to reach ${name}`);
    await page.focus('input[name=model]:checked');
    await page.keyboard.press('ArrowRight');
    await focusOn('Start signing');
    await page.keyboard.press('Enter');
    await until(async () => await points(page) > 20, 'ink');
    await focusOn('Confirm');
    await page.keyboard.press('Enter');
    await says(page, /^Signed: \d+ points/);
    await until(() => page.evaluate(() => document.activeElement.id === 'result-title'), 'the focus to follow');
    assert.ok(await points(page) < 600);
    assert.ok(presses.filter((name) => name === 'Confirm').length <= 4, 'the focus went on from where it was');
    await shows(page, '#facts', /VP-BIRCH/);
    await control(page, 'tab', 'PNG').click();
    await page.keyboard.press('ArrowRight');
    await shows(page, SELECTED_TAB, 'PNG on white');
    await page.keyboard.press('ArrowRight');
    await shows(page, SELECTED_TAB, 'SVG');
  });
});

describe('on the way to a signature', () => {
  test('cancelling leaves no signature and releases the pad', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0.2' } });
    const page = await visit(t, web.page, port);
    await button(page, 'Start signing').click();
    await until(async () => await points(page) > 10, 'ink');
    await button(page, 'Cancel').click();
    await says(page, 'Cancelled.');
    await notice(page, 'Ready to sign');
    assert.equal(await isVisible(page, '#result'), false);
    assert.equal((await inkOf(page, '#ink')).pixels, 0);
    const pad = await SignPad.connect({ port, WebSocket });
    assert.equal(await pad.isValid(), false);
    pad.close();
    await button(page, 'Start signing').click();
    await until(async () => await points(page) > 10, 'ink again');
  });

  test('clearing empties the pad, and signing goes on', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0.1' } });
    const page = await visit(t, web.page, port);
    await button(page, 'Start signing').click();
    await until(async () => await points(page) > 60, 'ink');
    await page.focus('#clear');
    await page.keyboard.press('Enter');
    await until(async () => await points(page) < 30, 'an empty pad');
    await until(async () => await points(page) > 60, 'ink again');
    assert.equal(await words(page, '#status'), 'The pad is empty again.');
    assert.equal(await page.evaluate(() => document.activeElement.closest('#sign') !== null), true, 'the focus is lost');
  });

  test('a service that stops in the middle is told, and found again when it is back', async (t) => {
    const first = await service(t, { virtual: { SPEED: '0.2' } });
    const page = await visit(t, web.page, first.port);
    await button(page, 'Start signing').click();
    await until(async () => await points(page) > 10, 'ink');
    await first.stop('SIGKILL');
    await notice(page, 'The connection was lost');
    await shows(page, '#service-state', 'Connecting again…');
    await until(async () => !await isEnabled(page, 'Confirm'), 'the end of the signing');
    await keepScreenshot(page, 'page-lost.png');
    await service(t, { port: first.port, virtual: { SPEED: '0' } });
    await notice(page, 'Ready to sign');
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
  });

  test('an absent service is told, and found when it comes', async (t) => {
    const port = await freePort();
    const page = await visit(t, FILE_PAGE, port);
    await notice(page, 'The signature service is not running');
    await shows(page, '#notice-text', new RegExp(`^Nothing answers at ws://localhost:${port}/`));
    await keepScreenshot(page, 'page-absent.png');
    await service(t, { port });
    await notice(page, 'Ready to sign');
  });

  test('a missing pad is told', async (t) => {
    const { port } = await service(t, { hasPad: false });
    const page = await visit(t, web.page, port);
    await choose(page, 'input[value=Rowan]');
    await button(page, 'Start signing').click();
    await notice(page, 'No Rowan pad found');
  });
});

describe('with a pad that takes its time', () => {
  /**
   * A service whose pad has three points of a stroke that goes on; `answer` may hold a reply back, answer otherwise, or
   * never (false).
   */
  async function slowPad(t, answer) {
    const point = { Time: 'a', bStrokeEnd: '0', pressure: '500', x: '90', y: '90' };
    const results = { InitialDevice: '1', UninitialDevice: '1', IsValid: '1', GetSize: '3',
      GetDeviceConfirmOrCancelKeyStatus: '-1', GetPointer: JSON.stringify([point, point, point]),
      GetWPSSettings: '{"EnableDateTime":"0","EnableAutoFit":"0","CurrentPenWidth":"3","Name":""}' };
    const mock = await startMockService(async (request, socket) => {
      const [api] = request.split('?');
      const result = results[api] ?? (/^(Encode|Get)/.test(api) ? '' : '0');
      const other = await answer(api, socket);
      return other === false ? undefined : other ?? reply(api, result);
    });
    t.after(() => mock.stop());
    const page = await visit(t, FILE_PAGE, mock.port);
    await button(page, 'Start signing').click();
    await until(() => isEnabled(page, 'Confirm'), 'ink');
    return page;
  }

  test('a cancelling that fails is told as it is', async (t) => {
    let isStuck = false;
    const page = await slowPad(t, (api) => isStuck && api === 'Clear' ? false : undefined);
    isStuck = true;
    await button(page, 'Cancel').click();
    await says(page, 'Cancelling…');
    await until(async () => !await isEnabled(page, 'Cancel'), 'the decision');
    await notice(page, 'That did not work');
    assert.equal(await words(page, '#status'), '');
  });

  test('a pen that is refused ends the signing, and another can begin', async (t) => {
    let refused;
    const page = await slowPad(t, (api) => api === refused ? reply('Invalid API request', '-1') : undefined);
    refused = 'SetPenWidth';
    await control(page, 'slider', 'Width').fill('7');
    await notice(page, 'The signature service is too old');
    refused = undefined;
    await button(page, 'Start signing').click();
    await until(async () => !await isVisible(page, '#notice'), 'the next signing');
    await button(page, 'Confirm').click();
    await says(page, 'Signed: 3 points in 1 stroke.');
  });

  test('a connection that breaks while the pad is released is told, not a cancelling', async (t) => {
    let isBreaking = false;
    const page = await slowPad(t, (api, socket) => {
      if (!isBreaking || api !== 'Clear') return undefined;
      socket.terminate();
      return false;
    });
    isBreaking = true;
    await button(page, 'Cancel').click();
    await notice(page, 'Ready to sign'); // connected anew
    assert.notEqual(await words(page, '#status'), 'Cancelled.');
    isBreaking = false;
    await button(page, 'Start signing').click();
    await until(() => isEnabled(page, 'Confirm'), 'ink again');
  });

  test('nothing disturbs the fetching of the result', async (t) => {
    let letGo;
    const held = new Promise((resolve) => { letGo = resolve; });
    const page = await slowPad(t, (api) => api === 'Encode' ? held : undefined);
    const pressure = () => page.$eval('#gauge-pressure', ({ value }) => value);
    assert.ok(await pressure() > 0.4);
    await button(page, 'Confirm').click();
    for (const name of ['Confirm', 'Clear', 'Cancel']) await until(async () => !await isEnabled(page, name), name);
    letGo();
    await says(page, 'Signed: 3 points in 1 stroke.');
    assert.equal(await pressure(), 0);
  });
});

describe("with a hand at the pad's window", () => {
  async function startSigning(t, where = desktop) {
    const { port } = await service(t, { virtual: { WINDOW: '1' }, where });
    const page = await visit(t, web.page, port);
    await button(page, 'Start signing').click();
    const pad = await padWindow(where, 800);
    await says(page, /^Sign now\./); // the page has emptied the pad
    return { page, pad };
  }

  test("the ink of the pointer shows in the preview and in the picture", async (t) => {
    const { page, pad } = await startSigning(t);
    await drawStroke(desktop, pad, [[150, 100], [150, 350]]);
    await shows(page, '#gauge-strokes', '1');
    await drawStroke(desktop, pad, [[220, 350], [600, 350]]);
    await shows(page, '#gauge-strokes', '2');
    await until(() => page.$eval('#gauge-pressure', ({ value }) => value === 0), 'the pen to be lifted');
    const time = await words(page, '#gauge-time');
    const preview = await inkOf(page, '#ink');
    const inPreview = (side) => preview.box[side] / preview.width * 800;
    assert.ok(Math.abs(inPreview('left') - 150) < 8, `the preview's ink begins at ${inPreview('left')}`);
    assert.ok(Math.abs(inPreview('right') - 601) < 2.5, `the preview's ink ends at ${inPreview('right')}`);
    await xdotool(desktop, 'mousemove', 5, 700);
    await keepDesktop('pad-window.png');

    await pressKey(desktop, pad, 'Return');
    await says(page, /^Signed: \d+ points in 2 strokes\.$/);
    assert.equal(await words(page, '#gauge-time'), time, 'the clock stands still after the last ink');
    await shows(page, '#format-facts', /^800 × 480 pixels/);
    const { box, near } = await inkOf(page, '#picture', [[150, 200], [400, 350], [185, 350], [400, 200]]);
    for (const [side, value] of Object.entries({ left: 150, top: 100, right: 600, bottom: 350 })) {
      assert.ok(Math.abs(box[side] - value) <= 5, `${side} is ${box[side]}`);
    }
    assert.deepEqual(near, [true, true, false, false]);
  });

  test('its cancel key cancels', async (t) => {
    const { page, pad } = await startSigning(t);
    await drawStroke(desktop, pad, [[150, 100], [300, 200]]);
    await until(async () => await points(page) > 5, 'ink');
    await pressKey(desktop, pad, 'Escape');
    await says(page, 'Cancelled.');
    assert.equal(await isVisible(page, '#result'), false);
  });

  test('confirming an empty pad is refused, and signing goes on', async (t) => {
    const { page, pad } = await startSigning(t);
    await pressKey(desktop, pad, 'Return');
    await says(page, 'There is nothing to confirm yet: the pad is empty.');
    await drawStroke(desktop, pad, [[150, 100], [300, 200]]);
    await pressKey(desktop, pad, 'Return');
    await says(page, /^Signed: \d+ points in 1 stroke\.$/);
  });

  test('closing it unplugs the pad, and the page tells', async (t) => {
    const managed = await startDesktop({ windowManager: 'openbox' });
    t.after(() => managed.stop());
    const { page, pad } = await startSigning(t, managed);
    await until(async () => {
      // The window manager misses a key that comes while it still takes the window over: press again.
      await pressKey(managed, pad, 'alt+F4').catch(() => undefined);
      return shows(page, '#notice-title', 'The pad is gone', 3_000).then(() => true, () => false);
    }, 'the page to tell that the pad is gone');
    await button(page, 'Start signing').click();
    await padWindow(managed, 800);
    await shows(page, '#paper-hint', 'Sign on the pad');
  });
});

describe('two tabs', () => {
  /** A tab in the background draws at a slower pace: who presses a button there looks at it first. */
  async function pressIn(tab, name) {
    await tab.bringToFront();
    await button(tab, name).click();
  }

  for (const [from, url] of [['file://', () => FILE_PAGE], ['http://', () => web.page]]) {
    test(`from ${from} take turns`, async (t) => {
      const { port } = await service(t, { virtual: { SPEED: '0.2' } });
      const { context, close } = await openContext(browser);
      t.after(close);
      const { page: first } = await openPage(context, url(), port, ENGLISH);
      const { page: second } = await openPage(context, url(), port, ENGLISH);
      await pressIn(first, 'Start signing');
      await until(async () => await points(first) > 20, 'ink in the first tab');
      await pressIn(second, 'Start signing');
      await notice(second, 'Another tab is signing');
      assert.equal(await points(second), 0);
      await pressIn(first, 'Confirm');
      await says(first, /^Signed: \d+ points/);
      await until(async () => await points(second) > 20, 'ink in the second tab');
      await pressIn(second, 'Confirm');
      await says(second, /^Signed: \d+ points/);
    });
  }

  test('that know nothing of each other get their own replies', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0.2' } });
    const first = await visit(t, web.page, port);
    const second = await visit(t, FILE_PAGE, port);
    await pressIn(first, 'Start signing');
    await until(async () => await points(first) > 60, 'ink in the first tab');
    await pressIn(second, 'Start signing');
    await says(first, 'Another page cleared or reopened the pad.');
    for (const page of [first, second]) await until(async () => await points(page) > 60, 'the common ink');
    for (const page of [first, second]) {
      await pressIn(page, 'Confirm');
      await says(page, /^Signed: \d+ points/);
    }
  });
});

describe('beside the signing', () => {
  test('WPS settings are kept and the picture is made', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0' } });
    const page = await visit(t, web.page, port);
    await choose(page, 'input[value=ET]');
    await fillIn(page, "Signer's name", '<b>李明</b>');
    await choose(page, '#wps-date');
    await button(page, 'Save settings').click();
    await shows(page, '#wps-status', 'The settings are saved.');
    const file = path.join(desktop.home, '.config/mvsignpadsdk/MVeSign_WPS.conf');
    assert.match(await readFile(file, 'utf8'), /^EnableDateTime_ET=true$/m);
    await page.reload();
    await choose(page, 'input[value=ET]');
    await until(() => page.$eval('#wps-name', ({ value }) => value === '<b>李明</b>'), 'the saved name');

    assert.equal(await isEnabled(page, 'Make the picture'), false);
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
    await button(page, 'Make the picture').click();
    await shows(page, '#wps-status', /\/tmp\/MVeSignWPS_dt_name\.png$/);
    assert.ok((await stat('/tmp/MVeSignWPS_dt_name.png')).size > 1000);

    await fillIn(page, "Signer's name", 'A&B');
    await button(page, 'Save settings').click();
    await shows(page, '#wps-status', 'The name must not contain "&" or "=".');

    await page.locator('#log-details summary').click();
    await shows(page, '#log', /\\"Name\\":\\"<b>李明<\/b>\\"/);
    assert.equal(await count(page, 'b'), 0);
  });

  test('the Cedar pad has a fingerprint', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0' } });
    const page = await visit(t, web.page, port);
    assert.equal(await isVisible(page, '#fingerprint'), false);
    await choose(page, 'input[value=Cedar]');
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
    await button(page, 'Show on the pad').click();
    await shows(page, '#fingerprint-status', 'The pad shows the fingerprint in its lower right corner.');
    await until(async () => {
      await button(page, 'Fetch the fingerprint').click(); // the sensor takes its time: ask again
      await shows(page, '#fingerprint-status', /^(The fingerprint is there|No fingerprint, or the same one as before)\.$/);
      return await words(page, '#fingerprint-status') === 'The fingerprint is there.';
    }, 'the fingerprint');
    await until(async () => (await inkOf(page, '#fingerprint-picture')).pixels > 500, 'its picture');
    await button(page, 'Fetch the fingerprint').click();
    await shows(page, '#fingerprint-status', 'No fingerprint, or the same one as before.');

    await button(page, 'Sign again').click();
    await until(async () => !await isVisible(page, '#fingerprint-picture'),
      'the fingerprint, of another person perhaps, to go');
    await says(page, 'Signed: 600 points in 4 strokes.');
    assert.equal(await isVisible(page, '#fingerprint-picture'), false);
    assert.equal(await words(page, '#fingerprint-status'), '');

    // The pad that was chosen stays open while another model is looked at.
    await choose(page, 'input[value=Rowan]');
    await until(async () => !await isEnabled(page, 'Make the picture'), 'the other model');
    await choose(page, 'input[value=Cedar]');
    await until(() => isEnabled(page, 'Fetch the fingerprint'), 'the open pad');
    assert.equal(await isEnabled(page, 'Make the picture'), true);
  });

  test('the page speaks the language of the browser, and the other one on request', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0' } });
    const page = await visit(t, web.page, port, { ...CHINESE, theme: 'dark' });
    await notice(page, '可以签名了');
    await button(page, '开始签名').click();
    await says(page, '签名完成：4 笔，600 个点。');
    await shows(page, '#format-facts', /^800 × 480 像素/);
    await keepScreenshot(page, 'page-chinese.png', { fullPage: true });
    await button(page, 'Switch to English').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
    assert.equal(await page.evaluate(() => document.documentElement.lang), 'en');
    await page.reload();
    await notice(page, 'Ready to sign');
  });

  test('a narrow screen shows everything and needs no sideways scrolling', async (t) => {
    const port = await freePort();
    const page = await visit(t, web.page, port, { ...ENGLISH, viewport: { width: 390, height: 800 } });
    await notice(page, 'The signature service is not running');
    const [words, paper] = await page.evaluate(() => ['notice', 'paper'].map((id) => {
      const { scrollHeight, clientHeight } = document.getElementById(id);
      return { scrollHeight, clientHeight };
    }));
    assert.equal(words.scrollHeight, words.clientHeight);
    assert.equal(paper.scrollHeight, paper.clientHeight);
    await service(t, { port, virtual: { SPEED: '0' } });
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 390);
    await keepScreenshot(page, 'page-narrow.png', { fullPage: true });
  });
});

describe("the browser's permission for the local network", () => {
  /** The page in a browser that takes its web server for a public one. */
  async function distantPage(t, server, permissions, port) {
    const other = await startBrowser([`--ip-address-space-overrides=127.0.0.1:${server.port}=public`]);
    t.after(() => other.close());
    const devtools = await other.target().createCDPSession();
    // Those that are not granted are refused.
    await devtools.send('Browser.grantPermissions', { origin: new URL(server.page).origin, permissions });
    return openPage(other, server.page, port, ENGLISH);
  }

  async function secureServer(t) {
    const server = await servePage(await madeCertificate());
    t.after(() => server.stop());
    return server;
  }

  test('when refused, is told apart from an absent service', async (t) => {
    const { port } = await service(t);
    const { page } = await distantPage(t, web, [], port);
    await notice(page, 'The browser does not let this page through');
    await shows(page, '#service-state', 'Not permitted');
  });

  test('when granted, lets an https page in', async (t) => {
    const { port } = await service(t, { virtual: { SPEED: '0' } });
    const server = await secureServer(t);
    const { page } = await distantPage(t, server, ['loopbackNetwork'], port);
    assert.equal(await page.evaluate(() => location.protocol), 'https:');
    await button(page, 'Start signing').click();
    await says(page, 'Signed: 600 points in 4 strokes.');
  });
});

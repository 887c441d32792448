// The client in Node against the real program with the virtual pad: each of the 34 commands.
import assert from 'node:assert/strict';
import { readFile, rm } from 'node:fs/promises';
import { after, before, test } from 'node:test';
import WebSocket from 'ws';
import { COMMANDS, KeyStatus, Model, SignPad } from '../../signpad.js';
import { freePort, startDesktop, startService } from './desktop.js';

let desktop;
let service;
let pad;
const called = new Set();

before(async () => {
  desktop = await startDesktop();
  const port = await freePort();
  service = await startService(desktop, { port, virtual: { SPEED: '0' } });
  pad = await SignPad.connect({ port, WebSocket });
  pad.addEventListener('message', ({ detail: { direction, text } }) => {
    if (direction === 'sent') called.add(/\/MVSignSDK\/(\w+)/.exec(text)[1]);
  });
});

after(async () => {
  pad?.close();
  await service?.stop();
  await desktop?.stop();
});

test('without a pad every answer is neutral', async () => {
  assert.equal(await pad.isValid(), false);
  assert.equal(await pad.getSize(), 0);
  assert.deepEqual(await pad.getPointer(), []);
  assert.equal(await pad.getDeviceConfirmOrCancelKeyStatus(), -1);
  for (const method of ['getInks', 'getOpaqueInks', 'wpsGetInks', 'getSVGImageBase64Data']) {
    assert.equal(await pad[method](), null, method);
  }
  assert.equal(await pad.encode(3), null);
  assert.equal(await pad.getDeviceInfo(1), null);
  assert.equal(await pad.saveDrawingImage({ type: 2, dpi: 96, path: 'none.png' }), null);
  assert.equal(await pad.uninitialDevice(), false);
});

test('a pad is opened and told about', async () => {
  await assert.rejects(pad.open({ model: 9, width: 800, height: 480 }), { code: 'pad-missing' });
  await pad.open({ model: Model.Alder, width: 800, height: 480 });
  assert.equal(await pad.isValid(), true);
  assert.equal(await pad.getDeviceInfo(1), true);
  assert.deepEqual(await pad.getDeviceInfo(2), [800, 480]);
  assert.deepEqual(await pad.getDeviceInfo(4), [0, 1023]);
  assert.equal(await pad.padID(), 'VP-ALDER-0002');
  assert.equal(await pad.penID(), 'VPEN-0001');
  assert.equal(await pad.versionID(), '1.0');
  assert.match(await pad.getAboutInfo(), /virtual/i);
  await pad.closeLCD();
  await pad.openLCD();
  await pad.displayDeviceInfoInLCD(true);
});

test('the ink comes as points and as pictures', async () => {
  await pad.clear();
  await pad.setPenWidth(4);
  await pad.setPenStyle(false);
  await pad.setPenColor({ r: 255, g: 0, b: 0 });
  await pad.setClip({ width: 0, height: 0 });
  assert.equal(await pad.getSize(), 600);
  const points = await pad.getPointer();
  assert.equal(points.length, 600);
  assert.ok(points.every(({ x, y, pressure }) => x >= 0 && x < 800 && y >= 0 && y < 480 && pressure <= 1023));
  assert.equal(points.at(-1).strokeEnd, true);
  assert.equal(await pad.getDeviceConfirmOrCancelKeyStatus(), KeyStatus.confirm);
  assert.equal((await pad.getInks()).mediaType, 'image/png');
  assert.equal(await pad.getInks(), null, 'the same picture comes once');
  assert.equal((await pad.getOpaqueInks()).mediaType, 'image/png');
  assert.equal((await pad.wpsGetInks()).mediaType, 'image/png');
  assert.equal((await pad.encode(1)).mediaType, 'image/bmp');
  assert.equal((await pad.encode(4)).mediaType, 'image/jpeg');
  const svg = await pad.getSVGImageBase64Data();
  assert.equal(svg.mediaType, 'image/svg+xml');
  assert.match(await svg.blob.text(), /#ff0000/);
});

test('files are written on the machine of the service', async () => {
  const saved = await pad.saveDrawingImage({ type: 2, dpi: 96, path: `${desktop.home}/saved.png` });
  assert.equal((await readFile(saved)).subarray(1, 4).toString(), 'PNG');
  await assert.rejects(pad.saveDrawingImage({ type: 2, dpi: 96, path: '/nowhere/a.png' }), { code: 'device-error' });
  const ink = await pad.encode(6);
  const decoded = await pad.decode({ type: 6, path: 'signpad-test-decoded', data: ink });
  assert.equal(decoded.length, 600);
  assert.deepEqual(Object.keys(decoded[0]), ['x', 'y', 'strokeEnd']);
  assert.equal(await pad.getDecodeFilePath(), '/tmp/signpad-test-decoded');
  await rm('/tmp/signpad-test-decoded', { force: true });
});

test('WPS settings and picture', async () => {
  const settings = { dateTime: false, autoFit: true, penWidth: 7, name: '李明 ?%41' };
  await pad.updateWPSSettings({ app: 'WPP', ...settings });
  assert.deepEqual(await pad.getWPSSettings('WPP'), settings);
  assert.deepEqual(await pad.getWPSSettings('WPS'), { dateTime: false, autoFit: false, penWidth: 3, name: '' });
  assert.equal(await pad.wpsSignConfirmed('WPP'), '/tmp/MVeSignWPS_dt_name.png');
  assert.equal(await pad.wpsSignConfirmed('WPS'), '/tmp/MVeSignWPS.png');
  assert.equal(await pad.initialWPSSignCanvas({ width: 300, height: 200 }), true);
});

test('only the models that have it notify and read fingerprints', async () => {
  assert.equal(await pad.enableRealtimeSigningNotification(3), true);
  assert.equal(await pad.getFingerPrintImage(true), null);
  await pad.open({ model: Model.Cedar, width: 800, height: 480 });
  assert.equal(await pad.enableRealtimeSigningNotification(3), false);
  const place = { canvasWidth: 800, canvasHeight: 480, left: 600, top: 240, width: 200, height: 240 };
  await pad.setDisplayedFPImageAt(place);
  assert.equal((await pad.getFingerPrintImage(true)).mediaType, 'image/png');
  assert.equal(await pad.initialWPSSignCanvas({ width: 300, height: 200 }), false);
  assert.equal(await pad.uninitialDevice(), true);
});

test('every command was called', () => {
  assert.deepEqual(COMMANDS.map(({ api }) => api).filter((api) => !called.has(api)), []);
});

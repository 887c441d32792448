// What each method puts on the wire and makes of the reply; the table of commands against the service's own.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { after, before, test } from 'node:test';
import WebSocket from 'ws';
import { COMMANDS, Model, SignPad, SignPadData, SignPadError } from '../signpad.js';
import { reply, startMockService } from './mock-service.js';

const PNG = 'iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==';
const INK_IMAGE = `[{"EventType":"0","Image":"${PNG}","ImageLength":"${PNG.length}"}]`;
const POINTS = '[{"Time":"10:00:00.005","bStrokeEnd":"0","pressure":"512","x":"-3","y":"40"},' +
  '{"Time":"10:00:00.010","bStrokeEnd":"1","pressure":"0","x":"7","y":"41"}]';

let service;
let pad;
let result;

before(async () => {
  service = await startMockService((request) => reply(request.replace(/\?.*/s, ''), result));
  pad = await SignPad.connect({ port: service.port, WebSocket });
});

after(async () => {
  pad.close();
  await service.stop();
});

async function exchange(call, resultText) {
  result = resultText;
  const value = await call();
  return [service.requests.at(-1).slice(`ws://localhost:${service.port}/MVSignSDK/`.length), value];
}

const asPlain = (value) => value instanceof SignPadData ? `${value.mediaType};${value.base64}` : value;

const cases = [
  [() => pad.clear(), '0', 'Clear', undefined],
  [() => pad.closeLCD(), '0', 'CloseLCD', undefined],
  [() => pad.decode({ type: 6, data: 'QUJD==' }), '[{"bStrokeEnd":"1","x":"3","y":"4"}]',
    'Decode?type=6&data=QUJD==', [{ x: 3, y: 4, strokeEnd: true }]],
  [() => pad.decode({ type: 3, path: 'a=b&c?.png', data: new SignPadData('QUJD') }), '',
    'Decode?type=3&path=a=b&c?.png&data=QUJD', null],
  [() => pad.displayDeviceInfoInLCD(true), '0', 'DisplayDeviceInfoInLCD?show=1', undefined],
  [() => pad.encode(3), PNG, 'Encode?type=3', `image/png;${PNG}`],
  [() => pad.encode(6), 'AAEC', 'Encode?type=6', 'application/octet-stream;AAEC'],
  [() => pad.encode(4), '/9j/4AAQ', 'Encode?type=4', 'image/jpeg;/9j/4AAQ'],
  [() => pad.encode(1), 'Qk02', 'Encode?type=1', 'image/bmp;Qk02'],
  [() => pad.encode(2), '', 'Encode?type=2', null],
  [() => pad.getAboutInfo(), 'About', 'GetAboutInfo', 'About'],
  [() => pad.getDecodeFilePath(), '/tmp/a', 'GetDecodeFilePath', '/tmp/a'],
  [() => pad.getDeviceConfirmOrCancelKeyStatus(), '-1', 'GetDeviceConfirmOrCancelKeyStatus', -1],
  [() => pad.getDeviceInfo(1), 'true', 'GetDeviceInfo?type=1', true],
  [() => pad.getDeviceInfo(2), '800,480', 'GetDeviceInfo?type=2', [800, 480]],
  [() => pad.getDeviceInfo(4), '0,7', 'GetDeviceInfo?type=4', [0, 7]],
  [() => pad.getDeviceInfo(7), '1.2', 'GetDeviceInfo?type=7', '1.2'],
  [() => pad.getDeviceInfo(9), '', 'GetDeviceInfo?type=9', null],
  [() => pad.getFingerPrintImage(false), INK_IMAGE, 'GetFingerPrintImage?FPImageOnly=0', `image/png;${PNG}`],
  [() => pad.getInks(), INK_IMAGE, 'GetInks', `image/png;${PNG}`],
  [() => pad.getPointer(), POINTS, 'GetPointer', [
    { x: -3, y: 40, strokeEnd: false, pressure: 512, time: '10:00:00.005' },
    { x: 7, y: 41, strokeEnd: true, pressure: 0, time: '10:00:00.010' },
  ]],
  [() => pad.getSize(), '2', 'GetSize', 2],
  [() => pad.initialDevice({ id: Model.Cedar, width: 800, height: 480 }), '1',
    'InitialDevice?id=7&width=800&height=480', true],
  [() => pad.isValid(), '0', 'IsValid', false],
  [() => pad.openLCD(), '0', 'OpenLCD', undefined],
  [() => pad.padID(), 'P-1', 'PadID', 'P-1'],
  [() => pad.penID(), '', 'PenID', ''],
  [() => pad.saveDrawingImage({ type: 2, dpi: 300, path: 'sig.png' }), '/tmp/sig.png',
    'SaveDrawingImage?type=2&dpi=300&path=sig.png', '/tmp/sig.png'],
  [() => pad.setClip({ width: -1, height: 50 }), '0', 'SetClip?width=-1&height=50', undefined],
  [() => pad.setDisplayedFPImageAt({ canvasWidth: 1, canvasHeight: 2, left: 3, top: 4, width: 5, height: 6 }), '0',
    'SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=2&Left=3&Top=4&Width=5&Height=6', undefined],
  [() => pad.setPenColor({ r: 0, g: 128, b: 255 }), '0', 'SetPenColor?R=0&G=128&B=255', undefined],
  [() => pad.setPenStyle(true), '0', 'SetPenStyle?Style=0', undefined],
  [() => pad.setPenStyle(false), '0', 'SetPenStyle?Style=1', undefined],
  [() => pad.setPenWidth(5), '0', 'SetPenWidth?Width=5', undefined],
  [() => pad.uninitialDevice(), '1', 'UninitialDevice', true],
  [() => pad.versionID(), '1.0', 'VersionID', '1.0'],
  [() => pad.getWPSSettings('ET'),
    '{"CurrentPenWidth":"3","EnableAutoFit":"0","EnableDateTime":"1","Name":"李明 A"}', 'GetWPSSettings?id=2',
    { dateTime: true, autoFit: false, penWidth: 3, name: '李明 A' }],
  [() => pad.updateWPSSettings({ app: 'WPP', dateTime: true, autoFit: false, penWidth: 5, name: '李明 A?' }), '0',
    'UpdateWPSSettings?id=3&dt=1&af=0&pw=5&name=李明 A?', undefined],
  [() => pad.wpsSignConfirmed('WPS'), '/tmp/MVeSignWPS.png', 'WPSSignConfirmed?id=1', '/tmp/MVeSignWPS.png'],
  [() => pad.wpsSignConfirmed('WPP'), '', 'WPSSignConfirmed?id=3', null],
  [() => pad.wpsGetInks(), '', 'WPSGetInks', null],
  [() => pad.initialWPSSignCanvas({ width: 640, height: 320 }), '1', 'InitialWPSSignCanvas?width=640&height=320', true],
  [() => pad.getSVGImageBase64Data(), 'PHN2Zy8+', 'GetSVGImageBase64Data', 'image/svg+xml;PHN2Zy8+'],
  [() => pad.enableRealtimeSigningNotification(1), '0', 'EnableRealtimeSigningNotification?type=1', false],
  [() => pad.getOpaqueInks(), INK_IMAGE, 'GetOpaqueInks', `image/png;${PNG}`],
];

for (const [call, resultText, request, value] of cases) {
  test(`${request}, answered ${JSON.stringify(resultText.slice(0, 20))}`, async () => {
    const [sent, got] = await exchange(call, resultText);
    assert.equal(sent, request);
    assert.deepEqual(asPlain(got), value);
  });
}

test('every command is a method, and tried', () => {
  const tried = new Set(cases.map(([, , request]) => request.replace(/\?.*/s, '')));
  assert.equal(tried.size, 34);
  assert.deepEqual(COMMANDS.map(({ api }) => api).filter((api) => !tried.has(api)), []);
  assert.deepEqual(COMMANDS.filter(({ method }) => typeof SignPad.prototype[method] !== 'function'), []);
});

const refused = [
  ['a name with &',
    () => pad.updateWPSSettings({ app: 'WPS', dateTime: true, autoFit: true, penWidth: 3, name: 'A&B' })],
  ['a path with =', () => pad.saveDrawingImage({ type: 2, dpi: 300, path: 'a=b.png' })],
  ['a path with a NUL', () => pad.saveDrawingImage({ type: 2, dpi: 300, path: 'a\0b.png' })],
  ['half a character', () => pad.saveDrawingImage({ type: 2, dpi: 300, path: 'a\ud83d.png' })],
  ['a fraction', () => pad.setPenWidth(1.5)],
  ['text for a number', () => pad.setPenWidth('5')],
  ['a number beyond 32 bits', () => pad.setPenWidth(2147483648)],
  ['a number for a flag', () => pad.setPenStyle(1)],
  ['an unknown application', () => pad.getWPSSettings('toString')],
  ['a missing value', () => pad.setPenColor({ r: 1, g: 2 })],
  ['no values', () => pad.setPenColor()],
  ['no data to decode', () => pad.decode({ type: 6, data: '' })],
  ['an empty path to decode to', () => pad.decode({ type: 6, path: '', data: 'QUJD' })],
  ['a path that reads as data', () => pad.decode({ type: 6, path: 'a&data=b', data: 'QUJD' })],
  ['data that reads as a path', () => pad.decode({ type: 6, data: 'a&path=b' })],
];

for (const [what, call] of refused) {
  test(`${what} is refused before anything is sent`, async () => {
    const before = service.requests.length;
    await assert.rejects(call(), { name: 'SignPadError', code: 'invalid-argument' });
    assert.equal(service.requests.length, before);
  });
}

const malformed = [
  ['a number', () => pad.getSize(), 'many'],
  ['points', () => pad.getPointer(), '{}'],
  ['a point', () => pad.getPointer(), '[null]'],
  ['JSON', () => pad.getPointer(), '[{'],
  ['a picture', () => pad.getInks(), '[]'],
  ['base64', () => pad.encode(3), '<html>'],
  ['settings', () => pad.getWPSSettings('WPS'), 'null'],
];

for (const [what, call, resultText] of malformed) {
  test(`a reply without ${what} is a protocol error, and the next call works`, async () => {
    result = resultText;
    await assert.rejects(call(), { name: 'SignPadError', code: 'protocol' });
    result = '7';
    assert.equal(await pad.getSize(), 7);
  });
}

test('an error number in place of a path is a device error', async () => {
  result = '-3';
  await assert.rejects(pad.saveDrawingImage({ type: 2, dpi: 300, path: 'a.png' }), { code: 'device-error' });
  await assert.rejects(pad.wpsSignConfirmed('WPS'), { code: 'device-error' });
});

test('data is handed out as bytes, Blob and data URL', async () => {
  const data = new SignPadData('QUJD\n');
  assert.deepEqual([...data.bytes], [65, 66, 67]);
  assert.equal(await data.blob.text(), 'ABC');
  assert.equal(data.blob.type, 'application/octet-stream');
  assert.equal(data.dataURL, 'data:application/octet-stream;base64,QUJD');
  assert.throws(() => new SignPadData('QUJDR'), SignPadError);
  assert.throws(() => new SignPadData('QUJDR='), SignPadError);
});

test('names and keys are those of the service', { skip: !process.env.MVSIGNPAD_BIN_DIR && 'needs a build' }, () => {
  const listed = execFileSync(`${process.env.MVSIGNPAD_BIN_DIR}/mvsignctl`, ['--list'], { encoding: 'utf8' });
  assert.deepEqual(
    COMMANDS.map(({ api, parameters }) => [api, ...parameters.map(({ key }) => key)].join(' ')),
    listed.trimEnd().split('\n'));
});

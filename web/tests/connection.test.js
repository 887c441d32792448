// One request at a time, time-outs, pushes, lost connections: what must hold whatever the service does.
import assert from 'node:assert/strict';
import { EventEmitter, once } from 'node:events';
import net from 'node:net';
import { test } from 'node:test';
import { setImmediate as nextTurn, setTimeout as sleep } from 'node:timers/promises';
import WebSocket from 'ws';
import { KeyStatus, Model, SignPad } from '../signpad.js';
import { reply, startMockService } from './mock-service.js';

/** Starts a mock service and a client; both end with the test. */
async function start(t, answer, options) {
  const service = await startMockService(answer);
  t.after(() => service.stop());
  const pad = await SignPad.connect({ port: service.port, WebSocket, ...options });
  t.after(() => pad.close());
  return { service, pad };
}

const apisOf = ({ requests }) => requests.map((text) => text.split('/').at(-1));

/** Waits for a condition; the test's own time limit ends what never comes. */
async function until(condition) {
  while (!condition()) await sleep(2);
}

/** What waits for `opened` goes on after `open()`. */
function gate() {
  let open;
  const opened = new Promise((resolve) => { open = resolve; });
  return { open, opened };
}

function eventsOf(pad, type) {
  const heard = [];
  pad.addEventListener(type, ({ detail }) => heard.push(detail));
  return heard;
}

test('calls go out one after the other, each after the reply to the one before', async (t) => {
  const held = [];
  const { service, pad } = await start(t, (request, socket) => { held.push([request, socket]); });
  const results = Promise.all([pad.getSize(), pad.versionID(), pad.getSize()]);
  const oneArrives = async () => {
    await until(() => held.length > 0);
    await service.settled(); // and no other behind it
  };
  const answerNext = (result) => {
    const [request, socket] = held.shift();
    socket.send(reply(request, result));
  };
  await oneArrives();
  assert.deepEqual(apisOf(service), ['GetSize']);
  answerNext('1');
  await oneArrives();
  assert.deepEqual(apisOf(service), ['GetSize', 'VersionID']);
  answerNext('2.0');
  await oneArrives();
  assert.deepEqual(apisOf(service), ['GetSize', 'VersionID', 'GetSize']);
  answerNext('3');
  assert.deepEqual(await results, [1, '2.0', 3]);
});

test('the refusal of a request is told apart', async (t) => {
  const { pad } = await start(t, (request) =>
    request === 'GetSize' ? reply(request, '4') : reply('Invalid API request', '-1'));
  await assert.rejects(pad.setPenWidth(3), { code: 'invalid-request' });
  await assert.rejects(pad.getInks(), { code: 'invalid-request' });
  assert.equal(await pad.getSize(), 4);
});

test('a late reply is not taken for the answer to the next call', async (t) => {
  const results = ['1', '2'];
  const { open, opened } = gate();
  const { pad } = await start(t, (request) => opened.then(() => reply(request, results.shift())));
  await assert.rejects(pad.getSize({ timeout: 50 }), { code: 'timeout' });
  const next = pad.getSize();
  open();
  assert.equal(await next, 2);
});

test('a call that times out in the line is never sent', async (t) => {
  const { service, pad } = await start(t, () => undefined);
  await Promise.all([
    assert.rejects(pad.getSize({ timeout: 60 }), { code: 'timeout' }),
    assert.rejects(pad.clear({ timeout: 60 }), { code: 'timeout' }),
  ]);
  await service.settled();
  assert.deepEqual(apisOf(service), ['GetSize']);
});

test('an aborted call rejects with the reason of the signal', async (t) => {
  const { service, pad } = await start(t, () => undefined);
  const reason = new Error('changed my mind');
  await assert.rejects(pad.getSize({ signal: AbortSignal.abort(reason) }), reason);
  const controller = new AbortController();
  const call = assert.rejects(pad.getSize({ signal: controller.signal }), reason);
  await until(() => service.requests.length === 1);
  controller.abort(reason);
  await call;
  assert.deepEqual(apisOf(service), ['GetSize']);
});

test('pushes arrive as events', async (t) => {
  const { service, pad } = await start(t);
  const keys = eventsOf(pad, 'key');
  const images = eventsOf(pad, 'image');
  const messages = eventsOf(pad, 'message');
  service.sendToAll(reply('GetDeviceConfirmOrCancelKeyStatus', '1'));
  service.sendToAll(reply('GetDeviceConfirmOrCancelKeyStatus', '5'));
  service.sendToAll(reply('GetInks', '[{"EventType":"0","Image":"QUJD","ImageLength":"4"}]'));
  service.sendToAll(reply('GetInks', 'nonsense'));
  service.sendToAll('nonsense');
  await until(() => messages.length === 5);
  assert.deepEqual(keys, [1, 5]);
  assert.deepEqual(images.map(({ base64 }) => base64), ['QUJD']);
});

test('a push between another request and its reply is an event', async (t) => {
  const { pad } = await start(t, (request, socket) => {
    socket.send(reply('GetDeviceConfirmOrCancelKeyStatus', '0'));
    return reply(request, '12');
  });
  const keys = eventsOf(pad, 'key');
  assert.equal(await pad.getSize(), 12);
  assert.deepEqual(keys, [0]);
});

for (const [order, first, second] of [['before', '1', '-1'], ['after', '-1', '1']]) {
  test(`a key push just ${order} the reply of the same name is no reply`, async (t) => {
    const { pad } = await start(t, (request, socket) => {
      socket.send(reply(request, first));
      return reply(request, second);
    });
    const keys = eventsOf(pad, 'key');
    assert.equal(await pad.getDeviceConfirmOrCancelKeyStatus(), -1);
    await until(() => keys.length > 0);
    assert.deepEqual(keys, [1]);
  });
}

test('an image push just before an unchanged GetInks is no reply', async (t) => {
  const { pad } = await start(t, (request, socket) => {
    socket.send(reply(request, '[{"EventType":"0","Image":"QUJD","ImageLength":"4"}]'));
    return reply(request, '');
  });
  const images = eventsOf(pad, 'image');
  assert.equal(await pad.getInks(), null);
  assert.deepEqual(images.map(({ base64 }) => base64), ['QUJD']);
});

test('a push that cannot be told from the reply never shifts later replies', async (t) => {
  let asked = 0;
  const { pad } = await start(t, (request, socket) => {
    if (++asked === 1) socket.send(reply(request, '1'));
    return reply(request, asked === 1 ? '0' : String(-asked));
  });
  const keys = eventsOf(pad, 'key');
  const answers = await Promise.all([1, 2, 3].map(() => pad.getDeviceConfirmOrCancelKeyStatus()));
  assert.deepEqual(answers, [1, -2, -3]);
  assert.deepEqual(keys, [0]);
});

test('binary messages of somebody else mean nothing', async (t) => {
  const { pad } = await start(t, (request, socket) => {
    socket.send(Buffer.from('abc'));
    socket.send(Buffer.from('abcd'));
    return reply(request, '-1');
  });
  assert.equal(await pad.getDeviceConfirmOrCancelKeyStatus(), -1);
});

test('a late reply that looks like a push is neither an answer nor an event', async (t) => {
  const results = ['1', '-1'];
  const { open, opened } = gate();
  const { pad } = await start(t, (request) => opened.then(() => reply(request, results.shift())));
  const keys = eventsOf(pad, 'key');
  await assert.rejects(pad.getDeviceConfirmOrCancelKeyStatus({ timeout: 50 }), { code: 'timeout' });
  const next = pad.getDeviceConfirmOrCancelKeyStatus();
  open();
  assert.equal(await next, -1);
  assert.deepEqual(keys, []);
});

test('what is not of the protocol fails the call, not the client', async (t) => {
  const answers = ['<html>', '[]', '{"API":"GetSize"}', reply('Clear', '0'), reply('GetSize', '9')];
  const { pad } = await start(t, () => answers.shift());
  for (let i = 0; i < 4; ++i) await assert.rejects(pad.getSize(), { code: 'protocol' });
  assert.equal(await pad.getSize(), 9);
  await assert.rejects(pad.getInks(), { code: 'protocol' });
});

test('messages of a name that is no command are left aside', async (t) => {
  const { pad } = await start(t, (request, socket) => {
    socket.send(reply('SomethingNew', '1'));
    return reply(request, request === 'GetSize' ? '7' : '2.0');
  });
  assert.deepEqual(await Promise.all([pad.getSize(), pad.versionID(), pad.getSize()]), [7, '2.0', 7]);
});

test('a closed port is told apart', async () => {
  const service = await startMockService();
  await service.stop();
  await assert.rejects(SignPad.connect({ port: service.port, WebSocket }), { code: 'service-not-running' });
});

test('a port that accepts and stays silent times out', async (t) => {
  const server = net.createServer(() => undefined).listen(0, 'localhost');
  await once(server, 'listening');
  t.after(() => server.close());
  await assert.rejects(SignPad.connect({ port: server.address().port, WebSocket, timeout: 80 }), { code: 'timeout' });
});

/** A browser around the client, as far as it looks at one. `asked()` may hold its answer back. */
function inBrowser(t, permissionState, location, asked = () => undefined) {
  const real = Object.getOwnPropertyDescriptor(globalThis, 'navigator');
  const navigator = { permissions: { query: async ({ name }) => {
    if (name !== 'loopback-network') throw new TypeError(name);
    await asked();
    return { state: permissionState };
  } } };
  Object.defineProperty(globalThis, 'navigator', { value: navigator, configurable: true });
  globalThis.location = new URL(location);
  t.after(() => {
    if (real) Object.defineProperty(globalThis, 'navigator', real);
    else delete globalThis.navigator;
    delete globalThis.location;
  });
}

test('a refusal by the browser is told apart from a closed port', async (t) => {
  inBrowser(t, 'denied', 'https://bank.example/');
  const service = await startMockService();
  await service.stop();
  await assert.rejects(SignPad.connect({ port: service.port, WebSocket }), { code: 'permission-denied' });
});

for (const [location, promptTimeout, mayBeAsked] of [['https://bank.example/', 300, true],
  ['http://localhost:3000/', 30_000, false]]) {
  test(`connecting from ${location} leaves ${mayBeAsked ? '' : 'no '}time for the browser's question`, async (t) => {
    inBrowser(t, 'prompt', location);
    const server = net.createServer(() => undefined).listen(0, 'localhost');
    await once(server, 'listening');
    t.after(() => server.close());
    const start = performance.now();
    const { port } = server.address();
    await assert.rejects(SignPad.connect({ port, WebSocket, timeout: 50, promptTimeout }), { code: 'timeout' });
    assert.equal(performance.now() - start > promptTimeout, mayBeAsked);
  });
}

test('a connection that opens at the last moment stays open', async (t) => {
  const admission = gate();
  const answer = gate();
  inBrowser(t, 'prompt', 'https://bank.example/', () => {
    admission.open();
    return answer.opened;
  });
  const service = await startMockService((request) => reply(request, '5'), { admit: () => admission.opened });
  t.after(() => service.stop());
  const pad = await SignPad.connect({ port: service.port, WebSocket, timeout: 40, promptTimeout: 0 });
  t.after(() => pad.close());
  answer.open();
  await nextTurn();
  await sleep(0); // fires behind the prompt's own time-out, were there one
  assert.equal(await pad.getSize({ timeout: 10_000 }), 5);
});

test('a request names localhost, wherever the connection goes', async (t) => {
  const service = await startMockService((request) => reply(request, '5'));
  t.after(() => service.stop());
  const pad = await SignPad.connect({ port: service.port, host: service.address, WebSocket });
  t.after(() => pad.close());
  await pad.getSize();
  assert.deepEqual(service.requests, [`ws://localhost:${service.port}/MVSignSDK/GetSize`]);
});

test('options that make no sense are refused', async () => {
  await assert.rejects(SignPad.connect({ port: 0, WebSocket }), { code: 'invalid-argument' });
  await assert.rejects(SignPad.connect({ port: 65536, WebSocket }), { code: 'invalid-argument' });
  await assert.rejects(SignPad.connect({ WebSocket: null }), { code: 'invalid-argument' });
});

test('times that no timer can wait for are refused, and nothing is sent', async (t) => {
  for (const name of ['timeout', 'promptTimeout', 'reconnectDelay', 'maxReconnectDelay']) {
    for (const time of [Infinity, -1, NaN, 2 ** 31, '50']) {
      await assert.rejects(SignPad.connect({ WebSocket, [name]: time }), { code: 'invalid-argument' }, `${name} ${time}`);
    }
  }
  const { service, pad } = await start(t, (request) => reply(request, '3'), { timeout: 2 ** 31 - 1 });
  await assert.rejects(pad.getSize({ timeout: Infinity }), { code: 'invalid-argument' });
  await assert.rejects(pad.watch({ interval: Infinity }).next(), { code: 'invalid-argument' });
  assert.deepEqual(service.requests, []);
  assert.equal(await pad.getSize(), 3);
  assert.equal(await pad.getSize(null), 3);
});

test('a lost connection fails the calls that wait and is made anew', async (t) => {
  const { service, pad } = await start(t, (request) => request === 'GetSize' ? undefined : reply(request, '1.0'),
    { reconnectDelay: 20 });
  const back = once(asEmitter(pad, 'reconnect'), 'reconnect');
  const lost = eventsOf(pad, 'disconnect');
  const calls = [pad.getSize(), pad.versionID()].map((call) => assert.rejects(call, { code: 'connection-lost' }));
  await until(() => service.requests.length === 1);
  service.dropClients();
  await Promise.all(calls);
  assert.equal(lost[0].willReconnect, true);
  await assert.rejects(pad.versionID(), { code: 'connection-lost' });
  await back;
  assert.equal(pad.connected, true);
  assert.equal(await pad.versionID(), '1.0');
});

test('the pauses between attempts double up to the longest', async (t) => {
  const { service, pad } = await start(t, undefined, { reconnectDelay: 10, maxReconnectDelay: 40 });
  const attempts = eventsOf(pad, 'reconnecting');
  const back = once(asEmitter(pad, 'reconnect'), 'reconnect');
  await service.stop();
  await until(() => attempts.length >= 5);
  assert.deepEqual(attempts.slice(0, 5).map(({ delay }) => delay), [10, 20, 40, 40, 40]);
  const again = await startMockService(undefined, { port: service.port });
  t.after(() => again.stop());
  await back;
});

/** One that goes on connecting again when the client under test must not: `attempts()` waits for more of them. */
async function anotherClient(t, service) {
  const pad = await SignPad.connect({ port: service.port, WebSocket, reconnectDelay: 20, maxReconnectDelay: 20 });
  t.after(() => pad.close());
  const made = eventsOf(pad, 'reconnecting');
  return {
    attempts(count) {
      const wanted = made.length + count;
      return until(() => made.length >= wanted);
    },
  };
}

test('a closed client stays closed', async (t) => {
  const { service, pad } = await start(t, undefined, { reconnectDelay: 10 });
  const other = await anotherClient(t, service);
  const attempts = eventsOf(pad, 'reconnecting');
  const call = assert.rejects(pad.getSize(), { code: 'connection-lost' });
  pad.close();
  await call;
  await assert.rejects(pad.getSize(), { code: 'connection-lost' });
  service.dropClients();
  await other.attempts(1);
  assert.deepEqual(attempts, []);
});

test('closing ends the attempts to connect again', async (t) => {
  const { service, pad } = await start(t, undefined, { reconnectDelay: 10, maxReconnectDelay: 10 });
  const other = await anotherClient(t, service);
  const attempts = eventsOf(pad, 'reconnecting');
  await service.stop();
  await until(() => attempts.length >= 2);
  pad.close();
  const made = attempts.length;
  await other.attempts(4);
  assert.equal(attempts.length, made);
});

test('without reconnect a lost connection stays lost', async (t) => {
  const { service, pad } = await start(t, undefined, { reconnect: false, reconnectDelay: 10 });
  const other = await anotherClient(t, service);
  const attempts = eventsOf(pad, 'reconnecting');
  const lost = once(asEmitter(pad, 'disconnect'), 'disconnect');
  service.dropClients();
  assert.equal((await lost)[0].willReconnect, false);
  await other.attempts(1);
  assert.deepEqual(attempts, []);
});

test('a client that the user turns away does not have him asked again', async (t) => {
  const { service, pad } = await start(t, undefined, { reconnectDelay: 10 });
  const attempts = eventsOf(pad, 'reconnecting');
  const lost = once(asEmitter(pad, 'disconnect'), 'disconnect');
  const call = assert.rejects(pad.getSize(), { code: 'permission-denied' });
  await until(() => service.requests.length === 1);
  service.turnClientsAway();
  await call;
  assert.equal((await lost)[0].willReconnect, false);
  const other = await anotherClient(t, service);
  service.dropClients();
  await other.attempts(1);
  assert.deepEqual(attempts, []);
});

test('open raises what initialDevice answers', async (t) => {
  const { service, pad } = await start(t, (request) => reply('InitialDevice', request.includes('id=7') ? '1' : '0'));
  await pad.open({ model: Model.Cedar, width: 800, height: 480 });
  await assert.rejects(pad.open({ model: Model.Alder, width: 800, height: 480 }), { code: 'pad-missing' });
  assert.deepEqual(apisOf(service),
    ['InitialDevice?id=7&width=800&height=480', 'InitialDevice?id=2&width=800&height=480']);
});

/** A pad that writes one more point each time it is asked for the number of points, until `keyAfter` of them. */
function signingPad(keyAfter) {
  let size = 0;
  const point = '{"Time":"t","bStrokeEnd":"0","pressure":"9","x":"1","y":"2"}';
  return {
    present: true,
    answer(request) {
      if (request === 'IsValid') return reply(request, this.present ? '1' : '0');
      if (request === 'GetSize') return reply(request, String(size = Math.min(size + 1, keyAfter)));
      if (request === 'GetPointer') return reply(request, `[${Array(size).fill(point)}]`);
      return reply(request, size >= keyAfter ? '1' : '-1');
    },
  };
}

test('watch yields each change of ink and key', async (t) => {
  const device = signingPad(3);
  const { pad } = await start(t, (request) => device.answer(request));
  const seen = [];
  for await (const { points, key } of pad.watch({ interval: 5 })) {
    seen.push([points.length, key]);
    if (key === KeyStatus.confirm) break;
  }
  assert.deepEqual(seen, [[1, -1], [2, -1], [3, -1], [3, 1]]);
});

test('watch looks at the pad in a steady beat, whatever a look takes', async (t) => {
  let now = 1000;
  t.mock.method(performance, 'now', () => now);
  const { setTimeout: wait } = globalThis;
  const pauses = [];
  t.mock.method(globalThis, 'setTimeout', (act, milliseconds, ...rest) => {
    if (milliseconds < 100) pauses.push(milliseconds); // the others are time-outs of calls
    return wait(act, milliseconds, ...rest);
  });
  const device = signingPad(4);
  const { pad } = await start(t, (request) => {
    now += 15; // each answer takes that long
    return device.answer(request);
  });
  for await (const { key } of pad.watch({ interval: 50 })) if (key === KeyStatus.confirm) break;
  assert.deepEqual(pauses, [0, 5, 5, 5], 'the first look has a fourth answer, whether the pad is there');
});

const pointsText = (...points) => JSON.stringify(points.map(([Time, bStrokeEnd]) =>
  ({ Time, bStrokeEnd, pressure: '9', x: '1', y: '2' })));

/**
 * Watches a pad that answers as `rounds` say, one [size, points, key] for each look, until it reads confirm. Returns
 * what was told as [look, points, strokeEnd of the last point, key], and how often points were fetched.
 */
async function watchRounds(t, rounds) {
  let look = 0;
  let fetches = 0;
  const { pad } = await start(t, (request) => {
    if (request === 'IsValid') return reply(request, '1');
    if (request === 'GetDeviceConfirmOrCancelKeyStatus') return reply(request, rounds[look++][2]);
    if (request === 'GetSize') return reply(request, rounds[look - 1][0]);
    fetches += 1;
    return reply(request, rounds[look - 1][1]);
  });
  const told = [];
  for await (const { points, key } of pad.watch({ interval: 1 })) {
    told.push([look, points.length, points.at(-1)?.strokeEnd, key]);
    if (key === KeyStatus.confirm) break;
  }
  return { told, fetches };
}

test('watch tells the lifting of the pen, which adds no point', async (t) => {
  const down = ['1', pointsText(['a', '0']), '-1'];
  const up = ['1', pointsText(['a', '1']), '-1'];
  const { told, fetches } = await watchRounds(t, [down, down, up, up, up, [...up.slice(0, 2), '1']]);
  assert.deepEqual(told, [[1, 1, false, -1], [3, 1, true, -1], [6, 1, true, 1]]);
  assert.equal(fetches, 3, 'the points of a lifted pen are fetched once');
});

test('watch tells points once that were written while it looked', async (t) => {
  const two = pointsText(['a', '0'], ['b', '1']);
  const { told, fetches } = await watchRounds(t, [['1', two, '-1'], ['2', two, '-1'], ['2', two, '1']]);
  assert.deepEqual(told, [[1, 2, true, -1], [3, 2, true, 1]]);
  assert.equal(fetches, 1);
});

test('watch tells other points of the same number', async (t) => {
  const { told } = await watchRounds(t,
    [['1', pointsText(['a', '0']), '-1'], ['1', pointsText(['b', '0']), '-1'], ['1', pointsText(['b', '0']), '1']]);
  assert.deepEqual(told, [[1, 1, false, -1], [2, 1, false, -1], [3, 1, false, 1]]);
});

test('watch tells a key that is pressed again right after clear', async (t) => {
  let clears = 0;
  const answers = { IsValid: '1', GetDeviceConfirmOrCancelKeyStatus: '1', GetSize: '0', GetPointer: '[]', Clear: '0' };
  const { pad } = await start(t, (request) => reply(request, answers[request]));
  for await (const { points, key } of pad.watch({ interval: 1 })) {
    assert.deepEqual([points, key], [[], KeyStatus.confirm]);
    if (++clears === 3) break;
    await pad.clear();
  }
  assert.equal(clears, 3);
});

test('watch never tells a key from before clear with the ink from after it', async (t) => {
  let size = 1;
  let key = '1';
  let clearing;
  const { pad } = await start(t, (request) => {
    if (request === 'GetDeviceConfirmOrCancelKeyStatus' && !clearing) clearing = pad.clear(); // goes out next
    else if (request === 'Clear') [size, key] = [0, '-1'];
    return reply(request, { IsValid: '1', GetDeviceConfirmOrCancelKeyStatus: key, GetSize: String(size),
      GetPointer: size ? pointsText(['a', '1']) : '[]', Clear: '0' }[request]);
  });
  const { value } = await pad.watch({ interval: 1 }).next();
  assert.deepEqual(value, { points: [], key: -1 });
});

test('watch ends quietly on abort and raises the loss of the pad', async (t) => {
  const device = signingPad(Infinity);
  const { pad } = await start(t, (request) => device.answer(request));
  const controller = new AbortController();
  let rounds = 0;
  for await (const progress of pad.watch({ interval: 1, signal: controller.signal })) {
    assert.equal(progress.points.length, ++rounds);
    if (rounds === 3) controller.abort();
  }
  assert.equal(rounds, 3);
  await assert.rejects(async () => {
    for await (const progress of pad.watch({ interval: 1 })) device.present = progress.points.length < 0;
  }, { code: 'pad-missing' });
});

test('every text on the wire can be logged', async (t) => {
  const { service, pad } = await start(t, (request) => reply(request, '8'));
  const messages = eventsOf(pad, 'message');
  await pad.getSize();
  assert.deepEqual(messages, [
    { direction: 'sent', text: `ws://localhost:${service.port}/MVSignSDK/GetSize` },
    { direction: 'received', text: '{"API":"GetSize","Result":"8"}' },
  ]);
});

/** node:events' once() understands EventTargets only by their Event; this hands on the detail. */
function asEmitter(pad, type) {
  const emitter = new EventEmitter();
  pad.addEventListener(type, ({ detail }) => emitter.emit(type, detail));
  return emitter;
}

test('watch ends at once on abort, also while the pad does not answer', async (t) => {
  const controller = new AbortController();
  const { pad } = await start(t, () => { controller.abort(); }, { timeout: 600_000 });
  for await (const progress of pad.watch({ signal: controller.signal })) assert.fail(progress);
});

test('a listener may close the connection while a request goes out', async (t) => {
  const { pad } = await start(t, (request) => reply(request, '0'));
  pad.addEventListener('message', () => pad.close());
  await assert.rejects(pad.getSize(), { code: 'connection-lost' });
  await assert.rejects(pad.getSize(), { code: 'connection-lost' });
});

test('what is no host is refused as an argument', async () => {
  for (const host of ['::1', 'a b', '']) {
    await assert.rejects(SignPad.connect({ host, WebSocket }), { code: 'invalid-argument' }, host);
  }
});

test('where there is no WebSocket, that is what connecting tells', async (t) => {
  const { WebSocket: own } = globalThis; // later versions of Node have one
  delete globalThis.WebSocket;
  t.after(() => { if (own) globalThis.WebSocket = own; });
  await assert.rejects(SignPad.connect(), { name: 'SignPadError', code: 'no-websocket' });
});

test('a refusal by the browser is told apart from mixed content by where the page is from', async (t) => {
  class RefusedWebSocket {
    constructor() { throw new DOMException('not allowed', 'SecurityError'); }
  }
  const codeFrom = (location) => {
    Object.assign(globalThis, { location });
    return SignPad.connect({ WebSocket: RefusedWebSocket }).then(() => 'none', ({ code }) => code);
  };
  t.after(() => { delete globalThis.location; });
  assert.equal(await codeFrom({ protocol: 'https:', hostname: 'sign.example' }), 'mixed-content');
  assert.equal(await codeFrom({ protocol: 'file:', hostname: '' }), 'permission-denied');
});

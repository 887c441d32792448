// The same work in Node.js with ws: "node server.mjs PORT", until standard input ends.
import { WebSocketServer } from 'ws';

const alphabet = 'ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/';
const period = 4096;

class PictureText {
  constructor(size) {
    const bytes = Buffer.alloc(size);
    let state = 1;
    for (let i = 0; i < Math.min(size, period); ++i) {
      state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
      bytes[i] = alphabet.charCodeAt(state >>> 26);
    }
    for (let i = period; i < size; i += period) {
      bytes.copy(bytes, i, 0, Math.min(period, size - i));
    }
    this.bytes = bytes;
    this.turn = 0;
  }
  next() {
    this.bytes.write(String(this.turn++).padStart(8, '0'), 0, 'latin1');
    return this.bytes.latin1Slice();
  }
}

const imageArray = (image) =>
  JSON.stringify([{ EventType: '0', Image: image, ImageLength: String(image.length) }]);

function pointArray(count) {
  const points = [];
  for (let i = 0; i < count; ++i) {
    points.push({
      Time: String(1700000000000 + i * 5),
      bStrokeEnd: i % 50 === 49 ? '1' : '0',
      pressure: String(i % 2048),
      x: String(i % 20000),
      y: String(i % 15000),
    });
  }
  return JSON.stringify(points);
}

const envelope = (api, result) => JSON.stringify({ API: api, Result: result });

let picture = new PictureText(1024);
const pushed = new PictureText(200 * 1024);
let pointCount = 0;

const results = {
  InitialDevice(message) {
    const query = new URLSearchParams(message.slice(message.indexOf('?') + 1));
    picture = new PictureText(Number(query.get('width')));
    pointCount = Number(query.get('height'));
    return '1';
  },
  GetInks: () => imageArray(picture.next()),
  GetPointer: () => pointArray(pointCount),
  GetSize: () => String(pointCount),
};

const server = new WebSocketServer({ host: '127.0.0.1', port: Number(process.argv[2]), perMessageDeflate: false });

function push(text) {
  for (const client of server.clients) {
    client.send(text);
  }
}

const pushes = {
  // When the reply has gone.
  Clear: () => setTimeout(() => push(envelope('GetDeviceConfirmOrCancelKeyStatus', '1')), 1),
  OpenLCD: () => setImmediate(() => push(envelope('GetInks', imageArray(pushed.next())))),
};

server.on('connection', (client) => {
  client.on('message', (data) => {
    const message = data.toString();
    const start = message.lastIndexOf('/') + 1;
    const mark = message.indexOf('?', start);
    const api = mark < 0 ? message.slice(start) : message.slice(start, mark);
    client.send(envelope(api, results[api] ? results[api](message) : '0'));
    if (pushes[api]) {
      pushes[api]();
    }
  });
});

process.stdin.on('end', () => process.exit(0)).resume();

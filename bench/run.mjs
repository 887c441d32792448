// Runs the servers side by side and writes what was measured: "node run.mjs BUILD_DIR SOURCE_DIR [ROUNDS]". Everything goes over
// the loopback interface, on ports below those that the system gives to clients; the servers share one core, the load has another.
import { execFile, spawn } from 'node:child_process';
import { mkdirSync, readFileSync, readdirSync, writeFileSync } from 'node:fs';
import { connect } from 'node:net';
import { availableParallelism, cpus, loadavg, release } from 'node:os';
import { join, resolve } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import { promisify } from 'node:util';

import { writeReport } from './report.mjs';

const [buildDir, sourceDir] = process.argv.slice(2, 4).map((dir) => resolve(dir));
const benchDir = join(buildDir, 'bench');
const serverCore = '0';
const loadCore = '1';
const rounds = Number(process.argv[4] ?? 5);

const KiB = 1024;
const MiB = 1024 * KiB;

const servers = {
  service: { title: 'service', command: [join(benchDir, 'ServiceHost')] },
  bare: { title: 'bare Qt', command: [join(benchDir, 'BareServer')] },
  node: { title: 'Node ws', command: ['node', join(sourceDir, 'bench', 'node', 'server.mjs')] },
  beast: { title: 'Beast, constant', command: [join(benchDir, 'BeastServer')] },
};
const all = ['service', 'bare', 'node', 'beast'];
const working = ['service', 'bare', 'node']; // Beast answers with a constant only

const open = (bytes, points = 1) => `InitialDevice?id=2&width=${bytes}&height=${points}`;
// The speed of a virtual machine changes by half from one second to the next: many short rounds in turn meet that better than
// few long ones.
const image = (bytes) => ({
  servers: all,
  args: ['--mode', 'pingpong', '--seconds', 0.4],
  setup: [open(bytes)],
  request: 'GetInks',
  rounds: 2 * rounds,
});
const points = (count, requests, wanted = rounds) => ({
  servers: working,
  args: ['--mode', 'pingpong', '--count', requests],
  setup: [open(8, count)],
  request: 'GetPointer',
  rounds: Math.min(wanted, rounds),
});
const push = (clients, times) => ({
  servers: working,
  args: ['--mode', 'push', '--clients', clients, '--count', times],
  setup: [open(8), 'EnableRealtimeSigningNotification?type=1'],
  request: 'OpenLCD',
});
const small = (request, ...args) => ({
  servers: all,
  args: [...args, '--seconds', 0.2],
  setup: [open(8)],
  request,
  rounds: 3 * rounds,
});

const measures = {
  'ping-pong GetSize': small('GetSize', '--mode', 'pingpong'),
  'ping-pong SetPenColor': small('SetPenColor?R=0&G=0&B=255', '--mode', 'pingpong'),
  '16 clients GetSize': small('GetSize', '--mode', 'pingpong', '--clients', 16),
  '16 clients SetPenColor': small('SetPenColor?R=0&G=0&B=255', '--mode', 'pingpong', '--clients', 16),
  'pipelined GetSize': small('GetSize', '--mode', 'pipeline', '--count', 20000),
  'image 64 KiB': image(64 * KiB),
  'image 1 MiB': image(MiB),
  'image 5 MiB': image(5 * MiB),
  'image 20 MiB': image(20 * MiB),
  'points 1,000': points(1000, 50),
  'points 10,000': points(10000, 8),
  'points 100,000': points(100000, 1),
  'points 1,000,000': points(1000000, 1, 2),
  'push to 1': push(1, 40),
  'push to 20': push(20, 10),
  'push to 200': push(200, 3),
  'push behind a reply': {
    servers: working,
    args: ['--mode', 'push', '--count', 40],
    setup: [open(8), 'EnableRealtimeSigningNotification?type=1'],
    request: 'Clear',
    counts: { service: 4000, node: 4000 }, // a 99.9th percentile of fewer is the one slowest; the bare server takes 44 ms each
  },
};

const url = (port, request) => `ws://localhost:${port}/MVSignSDK/${request}`;

async function reachable(port) {
  for (;;) {
    const connected = await new Promise((done) => {
      const socket = connect(port, '127.0.0.1', () => done(true)).on('error', () => done(false));
      socket.on('connect', () => socket.destroy());
    });
    if (connected) {
      return;
    }
    await sleep(1);
  }
}

class Server {
  constructor(name, port, directory = benchDir) {
    const [program, ...args] = servers[name].command;
    this.port = port;
    this.process = spawn('taskset', ['-c', serverCore, program, ...args, String(port)],
      { cwd: directory, stdio: ['pipe', 'ignore', 'inherit'] });
    this.ended = new Promise((done) => this.process.on('exit', done));
  }
  get pid() {
    return this.process.pid; // taskset becomes the server
  }
  async stop() {
    this.process.stdin.end();
    await this.ended;
  }
  async load(args, setup, request) {
    const setups = setup.flatMap((one) => ['--setup', url(this.port, one)]);
    const { stdout } = await promisify(execFile)('taskset',
      ['-c', loadCore, join(benchDir, 'LoadClient'), '--port', this.port, '--server', this.pid,
        ...args, ...setups, '--request', url(this.port, request)].map(String));
    return JSON.parse(stdout);
  }
  status(key) {
    return Number(readFileSync(`/proc/${this.pid}/status`, 'utf8').match(`${key}:\\s+(\\d+)`)[1]);
  }
  wakeUps() {
    const tasks = readdirSync(`/proc/${this.pid}/task`);
    const count = (task) => Number(readFileSync(`/proc/${this.pid}/task/${task}/status`, 'utf8')
      .match(/^voluntary_ctxt_switches:\s+(\d+)/m)[1]);
    return tasks.map(count).reduce((sum, one) => sum + one, 0);
  }
}

async function sideBySide() {
  const running = {};
  let port = 27001;
  for (const name of all) {
    running[name] = new Server(name, port++);
    await reachable(running[name].port);
  }
  const results = {};
  for (const [title, measure] of Object.entries(measures)) {
    results[title] = Object.fromEntries(measure.servers.map((name) => [name, []]));
    for (let round = 0; round < (measure.rounds ?? rounds); ++round) {
      const order = round % 2 ? [...measure.servers].reverse() : measure.servers;
      for (const name of order) {
        const count = measure.counts?.[name];
        const args = count ? [...measure.args, '--count', count] : measure.args;
        results[title][name].push(await running[name].load(args, measure.setup, measure.request));
      }
    }
    console.log(title);
  }
  const digests = {};
  for (const name of working) {
    digests[name] = [];
    for (const request of ['GetPointer', 'GetInks', 'GetSize']) {
      digests[name].push(await running[name].load(['--mode', 'digest'], [open(MiB, 10000)], request));
    }
  }
  await Promise.all(Object.values(running).map((server) => server.stop()));
  return { results, digests };
}

/// Microseconds of replies of 10,000 and, right after it, of 1,000,000 points, round by round.
async function pointsInTurn() {
  const server = new Server('service', 27051);
  await reachable(server.port);
  const times = [];
  for (let round = 0; round < rounds; ++round) {
    const few = await server.load(['--mode', 'pingpong', '--count', 30], [open(8, 10000)], 'GetPointer');
    const many = await server.load(['--mode', 'pingpong', '--count', 2], [open(8, 1000000)], 'GetPointer');
    times.push({ few: few.p50, many: many.p50 });
  }
  await server.stop();
  return times;
}

async function startTimes() {
  const times = {};
  for (const name of working) {
    times[name] = [];
    for (let round = 0; round < rounds; ++round) {
      const start = performance.now();
      const server = new Server(name, 27101 + round);
      await reachable(server.port);
      times[name].push(performance.now() - start);
      await server.stop();
    }
  }
  return times;
}

/// Megabytes over what the server had before, for a reply of one size; the pad's own text is there before.
async function memoryOfReply(name, port, setup, request) {
  const server = new Server(name, port);
  await reachable(port);
  const megabytes = (key) => server.status(key) * 1024 / 1e6;
  await server.load(['--mode', 'digest'], [open(1000)], 'GetInks'); // everything that is loaded on first use
  await sleep(1500);
  const empty = megabytes('VmRSS');
  await server.load(['--mode', 'digest'], [setup], 'GetSize');
  const before = megabytes('VmRSS');
  writeFileSync(`/proc/${server.pid}/clear_refs`, '5'); // starts VmHWM anew
  let reply;
  for (let i = 0; i < 3; ++i) {
    reply = await server.load(['--mode', 'digest'], [], request);
  }
  const peak = megabytes('VmHWM') - before;
  await sleep(2500);
  const after = megabytes('VmRSS') - before;
  await server.load(['--mode', 'digest'], [open(1000)], 'GetInks');
  await sleep(1500);
  const rest = megabytes('VmRSS') - empty;
  await server.stop();
  return { reply: reply.length / 1e6, empty, peak, after, rest };
}

async function memory() {
  const cases = {
    'image 1 MiB': [open(MiB), 'GetInks'],
    'image 5 MiB': [open(5 * MiB), 'GetInks'],
    'image 20 MiB': [open(20 * MiB), 'GetInks'],
    'points 100,000': [open(8, 100000), 'GetPointer'],
  };
  const result = {};
  let port = 27201;
  for (const [title, [setup, request]] of Object.entries(cases)) {
    result[title] = {};
    for (const name of working) {
      result[title][name] = await memoryOfReply(name, port++, setup, request);
    }
  }
  return result;
}

async function wakeUpsAtRest() {
  const server = new Server('service', 27301);
  await reachable(server.port);
  const client = connect(server.port, '127.0.0.1');
  await server.load(['--mode', 'digest'], [open(MiB), 'EnableRealtimeSigningNotification?type=1', 'GetInks'], 'OpenLCD');
  await sleep(12000); // Qt gives a handshake ten seconds and looks then
  const before = server.wakeUps();
  await sleep(10000);
  const perSecond = (server.wakeUps() - before) / 10;
  client.destroy();
  await server.stop();
  return perSecond;
}

/// The WPS picture from the virtual pad, with name and date, at its 300 dpi.
async function wpsPicture() {
  const server = new Server('service', 27401, join(buildDir, 'bin'));
  await reachable(server.port);
  const setup = ['InitialDevice?id=2&width=800&height=480', 'UpdateWPSSettings?id=0&dt=1&af=0&pw=3&name=Sam'];
  await sleep(2500); // the virtual pad writes its signature
  const result = await server.load(['--mode', 'pingpong', '--count', 10], setup, 'WPSSignConfirmed?id=0');
  await server.stop();
  return result;
}

async function parts() {
  const { stdout } = await promisify(execFile)('taskset', ['-c', loadCore, join(benchDir, 'Parts'),
    '--benchmark_format=json', '--benchmark_min_time=0.2', '--benchmark_repetitions=3',
    '--benchmark_report_aggregates_only=true'], { maxBuffer: 1e7 });
  return JSON.parse(stdout).benchmarks.filter((one) => one.aggregate_name === 'median');
}

function noise() {
  const [, , , , , , , , steal] = readFileSync('/proc/stat', 'utf8').split('\n')[0].split(/\s+/).map(Number);
  return { load: loadavg()[0], steal };
}

if (availableParallelism() < 2) {
  console.error('two cores are needed: one for the servers, one for the load');
  process.exit(1);
}
const version = async (program, ...args) => (await promisify(execFile)(program, args)).stdout.trim();
const started = performance.now();
const before = noise();
const measured = {
  ...(await sideBySide()),
  pointsInTurn: await pointsInTurn(),
  start: await startTimes(),
  memory: await memory(),
  wakeUps: await wakeUpsAtRest(),
  wps: await wpsPicture(),
  parts: await parts(),
};
measured.machine = {
  cpu: cpus()[0].model,
  cores: cpus().length,
  kernel: release(),
  qt: await version('qmake', '-query', 'QT_VERSION').catch(() => ''),
  node: process.version,
  loadBefore: before.load,
  steal: noise().steal - before.steal,
  seconds: (performance.now() - started) / 1000,
};
mkdirSync(join(benchDir, 'plots'), { recursive: true });
writeFileSync(join(benchDir, 'measured.json'), JSON.stringify(measured, null, 1));
writeReport(measured, Object.fromEntries(all.map((name) => [name, servers[name].title])), sourceDir,
  join(benchDir, 'plots'));

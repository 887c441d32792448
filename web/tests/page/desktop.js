// The real program with the virtual pad on a desktop of its own: X server, tray, home directory.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { copyFile, mkdir, mkdtemp, rm, writeFile } from 'node:fs/promises';
import net from 'node:net';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';

const BUILT = process.env.MVSIGNPAD_BIN_DIR;
if (!BUILT) throw new Error('MVSIGNPAD_BIN_DIR must name the directory with the built program');

// No command line but the program's own may hold its name: it looks for running copies of itself that way.
const PROGRAM = 'mvsignpadsdk_wssvr';
const PAD_LIBRARY = 'libmvsignpadsdk.so';

export async function until(condition, what, timeout = 20_000) {
  for (const end = Date.now() + timeout; Date.now() < end; await sleep(25)) {
    const value = await condition();
    if (value) return value;
  }
  throw new Error(`timed out waiting for ${what}`);
}

export async function freePort() {
  const server = net.createServer().listen(0, '127.0.0.1');
  await once(server, 'listening');
  const { port } = server.address();
  server.close();
  await once(server, 'close');
  return port;
}

const accepts = (port) => new Promise((resolve) => {
  const socket = net.connect(port, '127.0.0.1');
  socket.once('connect', () => resolve(true)).once('error', () => resolve(false)).once('close', () => socket.destroy());
  socket.once('connect', () => socket.destroy());
});

async function end(child, signal = 'SIGTERM') {
  if (child.exitCode !== null || child.signalCode !== null) return;
  const ended = once(child, 'exit');
  child.kill(signal);
  if (!await Promise.race([ended.then(() => true), sleep(5_000, false, { ref: false })])) child.kill('SIGKILL');
  await ended;
}

/** An X server and a tray. `environment` is for what runs on it. */
export async function startDesktop({ size = '1024x768' } = {}) {
  const home = await mkdtemp(path.join(tmpdir(), 'signpad-home-'));
  const server = spawn('Xvfb', ['-displayfd', '3', '-screen', '0', `${size}x24`, '-nolisten', 'tcp', '-noreset'],
    { stdio: ['ignore', 'ignore', 'ignore', 'pipe'] });
  const [number] = await once(server.stdio[3], 'data');
  const foreign = /^(QT_|XDG_|WAYLAND|DBUS_|MVSIGNPAD_VIRTUAL)/;
  const inherited = Object.entries(process.env).filter(([name]) => !foreign.test(name));
  const environment = { ...Object.fromEntries(inherited), DISPLAY: `:${String(number).trim()}`, HOME: home,
    XDG_RUNTIME_DIR: home };
  const tray = spawn('trayer', ['--edge', 'bottom', '--align', 'right', '--widthtype', 'request', '--height', '32'],
    { env: environment, stdio: 'ignore' });
  return {
    home,
    environment,
    async stop() {
      await end(tray);
      await end(server);
      await rm(home, { recursive: true, force: true });
    },
  };
}

async function writeSettings(home, port) {
  const directory = path.join(home, '.config', 'mvsignpadsdk');
  await mkdir(directory, { recursive: true });
  await writeFile(path.join(directory, 'MVSignPadSDK_WSSvr.conf'),
    `[Settings]\nStartWebService=true\nUILangID=3\nWebSocketPort=${port}\n`);
}

/** A copy of the program in a directory without the pad's library: a machine where the driver is missing. */
async function programWithoutPad(home) {
  const directory = await mkdtemp(path.join(home, 'program-'));
  for (const file of [PROGRAM, `${PROGRAM}.ico`]) await copyFile(path.join(BUILT, file), path.join(directory, file));
  return directory;
}

/**
 * Starts the program with its service listening. `virtual`: what the virtual pad is told, {SPEED: '0'} for
 * MVSIGNPAD_VIRTUAL_SPEED=0; it shows no window unless WINDOW asks for one.
 */
export async function startService(desktop, { port, virtual = {}, hasPad = true }) {
  const told = Object.entries({ WINDOW: '0', ...virtual }).map(([name, value]) => [`MVSIGNPAD_VIRTUAL_${name}`, value]);
  const directory = hasPad ? BUILT : await programWithoutPad(desktop.home);
  await writeSettings(desktop.home, port);
  const program = spawn(path.join(directory, PROGRAM), {
    env: { ...desktop.environment, ...Object.fromEntries(told) },
    stdio: ['ignore', 'inherit', 'inherit'],
  });
  await until(async () => {
    if (program.exitCode !== null) throw new Error(`the program ended (${program.exitCode}): does another copy run?`);
    return accepts(port);
  }, 'the service to listen', 40_000);
  return {
    isRunning: () => program.exitCode === null && program.signalCode === null,
    stop: (signal) => end(program, signal),
  };
}

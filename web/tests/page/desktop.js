// The real program with the virtual pad on a desktop of its own: X server, tray, home directory.
import { execFile, spawn } from 'node:child_process';
import { once } from 'node:events';
import { copyFile, mkdir, mkdtemp, rm, writeFile } from 'node:fs/promises';
import net from 'node:net';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import { promisify } from 'node:util';

const BUILT = process.env.MVSIGNPAD_BIN_DIR;
if (!BUILT) throw new Error('MVSIGNPAD_BIN_DIR must name the directory with the built program');

// No command line but the program's own may hold its name: it looks for running copies of itself that way.
const PROGRAM = 'mvsignpadsdk_wssvr';
const PAD_HEADER = 46; // window pixels above the pad's screen
const STEPS_PER_LINE = 40;

/** `what`: the condition in words, or a function that tells it once it was waited for in vain. */
export async function until(condition, what, timeout = 90_000) {
  for (const end = Date.now() + timeout; Date.now() < end; await sleep(25)) {
    const value = await condition();
    if (value) return value;
  }
  throw new Error(`timed out waiting for ${typeof what === 'function' ? what() : what}`);
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

/** An X server, a tray, and a window manager if wanted. `environment` is for what runs on it. */
export async function startDesktop({ windowManager } = {}) {
  const home = await mkdtemp(path.join(tmpdir(), 'signpad-home-'));
  const server = spawn('Xvfb', ['-displayfd', '3', '-screen', '0', '1024x768x24', '-nolisten', 'tcp', '-noreset'],
    { stdio: ['ignore', 'ignore', 'ignore', 'pipe'] });
  const [number] = await once(server.stdio[3], 'data');
  const foreign = /^(QT_|XDG_|WAYLAND|DBUS_|MVSIGNPAD_VIRTUAL)/;
  const inherited = Object.entries(process.env).filter(([name]) => !foreign.test(name));
  const environment = { ...Object.fromEntries(inherited), DISPLAY: `:${String(number).trim()}`, HOME: home,
    XDG_RUNTIME_DIR: home };
  const tray = spawn('trayer', ['--edge', 'bottom', '--align', 'right', '--widthtype', 'request', '--height', '32'],
    { env: environment, stdio: 'ignore' });
  const manager = windowManager && spawn(windowManager, { env: environment, stdio: 'ignore' });
  const desktop = {
    home,
    environment,
    async stop() {
      if (manager) await end(manager);
      await end(tray);
      await end(server);
      await rm(home, { recursive: true, force: true });
    },
  };
  if (manager) await until(() => isManaged(desktop), windowManager);
  return desktop;
}

/** Whether a window manager is at work: it announces itself once it has taken over the windows and its keys. */
async function isManaged({ environment }) {
  const { stdout } = await promisify(execFile)('xprop', ['-root', '_NET_SUPPORTING_WM_CHECK'], { env: environment });
  return stdout.includes('window id');
}

async function writeSettings(home, port) {
  const directory = path.join(home, '.config', 'mvsignpadsdk');
  await mkdir(directory, { recursive: true });
  await writeFile(path.join(directory, 'MVSignPadSDK_WSSvr.conf'),
    `[Settings]\nStartWebService=true\nUILangID=3\nWebSocketPort=${port}\n`);
}

/** Moves the real pointer and presses real keys of the desktop: arguments of xdotool. Returns what it prints. */
export async function xdotool(desktop, ...words) {
  const { stdout } = await promisify(execFile)('xdotool', words.flat().map(String), { env: desktop.environment });
  return stdout.trim();
}

/** The window of the virtual pad, and where on the screen the pad's own pixel (0, 0) lies. */
export async function padWindow(desktop, padWidth) {
  const find = () => xdotool(desktop, 'search', '--onlyvisible', '--name', 'virtual signature pad').catch(() => '');
  const id = await until(find, 'the window of the virtual pad');
  const geometry = await xdotool(desktop, 'getwindowgeometry', '--shell', id);
  const [x, y, width] = ['X', 'Y', 'WIDTH'].map((name) => Number(new RegExp(`^${name}=(.*)$`, 'm').exec(geometry)[1]));
  return { id, x: x + (width - padWidth) / 2, y: y + PAD_HEADER };
}

/** Draws one stroke through the corners, as fast as a hand does, and rests at its end before it lifts the pen. */
export async function drawStroke(desktop, { x, y }, corners) {
  const moveTo = ([left, top]) => ['mousemove', Math.round(x + left), Math.round(y + top)];
  const way = corners.slice(1).flatMap((corner, i) => Array.from({ length: STEPS_PER_LINE }, (_, step) =>
    corner.map((end, axis) => corners[i][axis] + (end - corners[i][axis]) * (step + 1) / STEPS_PER_LINE)));
  const motion = way.flatMap((point) => [...moveTo(point), 'sleep', 0.01]);
  await xdotool(desktop, moveTo(corners[0]), 'mousedown', 1, motion, 'sleep', 0.2, 'mouseup', 1);
}

export const pressKey = (desktop, { id }, key) => xdotool(desktop, 'windowfocus', '--sync', id, 'key', key);

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
    const end = program.exitCode ?? program.signalCode;
    if (end !== null) throw new Error(`the program ended (${end}): does another copy run?`);
    return accepts(port);
  }, 'the service to listen');
  return {
    isRunning: () => program.exitCode === null && program.signalCode === null,
    stop: (signal) => end(program, signal),
  };
}

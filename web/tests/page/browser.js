// The demo page in the system's Chromium, from file:// and from a web server of the test's own.
import { execFile } from 'node:child_process';
import { once } from 'node:events';
import { mkdtemp, readFile, readdir, rm } from 'node:fs/promises';
import http from 'node:http';
import https from 'node:https';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';
import puppeteer from 'puppeteer-core';
import { until } from './desktop.js';

export const WEB = fileURLToPath(new URL('../..', import.meta.url));
export const FILE_PAGE = new URL('../../demo/index.html', import.meta.url).href;
const CONTENT_TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml' };
const PATIENCE_MS = 90_000; // on a busy machine everything takes its time

export const startBrowser = (args = []) => puppeteer.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: ['--no-sandbox', '--disable-gpu', '--disable-background-networking', ...args],
  acceptInsecureCerts: true,
  timeout: PATIENCE_MS,
  protocolTimeout: PATIENCE_MS,
});

/** Cookies, storage and downloads of its own; `downloads` is the directory that the latter go to. */
export async function openContext(browser) {
  const downloads = await mkdtemp(path.join(tmpdir(), 'signpad-downloads-'));
  const context = await browser.createBrowserContext({
    downloadBehavior: { policy: 'allow', downloadPath: downloads },
  });
  const close = async () => {
    await context.close();
    await rm(downloads, { recursive: true, force: true });
  };
  return { context, downloads, close };
}

/** {key, cert} of a server at 127.0.0.1, for browsers that accept whatever certificate there is. */
export async function madeCertificate() {
  const directory = await mkdtemp(path.join(tmpdir(), 'signpad-certificate-'));
  const [key, cert] = ['key.pem', 'cert.pem'].map((name) => path.join(directory, name));
  try {
    await promisify(execFile)('openssl', ['req', '-x509', '-newkey', 'rsa:2048', '-nodes', '-subj', '/CN=127.0.0.1',
      '-days', '1', '-keyout', key, '-out', cert]);
    return { key: await readFile(key), cert: await readFile(cert) };
  } finally {
    await rm(directory, { recursive: true, force: true });
  }
}

/** A plain web server for a folder; `tls`: {key, cert} for https. */
export async function serveFolder(folder, tls) {
  const handle = async (request, response) => {
    const file = path.join(folder, path.normalize(new URL(request.url, 'http://page').pathname));
    try {
      const body = await readFile(file);
      response.writeHead(200, { 'Content-Type': CONTENT_TYPES[path.extname(file)] }).end(body);
    } catch {
      response.writeHead(404).end();
    }
  };
  const server = (tls ? https.createServer(tls, handle) : http.createServer(handle)).listen(0, '127.0.0.1');
  await once(server, 'listening');
  const { port } = server.address();
  return {
    port,
    stop: () => new Promise((resolve) => {
      server.closeAllConnections();
      server.close(resolve);
    }),
  };
}

/** The folder web/ on a web server of its own, and its demo page there. */
export async function servePage(tls) {
  const server = await serveFolder(WEB, tls);
  return { ...server, page: `http${tls ? 's' : ''}://127.0.0.1:${server.port}/demo/index.html` };
}

/** `language`, `viewport`, `theme` ('light' or 'dark'): what the user has set. No page moves more than it must. */
async function applySettings(page, { language, viewport, theme = 'light' }) {
  page.setDefaultTimeout(PATIENCE_MS);
  await page.setViewport(viewport);
  await page.emulateMediaFeatures([
    { name: 'prefers-reduced-motion', value: 'reduce' },
    { name: 'prefers-color-scheme', value: theme },
  ]);
  const devtools = await page.createCDPSession();
  const userAgent = await page.browser().userAgent();
  await devtools.send('Emulation.setUserAgentOverride', { userAgent, acceptLanguage: language });
  await devtools.send('Emulation.setFocusEmulationEnabled', { enabled: true });
}

/** Opens the page for a service at the port. `errors` fills with what no page should do. */
export async function openPage(context, url, port, settings) {
  const page = await context.newPage();
  await applySettings(page, settings);
  const errors = [];
  page.on('pageerror', (error) => errors.push(String(error)));
  page.on('request', (request) => {
    const own = ['data:', 'blob:', new URL('..', url).href].some((start) => request.url().startsWith(start));
    if (!own) errors.push(`request to ${request.url()}`);
  });
  page.on('console', (message) => {
    const refused = /WebSocket connection to .* failed/.test(message.text());
    if (message.type() === 'error' && !refused) errors.push(message.text());
  });
  await page.goto(`${url}?port=${port}`);
  return { page, errors };
}

/** Acts, and returns the file that comes of it; the next one of its name comes under that name, too. */
export async function download(downloads, act) {
  await act();
  const name = await until(async () => (await readdir(downloads)).find((file) => !file.endsWith('.crdownload')),
    'the download');
  const bytes = await readFile(path.join(downloads, name));
  await rm(path.join(downloads, name));
  return { name, bytes };
}

/**
 * What a picture of the page holds: its size, the box around its ink in its own pixels, whether there is ink near each
 * of the places, and the colour of its upper left pixel.
 */
export const inkOf = (page, selector, places = []) => page.$eval(selector, async (element, wanted) => {
  await element.decode?.();
  const canvas = document.createElement('canvas');
  const width = canvas.width = element.naturalWidth ?? element.width;
  const height = canvas.height = element.naturalHeight ?? element.height;
  const context = canvas.getContext('2d');
  context.drawImage(element, 0, 0);
  const { data } = context.getImageData(0, 0, width, height);
  const box = { left: width, top: height, right: -1, bottom: -1 };
  const near = wanted.map(() => false);
  let pixels = 0;
  for (let at = 0; at < data.length; at += 4) {
    const isInk = data[at + 3] > 127 && data[at] + data[at + 1] + data[at + 2] < 384;
    if (!isInk) continue;
    const x = (at / 4) % width;
    const y = Math.floor(at / 4 / width);
    pixels += 1;
    box.left = Math.min(box.left, x);
    box.right = Math.max(box.right, x);
    box.top = Math.min(box.top, y);
    box.bottom = Math.max(box.bottom, y);
    wanted.forEach(([left, top], i) => { near[i] ||= Math.abs(left - x) < 8 && Math.abs(top - y) < 8; });
  }
  return { width, height, pixels, box, near, corner: data.slice(0, 4).join() };
}, places);

// The browsers of the desktops, one by one: real builds, each driven in the way that it understands.
import { brotliDecompressSync } from 'node:zlib';
import { chmodSync, existsSync, mkdirSync, readFileSync, readdirSync, renameSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import path from 'node:path';
import puppeteer from 'puppeteer-core';
import { openDevtoolsTab } from './devtools.js';

const MODULES = fileURLToPath(new URL('../node_modules', import.meta.url));
const PATIENCE_MS = 90_000;

/** The old builds lie in their packages compressed, and are made for one processor. */
function unpacked(name) {
  const executable = path.join(MODULES, '.browsers', name);
  if (existsSync(executable)) return executable;
  const directory = path.join(MODULES, name, 'bin');
  const packed = readdirSync(directory).find((file) => /^chromium.*\.br$/.test(file));
  mkdirSync(path.dirname(executable), { recursive: true });
  const unfinished = `${executable}.${process.pid}`;
  writeFileSync(unfinished, brotliDecompressSync(readFileSync(path.join(directory, packed))));
  chmodSync(unfinished, 0o755);
  renameSync(unfinished, executable);
  return executable;
}

async function openPuppeteerTab(options) {
  const browser = await puppeteer.launch({ acceptInsecureCerts: true, timeout: PATIENCE_MS,
    protocolTimeout: PATIENCE_MS, ...options });
  const page = await browser.newPage();
  page.setDefaultTimeout(PATIENCE_MS);
  const errors = [];
  page.on('pageerror', (error) => errors.push(String(error)));
  page.on('console', (message) => {
    if (message.type() === 'error') errors.push(message.text());
  });
  const resize = (width, height) => page.setViewport({ width, height });
  return {
    errors,
    resize,
    run: (act, ...words) => page.evaluate(act, ...words),
    open: (url) => page.goto(url),
    prepare: (source) => page.evaluateOnNewDocument(source),
    async screenshot(width) {
      await resize(width, await page.evaluate(() => document.documentElement.scrollHeight));
      return page.screenshot();
    },
    close: () => browser.close(),
  };
}

const old = (version) => [`chromium-${version}`, () => openDevtoolsTab(unpacked(`chromium-${version}`))];

/** How to open a tab, by the browser's name. */
export const BROWSERS = Object.fromEntries([
  ...process.arch === 'x64' ? ['72', '78', '88', '92'].map(old) : [],
  ['chromium', () => openPuppeteerTab({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-background-networking', '--lang=en-US'],
  })],
  ['firefox', () => openPuppeteerTab({
    browser: 'firefox', executablePath: process.env.FIREFOX ?? '/usr/bin/firefox-esr',
    extraPrefsFirefox: { 'intl.accept_languages': 'en-US' },
  })],
]);

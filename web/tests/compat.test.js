// Nothing that the client and the page use is newer than the oldest browsers that they are made for, as far as published
// data tells. The syntax is tested in floor.test.js.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { newNames } from './compat/scripts.js';
import { newStyles } from './compat/styles.js';

const at = (name) => fileURLToPath(new URL(`../${name}`, import.meta.url));
const filesIn = (directory, ending) =>
  readdirSync(at(directory)).filter((name) => name.endsWith(ending)).map((name) => at(`${directory}/${name}`));

// What is used where it is there, after a look whether it is.
const OPTIONAL_NAMES = [
  'demo.js: locks', 'demo.js: query', 'demo.js: request', // tabs take turns
  'dom.js: ResizeObserver', 'dom.js: observe', // else the window's resizing
  'surroundings.ts: globalThis', // else `self`
  'surroundings.ts: reason', // else an AbortError
];

// What no function of the page hangs on.
const DECORATION = [
  '(forced-colors)', '(prefers-reduced-motion)', ':focus-visible', 'accent-color', 'color-scheme', 'color-scheme: dark',
  'color-scheme: light',
  'outline', // has square corners
  'scrollbar-color',
  'text-wrap', 'text-wrap: balance',
];

test('the scripts name nothing newer', () => {
  assert.deepEqual(newNames([...filesIn('src', '.ts'), ...filesIn('demo', '.js')]), OPTIONAL_NAMES);
});

test('the style sheet has nothing newer', () => {
  assert.deepEqual(newStyles(readFileSync(at('demo/demo.css'), 'utf8')), DECORATION);
});

test('names that one of the oldest browsers lacks are found, others are not', () => {
  const directory = mkdtempSync(path.join(tmpdir(), 'signpad-names-'));
  const script = path.join(directory, 'script.js');
  writeFileSync(script, `
    [1].flat(); unknown.flatMap(String); [1].map(String).at(0); 'x'.replaceAll('x', 'y'); 'x'.padStart(3);
    Object.fromEntries([]); Object.entries({}); Object.hasOwn({}, 'x'); Promise.any([]); Promise.resolve().finally(String);
    document.body.replaceChildren(); document.body.append('x'); unknown.toggleAttribute('x'); unknown.remove();
    AbortSignal.any([]); new AbortController().abort(); new Blob([]).text(); new Blob([]).slice();
    const { clipboard, language } = navigator; queueMicrotask(String); setTimeout(String); structuredClone({});
    new ResizeObserver(String); new MutationObserver(String); const own = { at: 1, flat: 2 }; own.at; own.flat;
  `);
  try {
    assert.deepEqual(newNames([script]), ['ResizeObserver', 'any', 'at', 'clipboard', 'flat', 'flatMap', 'fromEntries', 'hasOwn',
      'queueMicrotask', 'replaceAll', 'replaceChildren', 'structuredClone', 'text', 'toggleAttribute'].map((name) => `script.js: ${name}`));
  } finally {
    rmSync(directory, { recursive: true });
  }
});

const STYLES = {
  'a { inset: 0 }': ['inset'],
  'a { no-such-property: 0 }': ['no-such-property'],
  'a { display: flex; gap: 1px }': ['gap in flex'],
  'a { display: grid; gap: 1px }': ['gap in grid'],
  'a { display: grid; grid-gap: 1px }': [],
  'a { appearance: none }': ['appearance'],
  'a { -webkit-appearance: none; -moz-appearance: none; appearance: none }': [],
  'a { overflow: clip }': ['overflow: clip'],
  'a { overflow: hidden }': [],
  'a { width: min(1px, 2px) }': ['min()'],
  'a { width: calc(1px + 2px) }': [],
  'a { --size: clamp(1px, 2px, 3px) }': ['clamp()'],
  'a { height: 10dvh }': ['dvh'],
  'a { height: 10vh }': [],
  'a { background: conic-gradient(red, blue) }': ['conic-gradient()'],
  'a { background: red; background: conic-gradient(red, blue) }': [],
  ':is(a, b) { top: 0 }': [':is'],
  'a:not(:hover)::before { top: 0 }': [],
  'a, b::-webkit-meter-bar { top: 0 }': ['::-webkit-meter-bar'],
  'b::-webkit-meter-bar { top: 0 }': [],
  'a { b { top: 0 } }': ['a rule in a rule'],
  '@layer x { a { top: 0 } }': ['@layer'],
  '@media (hover: hover) { a { top: 0 } }': ['(hover)'],
  '@media (max-width: 1px) { a { top: 0 } }': [],
  '@supports (inset: 0) { a { inset: 0 } }': [],
};

for (const [sheet, found] of Object.entries(STYLES)) {
  test(`in ${sheet} ${found.length > 0 ? `${found} is found` : 'nothing is found'}`, () => {
    assert.deepEqual(newStyles(sheet), found);
  });
}

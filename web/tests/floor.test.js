// Nothing that runs in the page is written in a newer language than that of the oldest browsers that it is made for.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { test } from 'node:test';
import { transformSync } from 'esbuild';

const FLOOR = ['chrome69', 'firefox60'];
const demo = new URL('../demo/', import.meta.url);
const files = [
  ...readdirSync(demo).filter((name) => name.endsWith('.js')).map((name) => new URL(name, demo)),
  new URL('../signpad.js', import.meta.url),
  new URL('../signpad-classic.js', import.meta.url),
];

const written = (source, target) => transformSync(source, { target, charset: 'utf8' });

/** What had to be put in older words, or cannot be. */
function tooNew(source) {
  const { code, warnings } = written(source, FLOOR);
  const separators = source.match(/\b\d+_\d+/g) ?? []; // written without them whatever the target is
  return [...separators, ...warnings, ...code === written(source, 'esnext').code ? [] : [code]];
}

for (const file of files) {
  test(`${file.pathname.split('/').pop()} is written in the language of the oldest browsers`, () => {
    assert.deepEqual(tooNew(readFileSync(file, 'utf8')), []);
  });
}

for (const source of ['a?.b', 'a ?? b', 'a ||= b', 'class A { #b }', 'class A { static {} }', '1_000', '/(?<=a)/', '1n']) {
  test(`${source} is found too new`, () => assert.notDeepEqual(tooNew(source), []));
}

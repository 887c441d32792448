// Nothing that runs in the page is newer than the oldest browsers that it is made for.
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

for (const file of files) {
  test(`${file.pathname.split('/').pop()} is written in the language of the oldest browsers`, () => {
    const source = readFileSync(file, 'utf8');
    const { code, warnings } = written(source, FLOOR);
    assert.equal(code, written(source, 'esnext').code); // otherwise something had to be put in older words
    assert.deepEqual(warnings, []);
  });
}

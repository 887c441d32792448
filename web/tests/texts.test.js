// The page's texts: both languages complete, every text that the page asks for there.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { test } from 'node:test';
import vm from 'node:vm';

const demo = new URL('../demo/', import.meta.url);
const read = (name) => readFileSync(new URL(name, demo), 'utf8');

const context = vm.createContext({
  navigator: { language: 'en' },
  window: { Demo: { stored: () => null, store: () => undefined } },
});
vm.runInContext(read('texts.js'), context);
const { en, zh } = context.window.Demo.TEXTS;

test('both languages have the same texts with the same values in them', () => {
  assert.deepEqual(Object.keys(zh).sort(), Object.keys(en).sort());
  const values = (text) => [...text.matchAll(/\{\w+\}/g)].map(([value]) => value).sort();
  for (const key of Object.keys(en)) assert.deepEqual(values(zh[key]), values(en[key]), key);
});

test('every text is English or Chinese', () => {
  for (const [key, text] of Object.entries(en)) assert.doesNotMatch(text, /\p{Script=Han}/u, key);
  const international = new Set(['formatPng', 'formatSvg']);
  for (const [key, text] of Object.entries(zh)) {
    if (!international.has(key)) assert.match(text, /\p{Script=Han}/u, key);
  }
});

test('what the markup says is the English text', () => {
  const html = read('index.html').replace(/\s+/g, ' ');
  const marked = [...html.matchAll(/data-t="(\w+)"[^>]*>([^<]*)</g)];
  assert.equal(marked.length, html.split('data-t="').length - 1);
  for (const [, key, text] of marked) assert.equal(text.trim(), en[key], key);
  const labelled = [...html.matchAll(/data-t-label="(\w+)" aria-label="([^"]*)"/g)];
  assert.equal(labelled.length, html.split('data-t-label="').length - 1);
  for (const [, key, label] of labelled) assert.equal(label, en[key], key);
});

test('no text is left that nothing asks for', () => {
  const files = readdirSync(demo).filter((name) => /\.(js|html)$/.test(name) && name !== 'texts.js');
  const sources = files.map(read).join('\n').replace(/<meta [^>]*Content-Security-Policy[^>]*>/, '');
  const composed = /^(app(WPS|ET|WPP)|color(Black|Blue|Red|Green)|\w+(Title|Text))$/;
  const unused = Object.keys(en).filter((key) => !composed.test(key) && !new RegExp(`['"]${key}['"]`).test(sources));
  assert.deepEqual(unused, []);
});

// What a style sheet uses that the oldest browsers do not have.
import postcss from 'postcss';
import { data, isAnySupported, isSupported, named } from './data.js';

const { properties, selectors, types, 'at-rules': atRules } = data.css;

// Names that browsers had before today's.
const EARLIER = { 'grid-gap': properties.gap.grid_context };
const VIEWPORT_UNITS = { d: 'dynamic', l: 'large', s: 'small' };

const isVendors = (name) => /^:*-(webkit|moz|ms)-/.test(name);
const withoutTexts = (value) => value.replace(/"[^"]*"|'[^']*'|url\([^)]*\)/g, '');
const matches = (text, pattern) => [...text.matchAll(pattern)].map(([, name]) => name);

/** `gap` and its like are one feature in flex boxes and another in grids: the rule itself must say which is meant. */
function* unsupportedContexts({ prop, parent }) {
  const contexts = Object.keys(properties[prop] ?? {}).filter((key) => /^((flex|grid)_context|context_(flex|grid))$/.test(key));
  const display = parent.nodes.find((other) => other.prop === 'display')?.value ?? '';
  const own = contexts.filter((context) => /flex|grid/.test(display) && context.includes(display.slice(-4)));
  for (const context of own.length > 0 ? own : contexts) {
    if (isSupported(properties[prop][context]) === false) yield `${prop} in ${/flex|grid/.exec(context)}`;
  }
}

/** Words, functions and units of a value. */
function* unsupportedValues({ prop, value }) {
  const text = withoutTexts(value);
  for (const name of matches(text, /([\w-]+)\(/g)) {
    if (isAnySupported([...named(types, name), ...named(properties, name)]) === false) yield `${name}()`;
  }
  for (const word of matches(text, /(?<![\w#-])([a-z][\w-]*)(?![\w(-])/gi)) {
    const known = isSupported(properties[prop]?.[word]) ?? isSupported(types.color['system-color']?.[word.toLowerCase()]);
    if (known === false) yield `${prop}: ${word}`;
  }
  for (const unit of matches(text, /\d([a-z]+)\b/g)) {
    const [, size] = /^([dls])v/.exec(unit) ?? [];
    if (isSupported(types.length[size ? `viewport_percentage_units_${VIEWPORT_UNITS[size]}` : unit]) === false) yield unit;
  }
}

/** Browsers without it keep to what the rule says before for the same property. */
const hasFallback = ({ prop, parent }, index) => parent.nodes.slice(0, index).some((earlier) => earlier.prop === prop);

function* ofDeclaration(declaration) {
  const { prop, parent } = declaration;
  if (isVendors(prop) || prop.startsWith('--')) {
    yield* unsupportedValues(declaration);
    return;
  }
  const known = isSupported(properties[prop]) ?? isSupported(EARLIER[prop], prop);
  const isPrefixed = parent.nodes.some((other) => isVendors(other.prop ?? '') && other.prop.endsWith(`-${prop}`));
  if (!known && !isPrefixed) yield prop;
  yield* unsupportedContexts(declaration);
  if (!hasFallback(declaration, parent.index(declaration))) yield* unsupportedValues(declaration);
}

/** One selector that a browser does not know takes the rule's others with it. */
function* ofRule({ selectors: list, parent }) {
  if (parent.type === 'rule' && isSupported(selectors.nesting) === false) yield 'a rule in a rule';
  for (const selector of list) {
    for (const name of matches(selector.replace(/\[[^\]]*\]/g, ''), /(::?[a-z-]+)/g)) {
      const known = isVendors(name) ? list.length === 1 : isSupported(selectors[name.replace(/^:+/, '')]);
      if (known === false) yield name;
    }
  }
}

function* ofAtRule({ name, params }) {
  if (isSupported(atRules[name]) === false) yield `@${name}`;
  for (const feature of matches(params, /\(([\w-]+)/g)) {
    if (name === 'media' && isSupported(atRules.media[feature]) === false) yield `(${feature})`;
  }
}

/** What each rule, declaration and at-rule uses, `@supports` apart: what stands in one is for browsers that have it. */
export function newStyles(sheet) {
  const found = new Set();
  const isGuarded = (node) => node !== undefined && (node.name === 'supports' || isGuarded(node.parent));
  const note = (of) => (node) => {
    if (!isGuarded(node)) for (const use of of(node)) found.add(use);
  };
  const root = postcss.parse(sheet);
  root.walkDecls(note(ofDeclaration));
  root.walkRules(note(ofRule));
  root.walkAtRules(note(ofAtRule));
  return [...found].sort();
}

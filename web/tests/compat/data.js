// What the published compatibility data says of the oldest browsers that the client and the demo page are made for.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

const FLOOR = { chrome: 69, firefox: 60 };

export const data = JSON.parse(readFileSync(createRequire(import.meta.url).resolve('@mdn/browser-compat-data'), 'utf8'));

const numberOf = (version) => typeof version === 'string' ? Number.parseFloat(version.replace('≤', '')) : NaN;

/** A statement on a feature: true if it says that the version has it, whole, without being told to, by this name. */
function isThere(statement, version, name) {
  const { version_added, version_removed, flags, prefix, alternative_name, partial_implementation } = statement;
  return numberOf(version_added) <= version && !(numberOf(version_removed) <= version) &&
    !flags && !prefix && !partial_implementation && alternative_name === name;
}

/**
 * Whether all of the oldest browsers have the feature, by an earlier name if one is given; undefined where the data has
 * no such feature.
 */
export function isSupported(feature, earlierName) {
  const support = feature?.__compat?.support;
  return support && Object.entries(FLOOR).every(([browser, version]) =>
    [support[browser]].flat().some((statement) => isThere(statement, version, earlierName)));
}

/** What is known of a name that several things have: whether one of them is supported. */
export function isAnySupported(features) {
  const known = features.map((feature) => isSupported(feature)).filter((answer) => answer !== undefined);
  return known.length === 0 ? undefined : known.includes(true);
}

/** All features of a name below a branch of the data. */
export function named(branch, name) {
  const inside = Object.entries(branch).filter(([key]) => key !== '__compat');
  return [...Object.hasOwn(branch, name) ? [branch[name]] : [], ...inside.flatMap(([, inner]) => named(inner, name))];
}

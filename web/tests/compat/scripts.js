// Which names of the browser a script uses that the oldest browsers do not have: the compiler tells whose they are.
import ts from 'typescript';
import { data, isAnySupported, isSupported } from './data.js';

const OPTIONS = {
  allowJs: true, noEmit: true, target: ts.ScriptTarget.ESNext, module: ts.ModuleKind.ESNext,
  moduleResolution: ts.ModuleResolutionKind.Bundler, lib: ['lib.esnext.d.ts', 'lib.dom.d.ts', 'lib.dom.iterable.d.ts'],
  types: [],
};

const { api, javascript: { builtins } } = data;
const COMMON = [...['Element', 'Event', 'EventTarget', 'HTMLElement', 'Node'].map((name) => api[name]),
  ...['Array', 'Map', 'Object', 'Promise', 'Set', 'String'].map((name) => builtins[name])];
const OWNERS = [...Object.values(api), ...Object.values(builtins)];

const ofName = (name, owners) =>
  isAnySupported(owners.filter((owner) => Object.hasOwn(owner, name)).map((owner) => owner[name]));

const ofGlobal = (name) => isAnySupported([api[name], builtins[name], api.Window?.[name], builtins.globals?.[name]]);

/** `owner` is the interface that declares the member; several share what mixins declare, and any may be meant. */
function ofMember(owner, name) {
  const type = owner.replace(/Constructor$/, '');
  for (const found of [api[type], builtins[type]]) {
    const feature = owner === type ? found?.[name] ?? found?.[`${name}_static`] : found?.[`${name}_static`];
    if (feature?.__compat) return isSupported(feature);
  }
  return ofName(name, OWNERS) ?? ofName(`${name}_static`, OWNERS);
}

/** The interface of a browser's or the language's own member; '' for a global. Undefined for a name of the script. */
function ownerOf(symbol, isLibrary) {
  const declaration = symbol.declarations?.[0];
  if (!declaration) return ''; // globalThis
  if (!isLibrary(declaration.getSourceFile())) return undefined;
  const { parent } = declaration;
  if (ts.isInterfaceDeclaration(parent)) return parent.name.text;
  if (!ts.isTypeLiteralNode(parent)) return '';
  return parent.parent.name?.text ?? ''; // declare var AbortSignal: { any(…): … }
}

const isStatic = ({ declarations }) => declarations !== undefined && ts.isTypeLiteralNode(declarations[0].parent);

/** Each name that is read, with what the compiler knows of it. */
function* namesIn(node, checker) {
  if (ts.isTypeNode(node) || ts.isInterfaceDeclaration(node) || ts.isTypeAliasDeclaration(node)) return;
  if (ts.isPropertyAccessExpression(node)) {
    yield { node: node.name, isMember: true, symbol: checker.getSymbolAtLocation(node.name) };
  } else if (ts.isBindingElement(node) && ts.isObjectBindingPattern(node.parent)) {
    const name = node.propertyName ?? node.name;
    const symbol = checker.getTypeAtLocation(node.parent).getProperty(name.getText());
    if (symbol) yield { node: name, isMember: true, symbol };
  } else if (ts.isIdentifier(node) && !isMemberName(node)) {
    yield { node, isMember: false, symbol: checker.getSymbolAtLocation(node) };
  }
  const inside = [];
  ts.forEachChild(node, (child) => { inside.push(child); });
  for (const child of inside) yield* namesIn(child, checker);
}

const isMemberName = ({ parent }) => ts.isPropertyAccessExpression(parent) || ts.isBindingElement(parent);

function supportOf({ node, isMember, symbol }, isLibrary) {
  const name = node.text;
  if (!symbol) return isMember ? ofName(name, COMMON) : undefined; // of something whose type is not known
  const owner = ownerOf(symbol, isLibrary);
  if (owner === undefined) return undefined;
  if (owner === '') return ofGlobal(name);
  return ofMember(isStatic(symbol) ? `${owner}Constructor` : owner, name);
}

/** "file: name" of each use of what an oldest browser lacks. */
export function newNames(files) {
  const program = ts.createProgram(files, OPTIONS);
  const checker = program.getTypeChecker();
  const isLibrary = (file) => program.isSourceFileDefaultLibrary(file);
  const found = files.flatMap((file) => [...namesIn(program.getSourceFile(file), checker)]
    .filter((use) => use.node.text && supportOf(use, isLibrary) === false)
    .map((use) => `${file.split('/').pop()}: ${use.node.text}`));
  return [...new Set(found)].sort();
}

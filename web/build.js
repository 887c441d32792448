// Makes the delivered files of the client from src/.
//
// usage: node build.js            writes them
//        node build.js --check    fails if the files that are there are others
import { readFileSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { generateDtsBundle } from 'dts-bundle-generator';
import { build } from 'esbuild';

const at = (name) => fileURLToPath(new URL(name, import.meta.url));
const FLOOR = ['chrome69', 'firefox60', 'node18'];
const BANNER = '// Generated from src/ by `npm run build`: change it there.';

async function script(entry, format) {
  const { outputFiles: [file] } = await build({
    entryPoints: [at(`src/${entry}.ts`)], tsconfig: at('tsconfig.json'), bundle: true, write: false, charset: 'utf8',
    target: FLOOR, format, banner: { js: BANNER },
  });
  return file.text;
}

function declarations() {
  const [text] = generateDtsBundle([{ filePath: at('src/index.ts'), output: { noBanner: true, exportReferencedTypes: false } }],
    { preferredConfigPath: at('tsconfig.json') });
  return `${BANNER}\n${text.replace(/ +$/gm, '')}`;
}

const made = {
  'signpad.js': await script('index', 'esm'),
  'signpad-classic.js': await script('classic', 'iife'),
  'signpad.d.ts': declarations(),
};
for (const [name, text] of Object.entries(made)) {
  if (process.argv[2] !== '--check') writeFileSync(at(name), text);
  else if (readFileSync(at(name), 'utf8') !== text) {
    console.error(`${name} is not what src/ makes: run "npm run build"`);
    process.exitCode = 1;
  }
}

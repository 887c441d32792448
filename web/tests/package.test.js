// The npm package as others use it: packed, installed in an empty project, and imported there.
import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { existsSync } from 'node:fs';
import { mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';
import { reply, startMockService } from './mock-service.js';

const run = promisify(execFile);
const at = (name) => fileURLToPath(new URL(name, import.meta.url));
const tool = (name) => at(`../node_modules/.bin/${name}`);

const NODES = ['18', '20', '22']
  .map((version) => [version, at(`node_modules/node-${version}-${process.arch}/bin/node`)])
  .filter(([, executable]) => existsSync(executable));

const PROGRAM = `
import { Model, SignPad } from 'mvsignpad';
import WebSocket from '${new URL('node_modules/ws/wrapper.mjs', import.meta.url)}';
const pad = await SignPad.connect({ port: Number(process.argv[2]), WebSocket });
console.log(await pad.getSize(), Model.Cedar);
pad.close();
`;

const TYPED = `
import { SignPad, type InkPoint } from 'mvsignpad';
export async function sign(): Promise<InkPoint[]> {
  const pad = await SignPad.connect();
  for await (const { points, key } of pad.watch()) if (key === 1) return points;
  return [];
}
`;

let project;
let service;

before(async () => {
  project = await mkdtemp(path.join(tmpdir(), 'signpad-project-'));
  const { stdout } = await run('npm', ['pack', '--silent', '--pack-destination', project], { cwd: at('..') });
  await writeFile(path.join(project, 'package.json'), '{ "type": "module", "private": true }');
  await run('npm', ['install', '--offline', '--no-audit', '--no-fund', stdout.trim()], { cwd: project });
  await writeFile(path.join(project, 'program.js'), PROGRAM);
  await writeFile(path.join(project, 'typed.ts'), TYPED);
  service = await startMockService((request) => reply(request, '7'));
});

after(async () => {
  await service?.stop();
  await rm(project, { recursive: true, force: true });
});

const printed = async (executable, file) =>
  (await run(executable, [file, String(service.port)], { cwd: project })).stdout.trim();

describe('the package', () => {
  for (const [version, executable] of NODES) {
    test(`is imported in Node ${version}`, async () => {
      assert.equal(await printed(executable, 'program.js'), '7 7');
    });
  }

  test('goes through a bundler', async () => {
    const options = ['--bundle', '--format=esm', '--platform=node', '--external:file:*', '--minify', '--outfile=bundle.js'];
    await run(tool('esbuild'), ['program.js', ...options], { cwd: project });
    assert.equal(await printed(process.execPath, 'bundle.js'), '7 7');
  });

  test('is typed, under strict checks', async () => {
    const strict = { noEmit: true, strict: true, exactOptionalPropertyTypes: true, noUncheckedIndexedAccess: true,
      target: 'es2022', lib: ['es2022', 'dom'], types: [] };
    for (const module of ['nodenext', 'preserve']) {
      const settings = { compilerOptions: { ...strict, module }, files: ['typed.ts'] };
      await writeFile(path.join(project, 'tsconfig.json'), JSON.stringify(settings));
      const { stdout } = await run(tool('tsc'), [], { cwd: project }).catch((error) => error);
      assert.equal(stdout, '');
    }
  });

  test('defines the global of the classic script', async () => {
    await writeFile(path.join(project, 'classic.js'), "import 'mvsignpad/classic';\n" +
      'console.log(Object.keys(globalThis.MVSignPad).sort().join());\n');
    assert.equal(await printed(process.execPath, 'classic.js'),
      'COMMANDS,KeyStatus,Model,SignPad,SignPadData,SignPadError');
  });
});

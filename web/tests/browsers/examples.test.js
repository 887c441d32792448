// The examples with the usual frameworks: built as their users build them, and opened in the newest and the oldest browser.
import assert from 'node:assert/strict';
import { cp, mkdtemp, rm, symlink } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { build } from 'vite';
import { serveFolder } from '../page/browser.js';
import { startDesktop, startService, until } from '../page/desktop.js';
import { BROWSERS } from './tab.js';

const at = (name) => fileURLToPath(new URL(name, import.meta.url));
const USUAL_PORT = 8089;

let desktop;
let service;

before(async () => {
  desktop = await startDesktop();
  service = await startService(desktop, { port: USUAL_PORT });
});

after(async () => {
  await service?.stop();
  await desktop?.stop();
});

for (const example of ['react', 'vue']) {
  describe(example, () => {
    let folder;
    let server;

    before(async () => {
      folder = await mkdtemp(path.join(tmpdir(), 'signpad-example-'));
      await cp(at(`../../examples/${example}`), folder, { recursive: true });
      await symlink(at('../node_modules'), path.join(folder, 'node_modules'));
      const alias = { mvsignpad: at('../../signpad.js') };
      await build({ root: folder, logLevel: 'warn', resolve: { alias } });
      server = await serveFolder(path.join(folder, 'dist'));
    });

    after(async () => {
      await server?.stop();
      await rm(folder, { recursive: true, force: true });
    });

    for (const name of Object.keys(BROWSERS).filter((browser) => /^chromium(-72)?$/.test(browser))) {
      test(`signs in ${name}`, async (t) => {
        const tab = await BROWSERS[name]();
        t.after(() => tab.close());
        await tab.open(`http://127.0.0.1:${server.port}/index.html`);
        const status = () => tab.run(() => document.querySelector('[role=status]').textContent);
        const line = () => tab.run(() => (document.querySelector('path') || document.body).getAttribute('d'));
        await tab.run(() => document.querySelector('button').click());
        await until(async () => /^(M\d+ \d+(L\d+ \d+)+)+$/.test(await line()), 'ink in the preview');
        assert.equal(await status(), '');
        await until(status, 'the end of the signing');
        assert.equal(await status(), 'Signed.');
        const picture = await tab.run(async () => {
          const image = document.querySelector('img');
          await image.decode();
          return { width: image.naturalWidth, height: image.naturalHeight, start: image.src.slice(0, 22) };
        });
        assert.deepEqual(picture, { width: 800, height: 480, start: 'data:image/png;base64,' });
        assert.deepEqual(tab.errors, []);
      });
    }

    test('says why it cannot sign', async (t) => {
      await service.stop();
      t.after(async () => { service = await startService(desktop, { port: USUAL_PORT }); });
      const tab = await BROWSERS.chromium();
      t.after(() => tab.close());
      await tab.open(`http://127.0.0.1:${server.port}/index.html`);
      await tab.run(() => document.querySelector('button').click());
      const status = () => tab.run(() => document.querySelector('[role=status]').textContent);
      await until(async () => /^Nothing answers at ws:\/\/localhost:8089/.test(await status()), 'the failure');
    });
  });
}

// Compiled, never run: what the declarations must accept, and what they must refuse.
import { COMMANDS, KeyStatus, Model, SignPad, SignPadData, SignPadError } from 'mvsignpad';
import type { SignPadEvent } from 'mvsignpad';
import WebSocket from 'ws';

async function accepted(): Promise<void> {
  const pad = await SignPad.connect({ port: 8089, WebSocket, timeout: 500, signal: AbortSignal.timeout(900) });
  await pad.open({ model: Model.Alder, width: 800, height: 480 }, { timeout: 20_000 });
  await pad.setPenStyle(true);
  await pad.setPenColor({ r: 0, g: 0, b: 255 });
  for await (const { points, key } of pad.watch({ interval: 20 })) {
    const pressure: number | undefined = points.at(-1)?.pressure;
    if (key === KeyStatus.confirm && pressure !== 0) break;
  }
  const image: SignPadData | null = await pad.getInks();
  const blob: Blob | undefined = image?.blob;
  const connected: boolean | null = await pad.getDeviceInfo(1);
  const decoded = await pad.decode({ type: 6, data: image ?? 'QUJD' });
  const x: number | undefined = decoded?.[0]?.x;
  const settings = await pad.getWPSSettings('ET');
  await pad.updateWPSSettings({ app: 'ET', ...settings, name: 'A' });
  pad.addEventListener('key', (event) => { const status: number = event.detail; void status; });
  const onKey = ({ detail }: SignPadEvent<number>) => { void detail; };
  pad.addEventListener('key', onKey);
  pad.removeEventListener('key', onKey);
  pad.addEventListener('disconnect', ({ detail }) => { if (detail.error.code === 'connection-lost') pad.close(); });
  void [blob, connected, x, COMMANDS[0]?.api];
}

async function refused(pad: SignPad, error: SignPadError): Promise<void> {
  // @ts-expect-error no such model
  await pad.open({ model: 1, width: 800, height: 480 });
  // @ts-expect-error a flag is no number
  await pad.setPenStyle(1);
  // @ts-expect-error no such application
  await pad.getWPSSettings('Writer');
  // @ts-expect-error a missing member
  await pad.setPenColor({ r: 0, g: 0 });
  // @ts-expect-error made by connect() only
  new SignPad();
  // @ts-expect-error no such code
  if (error.code === 'oops') throw error;
  // @ts-expect-error a picture may be missing
  (await pad.encode(3)).dataURL;
}

export { accepted, refused };

// Opening a socket, and finding out why it did not open: browsers tell a page next to nothing about that.
import { SignPadError, refuse } from './errors.js';
import type { Settings, Socket } from './options.js';
import { reasonOf, surroundings } from './surroundings.js';

/**
 * 'granted', 'denied' or 'prompt'; undefined where no such permission exists. Browsers hide why a connection failed:
 * this alone tells a refusal from a closed port.
 */
async function localNetworkPermission(): Promise<PermissionState | undefined> {
  for (const name of ['loopback-network', 'local-network-access'] as unknown as PermissionName[]) {
    const status = await surroundings.navigator?.permissions?.query?.({ name }).catch(() => undefined);
    if (status) return status.state;
  }
  return undefined;
}

const page = () => surroundings.location ?? { protocol: 'file:', hostname: '' };

/** The connection waits while the browser asks the user. It never asks for pages of this computer. */
async function mayBeAsking(): Promise<boolean> {
  const { protocol, hostname } = page();
  const isLocalPage = protocol === 'file:' || /^(localhost|127\..*|\[::1\])$/.test(hostname);
  return !isLocalPage && await localNetworkPermission() === 'prompt';
}

async function unreachable(url: string, cause: unknown): Promise<SignPadError> {
  return await localNetworkPermission() === 'denied'
    ? new SignPadError('permission-denied', `The browser does not let this page reach ${url}: ` +
        'it was refused access to programs on this computer', { cause })
    : new SignPadError('service-not-running', `Nothing answers at ${url}: is the service started?`, { cause });
}

const refusedByBrowser = (url: string, cause: unknown) => page().protocol === 'https:'
  ? new SignPadError('mixed-content', `This browser lets no page from https:// reach ${url}`, { cause })
  : new SignPadError('permission-denied', `The browser does not let this page reach ${url}`, { cause });

function createSocket({ WebSocket }: Settings, url: string): Socket {
  try {
    return new WebSocket(url);
  } catch (cause) {
    const { name } = cause as Error;
    if (name === 'SyntaxError') refuse('host', 'the name or the address of a computer, an IPv6 address in brackets');
    // Firefox throws something that is no Error when the page's own policy does not allow the connection.
    throw name === 'SecurityError' || !(cause instanceof Error) ? refusedByBrowser(url, cause) : cause;
  }
}

/** Resolves with an open socket; a socket that does not open is given up. */
export function openSocket(settings: Settings, url: string, signal?: AbortSignal): Promise<Socket> {
  return new Promise((resolve, reject) => {
    if (signal?.aborted) return reject(reasonOf(signal));
    const { timeout, promptTimeout } = settings;
    const socket = createSocket(settings, url);
    socket.binaryType = 'arraybuffer';
    const settle = (act: () => void) => {
      clearTimeout(timer);
      signal?.removeEventListener('abort', aborted);
      socket.onopen = socket.onclose = null;
      socket.onerror = () => undefined; // in Node an error that nobody listens to ends the program
      act();
    };
    const giveUp = (reason: unknown) => {
      settle(() => reject(reason));
      socket.close();
    };
    const aborted = () => giveUp(reasonOf(signal as AbortSignal));
    const expired = () => giveUp(new SignPadError('timeout', `${url} did not answer in time`));
    let timer = setTimeout(async () => {
      const isAsking = await mayBeAsking();
      if (socket.readyState !== socket.CONNECTING) return;
      timer = setTimeout(expired, isAsking ? promptTimeout : 0);
    }, timeout);
    signal?.addEventListener('abort', aborted);
    const failed = (event: { error?: unknown }) => {
      clearTimeout(timer);
      unreachable(url, event.error).then((error) => settle(() => reject(error)));
    };
    socket.onerror = socket.onclose = failed; // what the page's own policy forbids is never closed
    socket.onopen = () => settle(() => resolve(socket));
  });
}

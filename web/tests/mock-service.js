// A stand-in for the service at the wire: answers as a test scripts it, echoes binary messages in their turn.
import { WebSocketServer } from 'ws';

export const reply = (API, Result) => JSON.stringify({ API, Result });

/**
 * `answer(request, socket)` returns the text to send back (or a promise of it), or undefined to stay silent; `request`
 * is the API name with its query. A client is let in when the promise of `admit()` is kept. `requests` holds all that
 * came, whole; after `settled()` it has all that the clients have sent.
 */
export async function startMockService(answer = () => undefined, { port = 0, admit = async () => undefined } = {}) {
  const verifyClient = (_, decide) => admit().then(() => decide(true));
  const server = new WebSocketServer({ port, host: 'localhost', verifyClient });
  await new Promise((resolve, reject) => server.once('listening', resolve).once('error', reject));
  const requests = [];
  server.on('connection', (socket) => {
    let turn = Promise.resolve(); // one message after the other, each to completion
    socket.on('message', (data, isBinary) => {
      if (!isBinary) requests.push(String(data));
      turn = turn.then(async () => {
        const text = isBinary ? data : await answer(String(data).replace(/^.*\/MVSignSDK\//, ''), socket);
        if (text !== undefined) socket.send(text);
      });
    });
  });
  return {
    port: server.address().port,
    address: server.address().family === 'IPv6' ? `[${server.address().address}]` : server.address().address,
    requests,
    sendToAll: (text) => server.clients.forEach((socket) => socket.send(text)),
    settled: () => Promise.all(Array.from(server.clients, (socket) => new Promise((resolve) => {
      socket.once('pong', resolve); // comes behind what the client has sent
      socket.ping();
    }))),
    turnClientsAway: () => server.clients.forEach((socket) => socket.close(1008)),
    dropClients: () => server.clients.forEach((socket) => socket.terminate()),
    stop: () => new Promise((resolve) => {
      server.clients.forEach((socket) => socket.terminate());
      server.close(resolve);
    }),
  };
}

// The HTTPS port: HTTP/1.1 and HTTP/2, as negotiated with the client.
import { createSecureServer } from 'node:http2';

import { closeConnection, deliver, hasClientLeft } from './delivery.mjs';
import { applyFault } from './faults.mjs';
import { page, pages } from './pages.mjs';

const maximumBodyBytes = 10 * 1024 * 1024;
const keepAliveMilliseconds = 75000;

// The body, or null when it is larger than the web server in front of the platform accepts.
async function readBody(request) {
  const pieces = [];
  let size = 0;
  for await (const piece of request) {
    size += piece.length;
    if (size <= maximumBodyBytes) pieces.push(piece);
  }
  return size <= maximumBodyBytes ? Buffer.concat(pieces) : null;
}

function hostName(request) {
  const authority = request.headers[':authority'] ?? request.headers.host ?? '';
  return authority.replace(/:\d+$/, '');
}

// `routes` is a list of `{ matches(path), answer(request) }`; the first match gives the response.
// See frame.mjs for requests and responses.
export function createStoreServer({ certificates, routes, faults, requestLog }) {
  async function answer(request, body) {
    if (body === null) return page(413, pages.tooLarge);
    const [path] = request.url.split('?');
    const route = routes.find(({ matches }) => matches(path));
    if (!route) return page(404, pages.notFound);
    const { method, url, headers } = request;
    return route.answer({ method, url, headers, body, hostName: hostName(request) });
  }

  async function serve(request, response) {
    const connection = request.socket.remotePort;
    const body = await readBody(request);
    const answered = await answer(request, body);
    const fault = faults.take(answered.operation);
    const sent = applyFault(answered, fault);
    requestLog.add(request, body ?? Buffer.alloc(0), {
      connection,
      operation: answered.operation,
      status: sent.status,
    });
    await deliver(request, response, sent, fault);
  }

  const server = createSecureServer({
    key: certificates.key,
    cert: certificates.cert,
    allowHTTP1: true,
  });
  server.keepAliveTimeout = keepAliveMilliseconds;
  server.on('request', (request, response) => {
    serve(request, response).catch((error) => {
      if (!hasClientLeft(error)) console.error(error);
      closeConnection(request);
    });
  });
  return server;
}

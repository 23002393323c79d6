// The HTTPS port: HTTP/1.1 and HTTP/2, whichever the client agrees on.
import { createSecureServer } from 'node:http2';

import { closeConnection, deliver, hasClientLeft } from './delivery.mjs';
import { applyFault } from './faults.mjs';
import { pages } from './pages.mjs';
import { pageHeaders } from './responseHeaders.mjs';

const maximumBodyBytes = 10 * 1024 * 1024;
const keepAliveMilliseconds = 75000;

function page(status, body) {
  return { status, headers: pageHeaders(), body, operation: null };
}

// The body, or null when it is larger than the web server before the platform would take.
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

// `routes` maps a path to its handler `(request) => answer` (see frame.mjs for both).
export function createStoreServer({ certificates, routes, faults, requestLog }) {
  async function answer(request, body) {
    if (body === null) return page(413, pages.tooLarge);
    const handler = routes.get(request.url.split('?')[0]);
    if (!handler) return page(404, pages.notFound);
    const { method, url, headers } = request;
    return handler({ method, url, headers, body, hostName: hostName(request) });
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

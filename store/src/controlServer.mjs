// The control port: plain HTTP for tests, to add faults, change settings and read requests.
import { createServer } from 'node:http';

import { checkFault } from './faults.mjs';
import { checkSettings } from './settings.mjs';

class BadRequest extends Error {}

async function readJson(request) {
  const pieces = [];
  for await (const piece of request) pieces.push(piece);
  try {
    return JSON.parse(Buffer.concat(pieces).toString('utf8'));
  } catch {
    throw new BadRequest('the body is not JSON');
  }
}

function checked(check, value) {
  try {
    return check(value);
  } catch (error) {
    throw new BadRequest(error.message);
  }
}

function handlers({ settings, faults, requestLog }) {
  return {
    'GET /settings': () => settings,
    'PATCH /settings': async (request) =>
      Object.assign(settings, checked(checkSettings, await readJson(request))),
    'GET /faults': () => faults.list(),
    'POST /faults': async (request) => {
      faults.add(checked(checkFault, await readJson(request)));
      return faults.list();
    },
    'DELETE /faults': (_request, search) => {
      faults.clear(search.get('operation'));
      return faults.list();
    },
    'GET /requests': () => requestLog.list(),
    'DELETE /requests': () => {
      requestLog.clear();
      return [];
    },
  };
}

function reply(response, status, value) {
  response.writeHead(status, { 'Content-Type': 'application/json' });
  response.end(`${JSON.stringify(value)}\n`);
}

export function createControlServer(service) {
  const known = handlers(service);

  async function serve(request, response) {
    const { pathname, searchParams } = new URL(request.url, 'http://localhost');
    const handler = known[`${request.method} ${pathname}`];
    if (!handler) {
      return reply(response, 404, { error: `use one of: ${Object.keys(known).join(', ')}` });
    }
    return reply(response, 200, await handler(request, searchParams));
  }

  return createServer((request, response) => {
    serve(request, response).catch((error) => {
      const status = error instanceof BadRequest ? 400 : 500;
      if (status === 500) console.error(error);
      reply(response, status, { error: error.message });
    });
  });
}

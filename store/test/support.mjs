// Shared by the tests: a service on free ports with a temporary state folder, and clients that
// trust only its CA certificate.
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import http2 from 'node:http2';
import https from 'node:https';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { gunzipSync } from 'node:zlib';

import { startService } from '../src/service.mjs';
import { defaultSettings } from '../src/settings.mjs';

export const discoveryQuery =
  'query availableBookStores {\navailableBookStores {\nurl\napiUrl\nstoreName\nlanguage\n' +
  'langCode\nstoreCode\nstatus\nintegrationToken\nproviderID\ncurrency\n}\n}';

export const discoveryBody = `${JSON.stringify({ query: discoveryQuery, variables: null })}\n`;

// A low cost: passwords of tests need no protection.
const quick = { passwordCost: 1024 };

export function temporaryFolder() {
  const path = mkdtempSync(join(tmpdir(), 'local-store-'));
  return { path, remove: () => rmSync(path, { recursive: true, force: true }) };
}

function collect(stream, done) {
  const pieces = [];
  stream.on('data', (piece) => pieces.push(piece));
  stream.on('end', () => done(Buffer.concat(pieces)));
}

function decoded(answer) {
  const bytes = answer.headers['content-encoding'] === 'gzip' ? gunzipSync(answer.raw) : answer.raw;
  const text = bytes.toString('utf8');
  return { ...answer, text, json: () => JSON.parse(text) };
}

class TestService {
  constructor(service, state) {
    this.service = service;
    this.state = state;
    this.ca = readFileSync(service.authorityPath);
  }

  // An agent for requests that may share a connection.
  #keptConnections = new https.Agent({ keepAlive: true });

  get agent() {
    return this.#keptConnections;
  }

  async #close() {
    this.#keptConnections.destroy();
    await this.service.close();
  }

  async stop() {
    await this.#close();
    this.state.remove();
  }

  // Ends the service and starts it again with the same state, as after a restart of the machine.
  async restart() {
    await this.#close();
    this.service = await startService({ stateFolder: this.state.path, ...quick });
  }

  // One request over HTTP/1.1, on a new connection unless there is an agent. Rejects when the
  // transfer fails; the error then has `received`, the number of body bytes that had arrived.
  http1({
    method = 'POST',
    path = '/graphql',
    headers = {},
    body = discoveryBody,
    agent = false,
  } = {}) {
    return new Promise((resolve, reject) => {
      const request = https.request(
        {
          host: '127.0.0.1',
          port: this.service.port,
          servername: 'api.bookstore.example',
          ca: this.ca,
          agent,
          method,
          path,
          headers: { 'Content-Type': 'application/json', ...headers },
        },
        (response) => {
          let received = 0;
          response.on('data', (piece) => (received += piece.length));
          response.on('error', (error) => reject(Object.assign(error, { received })));
          const { statusCode: status, headers: fields, rawHeaders } = response;
          const head = { status, headers: fields, rawHeaders };
          collect(response, (raw) => resolve(decoded({ ...head, raw })));
        },
      );
      request.on('error', reject);
      request.end(method === 'POST' ? body : undefined);
    });
  }

  // Like the above, over HTTP/2.
  http2({ headers = {}, body = discoveryBody } = {}) {
    return new Promise((resolve, reject) => {
      const session = http2.connect(this.service.url, {
        ca: this.ca,
        servername: 'api.bookstore.example',
      });
      const fail = (error) => {
        session.destroy();
        reject(error);
      };
      session.on('error', fail);
      const fields = { ':method': 'POST', ':path': '/graphql', 'content-type': 'application/json' };
      const stream = session.request({ ...fields, ...headers }, { endStream: false });
      const answer = {};
      stream.on('response', (headers) =>
        Object.assign(answer, { headers, status: headers[':status'] }),
      );
      stream.on('error', fail);
      collect(stream, (raw) => Object.assign(answer, { raw }));
      stream.on('close', () => {
        session.close();
        const isWhole = stream.rstCode === http2.constants.NGHTTP2_NO_ERROR && answer.headers;
        if (isWhole) resolve(decoded(answer));
        else reject(new Error('the stream was cut'));
      });
      stream.end(body);
    });
  }

  query(query, headers = {}) {
    return this.http1({ body: JSON.stringify({ query }), headers });
  }

  // Sends a request to the control port; resolves with the status and the JSON of the response.
  async control(method, path, value) {
    const response = await fetch(`${this.service.controlUrl}${path}`, {
      method,
      body: value === undefined ? undefined : JSON.stringify(value),
    });
    return { status: response.status, json: await response.json() };
  }

  useLine(line) {
    return this.control('PATCH', '/settings', { line });
  }

  async fault(fault) {
    const answer = await this.control('POST', '/faults', fault);
    if (answer.status !== 200) throw new Error(answer.json.error);
  }

  // Resets the service, for tests that share it.
  async reset() {
    await this.control('PATCH', '/settings', defaultSettings);
    await this.control('DELETE', '/faults');
    await this.control('DELETE', '/requests');
  }
}

export async function startTestService(options = {}) {
  const state = temporaryFolder();
  try {
    const service = await startService({ stateFolder: state.path, ...quick, ...options });
    return new TestService(service, state);
  } catch (error) {
    state.remove();
    throw error;
  }
}

import { readFileSync, writeFileSync } from 'node:fs';
import { createServer, connect } from 'node:net';
import { createServer as createHttpsServer } from 'node:https';
import { join } from 'node:path';
import { setTimeout as delay } from 'node:timers/promises';

import { start } from './processes.mjs';

const kLoopback = '127.0.0.1';
const kStartSeconds = 10;

const answersFolder = new URL('./answers/', import.meta.url).pathname;

export const answerOf = (operation) =>
  readFileSync(join(answersFolder, `${operation}.json`), 'utf8');

// Discovery uses the endpoint itself; the stores of the other operations have paths on the same
// host.
export const pathOf = (operation) =>
  operation === 'discovery' ? '/graphql' : `/${operation}/graphql`;

async function freePort() {
  const server = createServer();
  await new Promise((resolve) => server.listen(0, kLoopback, resolve));
  const { port } = server.address();
  await new Promise((resolve) => server.close(resolve));
  return port;
}

const quoted = (text) => `'${text.replace(/[\\']/g, '\\$&')}'`;

// The response as nginx sends it. A text in it counts the requests of the connection, so that each
// response differs from the one before, and both programs get the same responses.
// biome-ignore lint/suspicious/noTemplateCurlyInString: the variable is nginx's
const changing = (answer) => answer.replace('0000', '${connection_requests}');

function location(operation, answer) {
  return `
      location = ${pathOf(operation)} {
        default_type application/json;
        add_header Pragma no-cache;
        add_header Cache-Control 'max-age=0, must-revalidate, no-cache, no-store';
        add_header X-Magento-Cache-Id ${'0123456789abcdef'.repeat(4)};
        return 200 ${quoted(answer)};
      }`;
}

function nginxConfiguration({ folder, operations, certificates, ports }) {
  const server = (port, keepAlive, change = (answer) => answer) => `
    server {
      listen ${kLoopback}:${port} ssl;
      ${keepAlive}${operations.map((one) => location(one, change(answerOf(one)))).join('')}
    }`;
  return `
  ${process.getuid() === 0 ? 'user root;' : ''}
  daemon off;
  worker_processes 1;
  pid ${join(folder, 'nginx.pid')};
  error_log stderr crit;
  events {}
  http {
    access_log off;
    client_body_temp_path ${join(folder, 'body')};
    proxy_temp_path ${join(folder, 'proxy')};
    fastcgi_temp_path ${join(folder, 'fastcgi')};
    uwsgi_temp_path ${join(folder, 'uwsgi')};
    scgi_temp_path ${join(folder, 'scgi')};
    tcp_nodelay on;
    ssl_certificate ${certificates.certificate};
    ssl_certificate_key ${certificates.key};
    ${server(ports.kept, 'keepalive_requests 1000000;')}
    ${server(ports.changing, 'keepalive_requests 1000000;', changing)}
    ${server(ports.new, 'keepalive_requests 1;')}
  }
  `;
}

function answers(port) {
  return new Promise((resolve) => {
    const socket = connect(port, kLoopback);
    socket.once('connect', () => resolve(true)).once('error', () => resolve(false));
    socket.once('connect', () => socket.destroy());
  });
}

// Starts nginx with canned responses on free loopback ports; all its files are in `folder`.
// `ports.kept` keeps connections open; `ports.changing` does so, too, but never sends the same
// response twice; `ports.new` closes each connection after one response.
export async function startNginx({ folder, operations, certificates, processor }) {
  const ports = { kept: await freePort(), changing: await freePort(), new: await freePort() };
  const path = join(folder, 'nginx.conf');
  writeFileSync(path, nginxConfiguration({ folder, operations, certificates, ports }));
  const nginx = start('nginx', ['-p', folder, '-e', 'stderr', '-c', path], { processor });
  const deadline = Date.now() + kStartSeconds * 1000;
  while (!(await answers(ports.new))) {
    if (nginx.hasEnded() || Date.now() > deadline) {
      nginx.kill();
      throw new Error('nginx did not start; see its messages above');
    }
    await delay(20);
  }
  return { ...nginx, ports };
}

// Lets `ask(port)` send one request, and returns the request as it arrived: method, target, headers
// in their order and letter case, body.
export async function recordRequest(operation, certificates, ask) {
  const requests = [];
  const server = createHttpsServer(
    { cert: readFileSync(certificates.certificate), key: readFileSync(certificates.key) },
    async (request, response) => {
      const body = [];
      for await (const piece of request) body.push(piece);
      const { method, url, httpVersion, rawHeaders } = request;
      requests.push({ method, url, httpVersion, rawHeaders, body: Buffer.concat(body).toString() });
      response.setHeader('Content-Type', 'application/json');
      response.setHeader('Connection', 'close');
      response.end(answerOf(operation));
    },
  );
  await new Promise((resolve) => server.listen(0, kLoopback, resolve));
  try {
    await ask(server.address().port);
  } finally {
    server.closeAllConnections?.();
    await new Promise((resolve) => server.close(resolve));
  }
  return requests[0];
}

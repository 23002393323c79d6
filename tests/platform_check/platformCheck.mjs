// What the tests of graphql-platform-check share: servers, a root folder for an implementation, and
// the program itself. Each test file is a process of its own.
import { execFile } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import https from 'node:https';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';

const execute = promisify(execFile);
const storeScript = fileURLToPath(new URL('../../scripts/store', import.meta.url));
const programMilliseconds = 240000;

// The program, and the folders of an implementation's two libraries.
export const program = process.env.PLATFORM_CHECK;
export const implementations = {
  host: { folders: process.env.HOST_FOLDERS, rootVariable: 'ORVANE_ROOT' },
  example: { folders: process.env.EXAMPLE_FOLDERS, rootVariable: 'FIRMWARE_ROOT' },
  fake: { folders: process.env.FAKE_FOLDERS, rootVariable: 'UNUSED_ROOT' },
};

export class Folder {
  path = mkdtempSync(join(tmpdir(), 'platform-check-'));

  remove() {
    rmSync(this.path, { recursive: true, force: true });
  }
}

async function openssl(...options) {
  await execute('openssl', options);
}

// A certificate in `folder`, for the subject's alternative name `name`: self-signed, or signed by the
// authority of the store service.
async function makeCertificate(folder, name, authorityFolder) {
  const files = { cert: join(folder, 'server.pem'), key: join(folder, 'server.key') };
  const authority = authorityFolder
    ? ['-CA', join(authorityFolder, 'ca.pem'), '-CAkey', join(authorityFolder, 'ca.key')]
    : [];
  await openssl(
    'req',
    '-x509',
    '-newkey',
    'ec',
    '-pkeyopt',
    'ec_paramgen_curve:prime256v1',
    '-noenc',
    '-days',
    '2',
    '-subj',
    '/CN=test',
    '-addext',
    `subjectAltName=${name}`,
    '-addext',
    'basicConstraints=critical,CA:FALSE',
    ...authority,
    '-out',
    files.cert,
    '-keyout',
    files.key,
  );
  return { cert: readFileSync(files.cert), key: readFileSync(files.key) };
}

// A server on 127.0.0.1 that answers everything with an empty object, over HTTP/1.1.
async function startServer(credentials) {
  const server = https.createServer(credentials, (_request, response) => {
    response.setHeader('X-MaGeNto-Cache-ID', 'abc');
    response.end('{}');
  });
  server.on('tlsClientError', () => {});
  await new Promise((resolve) => {
    server.listen(0, '127.0.0.1', resolve);
  });
  return server;
}

const urlOf = (server) => `https://127.0.0.1:${server.address().port}/graphql`;

// The store service, two servers that must be refused, and one that must not.
export class Servers {
  #folder = new Folder();
  #servers = [];

  async start() {
    const state = join(this.#folder.path, 'store');
    const { stdout } = await execute(storeScript, ['start', '--state', state]);
    const fields = Object.fromEntries(
      stdout
        .trimEnd()
        .split('\n')
        .map((line) => line.split('=')),
    );
    const unknown = await startServer(await makeCertificate(this.#folder.path, 'IP:127.0.0.1'));
    const wrongName = await startServer(
      await makeCertificate(this.#folder.path, 'DNS:other.bookstore.example', state),
    );
    const http1 = await startServer(
      await makeCertificate(this.#folder.path, 'IP:127.0.0.1', state),
    );
    this.#servers = [unknown, wrongName, http1];
    this.http1Url = urlOf(http1);
    this.authorityFile = fields.ca;
    this.options = [
      '--url',
      fields.url,
      '--control',
      fields.control,
      '--untrusted-url',
      urlOf(unknown),
      '--wrong-name-url',
      urlOf(wrongName),
    ];
  }

  async stop() {
    for (const server of this.#servers) {
      server.closeAllConnections?.();
      server.close();
    }
    await execute(storeScript, ['stop', '--state', join(this.#folder.path, 'store')]);
    this.#folder.remove();
  }
}

// The results in the output: [{ok, name, skip, reason}].
function parseTap(output) {
  const results = [];
  for (const line of output.split('\n')) {
    const found = /^(not )?ok \d+ - (\S+)(?: # SKIP (.*))?$/.exec(line);
    if (found) results.push({ ok: !found[1], name: found[2], skip: found[3] ?? null, reason: '' });
    const reason = /^ {2}reason: (.*)$/.exec(line);
    if (reason) results.at(-1).reason = JSON.parse(reason[1]);
  }
  return results;
}

// Runs the program over an implementation. Resolves to {status, output, errors, results}.
export async function check(
  implementation,
  options,
  { authorityFile = '', environment = {}, executable = program } = {},
) {
  const { folders, rootVariable } = implementations[implementation];
  const root = new Folder();
  const configFolder = join(root.path, 'mnt/ext1/system/config');
  mkdirSync(configFolder, { recursive: true });
  if (implementation === 'example') {
    writeFileSync(join(configFolder, 'device.cfg'), `caFile=${authorityFile}\n`);
  }
  const inherited = Object.entries(process.env).filter(([name]) => !name.startsWith('ORVANE_'));
  const env = {
    ...Object.fromEntries(inherited),
    LD_LIBRARY_PATH: folders,
    [rootVariable]: root.path,
    ORVANE_CA_FILE: authorityFile,
    ...environment,
  };
  try {
    const running = execute(executable, ['--root', root.path, ...options], {
      env,
      timeout: programMilliseconds,
      killSignal: 'SIGKILL',
      maxBuffer: 1 << 26,
    });
    const { error, stdout, stderr } = await running.then(
      (ended) => ({ error: { code: 0 }, ...ended }),
      (failed) => ({ error: failed, stdout: failed.stdout, stderr: failed.stderr }),
    );
    return {
      status: error.code,
      signal: error.signal,
      output: stdout,
      errors: stderr,
      results: parseTap(stdout),
    };
  } finally {
    root.remove();
  }
}

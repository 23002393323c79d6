import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

import { run } from './processes.mjs';

const kSystemAuthorities = '/etc/ssl/certs/ca-certificates.crt';

async function makeKeyPair(folder, name, parameters) {
  await run('openssl', [
    'req',
    '-x509',
    '-newkey',
    'ec',
    '-pkeyopt',
    'ec_paramgen_curve:P-256',
    '-nodes',
    '-days',
    '2',
    '-keyout',
    join(folder, `${name}.key`),
    '-out',
    join(folder, `${name}.pem`),
    ...parameters,
  ]);
}

// Creates a CA certificate and a server certificate for `host` in `folder`, for this run only.
// Returns the paths; `own` and `system` are the files of CA certificates that a client may trust.
export async function makeCertificates(folder, host) {
  const path = (name) => join(folder, name);
  await makeKeyPair(folder, 'authority', ['-subj', '/CN=Benchmark authority']);
  await makeKeyPair(folder, 'server', [
    '-subj',
    `/CN=${host}`,
    '-addext',
    `subjectAltName=DNS:${host}`,
    '-addext',
    'basicConstraints=critical,CA:FALSE',
    '-CA',
    path('authority.pem'),
    '-CAkey',
    path('authority.key'),
  ]);
  if (!existsSync(kSystemAuthorities)) {
    throw new Error(`${kSystemAuthorities} is missing; run "apt-get install ca-certificates"`);
  }
  const both = [kSystemAuthorities, path('authority.pem')].map((file) => readFileSync(file));
  writeFileSync(path('system.pem'), Buffer.concat(both));
  return {
    certificate: path('server.pem'),
    key: path('server.key'),
    own: path('authority.pem'),
    system: path('system.pem'),
  };
}

import assert from 'node:assert/strict';
import { X509Certificate } from 'node:crypto';
import { readFileSync, rmSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { connect } from 'node:tls';
import { after, before, test } from 'node:test';

import { prepareCertificates } from '../src/certificates.mjs';
import { startTestService, temporaryFolder } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());

// Resolves with the negotiated protocol, rejects when the certificate is refused.
function handshake(servername, ALPNProtocols) {
  return new Promise((resolve, reject) => {
    const options = { host: '127.0.0.1', port: store.service.port, ca: store.ca };
    const socket = connect({ ...options, servername, ALPNProtocols }, () => {
      resolve(socket.alpnProtocol);
      socket.destroy();
    });
    socket.on('error', reject);
  });
}

test('the certificate is valid for every name of the store and for loopback', async () => {
  for (const name of ['bookstore.example', 'de.bookstore.example', 'localhost']) {
    await handshake(name, ['http/1.1']);
  }
  const certificate = new X509Certificate(readFileSync(join(store.state.path, 'server.pem')));
  assert.ok(certificate.checkHost('api.bookstore.example'));
  assert.ok(certificate.checkIP('127.0.0.1'));
  assert.ok(certificate.checkIP('::1'));
});

test('the certificate is not valid for other names', async () => {
  await assert.rejects(handshake('bookstore.test', ['http/1.1']), {
    code: 'ERR_TLS_CERT_ALTNAME_INVALID',
  });
});

test('both HTTP versions are offered on the one port', async () => {
  assert.equal(await handshake('localhost', ['h2', 'http/1.1']), 'h2');
  assert.equal(await handshake('localhost', ['http/1.1']), 'http/1.1');
});

test('keys are readable by their owner only', () => {
  for (const name of ['ca.key', 'server.key']) {
    assert.equal(statSync(join(store.state.path, name)).mode & 0o777, 0o600, name);
  }
});

test('both certificates are kept, and only a lost server certificate is created again', (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const first = prepareCertificates(folder.path);
  const authority = readFileSync(first.authorityPath, 'utf8');
  assert.deepEqual(prepareCertificates(folder.path).cert, first.cert);

  rmSync(join(folder.path, 'server.key'));
  const second = prepareCertificates(folder.path);
  assert.notDeepEqual(second.cert, first.cert);
  assert.equal(readFileSync(second.authorityPath, 'utf8'), authority);
});

test('the server certificate is renewed in the week before it expires', (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const day = 24 * 3600 * 1000;
  const first = prepareCertificates(folder.path);
  const authority = readFileSync(first.authorityPath, 'utf8');
  const expires = Date.parse(new X509Certificate(first.cert).validTo);
  assert.deepEqual(prepareCertificates(folder.path, expires - 8 * day).cert, first.cert);
  assert.notDeepEqual(prepareCertificates(folder.path, expires - 6 * day).cert, first.cert);
  assert.equal(readFileSync(first.authorityPath, 'utf8'), authority);
});

test('a new CA certificate signs a new server certificate', (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const first = prepareCertificates(folder.path);
  rmSync(join(folder.path, 'ca.key'));
  const second = prepareCertificates(folder.path);
  assert.notDeepEqual(second.cert, first.cert);
  const authority = new X509Certificate(readFileSync(second.authorityPath));
  assert.ok(new X509Certificate(second.cert).verify(authority.publicKey));
});

test('the error names a missing openssl', (t) => {
  const folder = temporaryFolder();
  const path = process.env.PATH;
  t.after(() => {
    process.env.PATH = path;
    folder.remove();
  });
  process.env.PATH = folder.path;
  assert.throws(() => prepareCertificates(folder.path), /openssl is missing/);
});

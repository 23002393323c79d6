// The service's own CA certificate, and the server certificate that it signs. Both are created at
// the first start and kept in the state folder, so that clients need to trust the CA certificate
// only once.
import { execFileSync } from 'node:child_process';
import { X509Certificate } from 'node:crypto';
import { existsSync, readFileSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

const dnsNames = ['bookstore.example', '*.bookstore.example', 'api.bookstore.example', 'localhost'];
const addresses = ['127.0.0.1', '::1'];
const authorityDays = 3650;
const serverDays = 397;
const renewBeforeMilliseconds = 7 * 24 * 3600 * 1000;

const subjectAltName = [
  ...dnsNames.map((name) => `DNS:${name}`),
  ...addresses.map((address) => `IP:${address}`),
].join(',');

// The CA certificate is valid for these names only.
const nameConstraints = [
  'permitted;DNS:bookstore.example',
  'permitted;DNS:localhost',
  'permitted;IP:127.0.0.1/255.255.255.255',
  'permitted;IP:::1/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff',
].join(',');

function openssl(...parameters) {
  try {
    execFileSync('openssl', parameters, { stdio: ['ignore', 'pipe', 'pipe'] });
  } catch (error) {
    if (error.code === 'ENOENT') {
      throw new Error('openssl is missing; run "apt-get install openssl"');
    }
    throw new Error(`openssl ${parameters[0]} failed: ${error.stderr}`);
  }
}

const newKey = ['-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:P-256', '-nodes'];

// Key and certificate get their final names only when both are complete.
function makePair(key, certificate, make) {
  const newKeyPath = `${key}.new`;
  const newCertificatePath = `${certificate}.new`;
  make(newKeyPath, newCertificatePath);
  renameSync(newKeyPath, key);
  renameSync(newCertificatePath, certificate);
}

function makeAuthority(files) {
  makePair(files.authorityKey, files.authority, (key, certificate) =>
    openssl(
      'req',
      '-x509',
      ...newKey,
      '-keyout',
      key,
      '-out',
      certificate,
      '-days',
      String(authorityDays),
      '-subj',
      '/O=Local book store/CN=Local book store authority',
      '-addext',
      'basicConstraints=critical,CA:TRUE,pathlen:0',
      '-addext',
      'keyUsage=critical,keyCertSign,cRLSign',
      '-addext',
      `nameConstraints=critical,${nameConstraints}`,
    ),
  );
}

function makeServerCertificate(files) {
  const request = `${files.server}.csr`;
  const extensions = `${files.server}.ext`;
  writeFileSync(
    extensions,
    `subjectAltName=${subjectAltName}\nbasicConstraints=critical,CA:FALSE\n` +
      'keyUsage=critical,digitalSignature\nextendedKeyUsage=serverAuth\n' +
      'authorityKeyIdentifier=keyid\n',
  );
  makePair(files.serverKey, files.server, (key, certificate) => {
    openssl(
      'req',
      '-new',
      ...newKey,
      '-keyout',
      key,
      '-out',
      request,
      '-subj',
      '/CN=bookstore.example',
    );
    openssl(
      'x509',
      '-req',
      '-in',
      request,
      '-out',
      certificate,
      '-days',
      String(serverDays),
      '-CA',
      files.authority,
      '-CAkey',
      files.authorityKey,
      '-extfile',
      extensions,
    );
  });
  rmSync(request);
  rmSync(extensions);
}

function isUsable(certificatePath, keyPath, now) {
  if (!existsSync(certificatePath) || !existsSync(keyPath)) return false;
  const { validTo } = new X509Certificate(readFileSync(certificatePath));
  return Date.parse(validTo) - now > renewBeforeMilliseconds;
}

function isSignedBy(certificatePath, authorityPath) {
  const authority = new X509Certificate(readFileSync(authorityPath));
  return new X509Certificate(readFileSync(certificatePath)).verify(authority.publicKey);
}

// Creates the certificates that are missing or about to expire. Returns the key and certificate
// chain as PEM texts for the server, and `authorityPath`, the CA certificate that clients trust.
export function prepareCertificates(stateFolder, now = Date.now()) {
  const files = {
    authorityKey: join(stateFolder, 'ca.key'),
    authority: join(stateFolder, 'ca.pem'),
    serverKey: join(stateFolder, 'server.key'),
    server: join(stateFolder, 'server.pem'),
  };
  if (!isUsable(files.authority, files.authorityKey, now)) makeAuthority(files);
  const kept =
    isUsable(files.server, files.serverKey, now) && isSignedBy(files.server, files.authority);
  if (!kept) makeServerCertificate(files);
  return {
    key: readFileSync(files.serverKey),
    cert: readFileSync(files.server),
    authorityPath: files.authority,
  };
}

// Files of the state folder. Each is replaced whole, and only its owner can read it.
import { randomBytes } from 'node:crypto';
import {
  closeSync,
  existsSync,
  fsyncSync,
  openSync,
  readFileSync,
  renameSync,
  writeFileSync,
} from 'node:fs';
import { join } from 'node:path';

// Replaces a whole file: readers see the old text or the new one, even after a power failure.
export function replaceFile(path, text) {
  const file = openSync(`${path}.new`, 'w', 0o600);
  try {
    writeFileSync(file, text);
    fsyncSync(file);
  } finally {
    closeSync(file);
  }
  renameSync(`${path}.new`, path);
}

function loadSecret(path, characters) {
  if (!existsSync(path)) replaceFile(path, `${randomBytes(characters / 2).toString('hex')}\n`);
  return readFileSync(path, 'utf8').trim();
}

// The salt of the cache ids: 32 characters, generated at the first start. Deleting the file changes
// every id, like a new deployment of the real platform.
export function loadCacheSalt(stateFolder) {
  return loadSecret(join(stateFolder, 'cache-salt'), 32);
}

// The key that signs access tokens, generated at the first start. Deleting the file makes all
// earlier tokens unreadable.
export function loadTokenKey(stateFolder) {
  return loadSecret(join(stateFolder, 'token-key'), 64);
}

// The fields as `name=value` lines, for shell scripts and tests.
export function asLines(fields) {
  return Object.entries(fields)
    .map(([name, value]) => `${name}=${value}\n`)
    .join('');
}

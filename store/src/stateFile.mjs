// Files of the state folder: each is replaced whole and is readable by its owner only.
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

// Replaces a file whole: readers, also after a loss of power, see the old text or the new one.
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

// The salt of the cache ids, 32 characters, made at the first start. Deleting the file is what a
// new deployment does on the real platform: every id changes.
export function loadCacheSalt(stateFolder) {
  return loadSecret(join(stateFolder, 'cache-salt'), 32);
}

// The key that signs access tokens, made at the first start. Without the file no token that was
// given out before can be read.
export function loadTokenKey(stateFolder) {
  return loadSecret(join(stateFolder, 'token-key'), 64);
}

// The fields as `name=value` lines, for shell scripts and tests.
export function asLines(fields) {
  return Object.entries(fields)
    .map(([name, value]) => `${name}=${value}\n`)
    .join('');
}

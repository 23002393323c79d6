import { randomBytes } from 'node:crypto';
import { existsSync, readFileSync, renameSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';

// Replaces a file whole: readers see the old text or the new one.
export function replaceFile(path, text) {
  writeFileSync(`${path}.new`, text, { mode: 0o600 });
  renameSync(`${path}.new`, path);
}

// The salt of the cache ids, 32 characters, made at the first start. Deleting the file is what a
// new deployment does on the real platform: every id changes.
export function loadCacheSalt(stateFolder) {
  const path = join(stateFolder, 'cache-salt');
  if (!existsSync(path)) replaceFile(path, `${randomBytes(16).toString('hex')}\n`);
  return readFileSync(path, 'utf8').trim();
}

// The fields as `name=value` lines, for shell scripts and tests.
export function asLines(fields) {
  return Object.entries(fields)
    .map(([name, value]) => `${name}=${value}\n`)
    .join('');
}

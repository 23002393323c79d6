import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { test } from 'node:test';

import { cacheId } from '../src/cacheId.mjs';
import { loadCacheSalt } from '../src/stateFile.mjs';
import { temporaryFolder } from './support.mjs';

const store = { storeCode: 'de_de', currency: 'EUR' };
const digest = (text) => createHash('sha256').update(text).digest('hex');

test('is the digest of the upper-case factors in the order of their names, and the salt', () => {
  const id = cacheId({ store, caller: { kind: 'guest' }, salt: 'salt' });
  assert.equal(id, digest('EUR|0|0|0|DE_DE|salt'));
});

test('differs for a customer in group and sign-in', () => {
  const id = cacheId({ store, caller: { kind: 'customer' }, salt: 'salt' });
  assert.equal(id, digest('EUR|1|0|1|DE_DE|salt'));
});

test('the salt has 32 characters and is generated once', (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const salt = loadCacheSalt(folder.path);
  assert.equal(salt.length, 32);
  assert.equal(loadCacheSalt(folder.path), salt);
});

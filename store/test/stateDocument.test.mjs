import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { StateDocument } from '../src/stateDocument.mjs';
import { temporaryFolder } from './support.mjs';

function pathIn(t) {
  const folder = temporaryFolder();
  t.after(folder.remove);
  return join(folder.path, 'state.json');
}

test('what was changed is there again in the next document', (t) => {
  const path = pathIn(t);
  new StateDocument(path, { a: 1, b: 2 }).update(({ a }) => ({ a: a + 1 }));
  assert.deepEqual(new StateDocument(path, {}).value, { a: 2, b: 2 });
  assert.equal(statSync(path).mode & 0o777, 0o600);
});

test('a change that cannot be written does not count', (t) => {
  const path = pathIn(t);
  const document = new StateDocument(path, { a: 1 });
  document.update(() => ({ a: 2 }));
  mkdirSync(`${path}.new`);
  assert.throws(() => document.update(() => ({ a: 3 })), /EISDIR/);
  assert.deepEqual(document.value, { a: 2 });
  assert.deepEqual(JSON.parse(readFileSync(path, 'utf8')), { a: 2 });
});

test('a damaged file is named, with what to do, and left as it is', (t) => {
  const path = pathIn(t);
  writeFileSync(path, '{"a":');
  assert.throws(() => new StateDocument(path, {}), /state\.json cannot be read.*mend or remove it/);
  assert.equal(readFileSync(path, 'utf8'), '{"a":');
});

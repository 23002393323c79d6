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

test('a change is in the next document that reads the file', (t) => {
  const path = pathIn(t);
  new StateDocument(path, { a: 1, b: 2 }).update(({ a }) => ({ a: a + 1 }));
  assert.deepEqual(new StateDocument(path, {}).value, { a: 2, b: 2 });
  assert.equal(statSync(path).mode & 0o777, 0o600);
});

test('a change that cannot be written is not applied', (t) => {
  const path = pathIn(t);
  const document = new StateDocument(path, { a: 1 });
  document.update(() => ({ a: 2 }));
  mkdirSync(`${path}.new`);
  assert.throws(() => document.update(() => ({ a: 3 })), /EISDIR/);
  assert.deepEqual(document.value, { a: 2 });
  assert.deepEqual(JSON.parse(readFileSync(path, 'utf8')), { a: 2 });
});

test('the error names a damaged file and the remedy, and the file is unchanged', (t) => {
  const path = pathIn(t);
  writeFileSync(path, '{"a":');
  assert.throws(() => new StateDocument(path, {}), /cannot read .*state\.json.*; fix or remove/);
  assert.equal(readFileSync(path, 'utf8'), '{"a":');
});

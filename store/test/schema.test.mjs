import assert from 'node:assert/strict';
import { mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { loadSchema } from '../src/schema.mjs';
import { loadSeed } from '../src/seed.mjs';
import { temporaryFolder } from './support.mjs';

function folderWith(t, { schema, operations }) {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const paths = [join(folder.path, 'schema.graphql'), join(folder.path, 'operations')];
  writeFileSync(paths[0], schema);
  mkdirSync(paths[1]);
  for (const name of operations) {
    writeFileSync(join(paths[1], `${name}.mjs`), `export default () => '${name}';`);
  }
  return paths;
}

test('an operation is found by the name of its file', async (t) => {
  const paths = folderWith(t, {
    schema: 'type Query { a: String } type Mutation { b: String }',
    operations: ['a', 'b'],
  });
  const { operations } = await loadSchema(...paths);
  assert.equal(operations.b(), 'b');
});

test('a field without an operation stops the start', async (t) => {
  const paths = folderWith(t, { schema: 'type Query { a: String }', operations: [] });
  await assert.rejects(loadSchema(...paths), /has no operation a\.mjs/);
});

test('an operation without a field stops the start', async (t) => {
  const paths = folderWith(t, { schema: 'type Query { a: String }', operations: ['a', 'c'] });
  await assert.rejects(loadSchema(...paths), /has no root field c/);
});

const store = (storeCode, status = true) => ({ storeCode, status });
const wrongSeeds = [
  [{ stores: 1 }, /"stores" must be a list/],
  [{ defaultStoreCode: 'a', stores: [store('a'), store('a')] }, /must be unique/],
  [{ defaultStoreCode: 'b', stores: [store('a')] }, /must name an open store/],
  [{ defaultStoreCode: 'a', stores: [store('a', false)] }, /must name an open store/],
];
for (const [seed, message] of wrongSeeds) {
  test(`a seed file is refused: ${message.source}, ${JSON.stringify(seed)}`, (t) => {
    const folder = temporaryFolder();
    t.after(folder.remove);
    const path = join(folder.path, 'seed.json');
    writeFileSync(path, JSON.stringify(seed));
    assert.throws(() => loadSeed(path), message);
  });
}

// The project's own implementations pass graphql-platform-check: the host and the example whole, the
// fake in what it does not only record.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { Servers, check } from './platformCheck.mjs';

const servers = new Servers();
before(() => servers.start());
after(() => servers.stop());

// Checks that mean nothing where programs run in an emulator, as --only names them.
const left = (process.env.NOT_EMULATED ?? '').split(' ').filter(Boolean);

function assertPassed({ status, output, errors, results }, skipped = []) {
  const failed = results.filter(({ ok, name }) => !ok && !left.includes(name));
  assert.deepEqual(failed, [], `${output}${errors}`);
  assert.ok(status === 0 || left.length > 0, errors);
  assert.deepEqual(
    results.filter(({ skip }) => skip !== null).map(({ name }) => name),
    skipped,
  );
  assert.ok(results.length > 0, errors);
}

for (const implementation of ['host', 'example']) {
  test(`The ${implementation} implementation passes whole`, async () => {
    const { authorityFile, options } = servers;
    assertPassed(await check(implementation, [...options, '--log', 'stderr'], { authorityFile }));
  });
}

for (const implementation of ['host', 'example']) {
  // Over HTTP/2, which the store service prefers, all names are in lower case anyway.
  test(`The ${implementation} implementation lowers the header names of HTTP/1.1`, async () => {
    const { authorityFile, http1Url } = servers;
    assertPassed(
      await check(
        implementation,
        ['--only', 'http.header-names-are-in-lower-case', '--url', http1Url],
        { authorityFile },
      ),
    );
  });
}

test('The fake implementation passes where it keeps the contract itself', async () => {
  const groups = [
    'identity',
    'text',
    'log.any-bytes-are-survived',
    'encoding.any-bytes-come-back',
    'encoding.empty-string-comes-back',
    'encoding.reads-one-string-only',
    'config.texts-are-copied',
    'config.written-values-are-visible-at-once',
    'config.missing-file-is-empty',
  ];
  assertPassed(
    await check(
      'fake',
      groups.flatMap((name) => ['--only', name]),
    ),
  );
});

// The project's own implementations pass graphql-platform-check: the host and the example whole, the
// fake in what it does not only record.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { Servers, check } from './platformCheck.mjs';

const servers = new Servers();
before(() => servers.start());
after(() => servers.stop());

// Names of checks that the example fails where programs run in an emulator.
const notEmulated = (process.env.NOT_EMULATED ?? '').split(' ').filter(Boolean);

// Passed whole, apart from the checks of these names, which fail.
function assertPassed({ status, output, errors, results }, failing = []) {
  const failed = results.filter(({ ok }) => !ok).map(({ name }) => name);
  assert.deepEqual(failed, failing, `${output}${errors}`);
  assert.equal(status, failing.length === 0 ? 0 : 1, errors);
  assert.deepEqual(
    results.filter(({ skip }) => skip !== null),
    [],
  );
  assert.ok(results.length > 0, errors);
}

for (const implementation of ['host', 'example']) {
  test(`The ${implementation} implementation passes whole`, async () => {
    const { authorityFile, options } = servers;
    assertPassed(
      await check(implementation, [...options, '--log', 'stderr'], { authorityFile }),
      implementation === 'example' ? notEmulated : [],
    );
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

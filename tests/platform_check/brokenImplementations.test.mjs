// Each fault of README.md makes the check fail that the table names, and no fault lacks a row. Prints
// the table with the reasons that the program gave.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { Servers, check } from './platformCheck.mjs';

const folder = new URL('.', import.meta.url);
const executable = process.env.BROKEN_PLATFORM_CHECK;
const hangSeconds = '5';
const timeoutSeconds = '40';

const read = (name) => readFileSync(new URL(name, folder), 'utf8');
const rows = [...read('README.md').matchAll(/^\| `([^`]+)` \| `([^`]+)` \|$/gm)].map(
  ([, fault, caughtBy]) => ({ fault, caughtBy }),
);

const servers = new Servers();
before(() => servers.start());
after(() => servers.stop());

function checkWith(fault, name) {
  const seconds = fault.startsWith('hang') ? hangSeconds : timeoutSeconds;
  return check(
    'example',
    ['--only', name, '--log', 'stderr', '--timeout', seconds, ...servers.options],
    {
      authorityFile: servers.authorityFile,
      executable,
      // Where the program has a sanitizer, this takes the place of its limit of memory.
      environment: { BROKEN_PLATFORM: fault, ASAN_OPTIONS: 'max_allocation_size_mb=1024' },
    },
  );
}

test('The table has every fault of the sources, and no other', () => {
  const sources = readdirSync(folder)
    .filter((name) => name.endsWith('.cpp'))
    .map(read)
    .join('');
  const faults = new Set([...sources.matchAll(/isFault\("([^"]+)"\)/g)].map(([, fault]) => fault));
  assert.deepEqual([...new Set(rows.map(({ fault }) => fault))].sort(), [...faults].sort());
});

test('The table has every check but one that only skips', async () => {
  const { output } = await check('example', ['--list'], { executable });
  const names = output.trimEnd().split('\n');
  assert.deepEqual(
    [
      ...new Set(rows.map(({ caughtBy }) => caughtBy)),
      'identity.store-generation-is-served',
    ].sort(),
    names.sort(),
  );
});

test('Without a fault the same program passes', async () => {
  const names = [...new Set(rows.map(({ caughtBy }) => caughtBy))];
  const { status, output } = await check(
    'example',
    [...names.flatMap((name) => ['--only', name]), '--log', 'stderr', ...servers.options],
    { authorityFile: servers.authorityFile, executable },
  );
  assert.equal(status, 0, output);
  assert.doesNotMatch(output, /# SKIP/);
});

test('Each fault is caught', async () => {
  for (const { fault, caughtBy } of rows) {
    const { status, output, errors, results } = await checkWith(fault, caughtBy);
    assert.equal(status, 1, `${fault}: ${output}${errors}`);
    assert.deepEqual(
      results.map(({ ok, name }) => [ok, name]),
      [[false, caughtBy]],
      fault,
    );
    console.log(`${fault.padEnd(36)} ${caughtBy.padEnd(44)} ${results[0].reason}`);
  }
});

test('A crash or a hang of one check does not end the run', async () => {
  for (const [fault, reason] of [
    ['crash-at-truncation', /signal|exit status/],
    ['hang-at-truncation', /no result after/],
  ]) {
    const { status, results } = await checkWith(fault, 'encoding');
    assert.equal(status, 1);
    assert.equal(results.length, 8);
    assert.deepEqual(results.filter(({ ok }) => ok).length > 0, true, fault);
    assert.match(results.find(({ name }) => name.includes('truncation')).reason, reason);
  }
});

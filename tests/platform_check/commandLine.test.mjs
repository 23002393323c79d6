// The command line of graphql-platform-check, and the form of what it writes.
import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { Folder, check } from './platformCheck.mjs';

const page = readFileSync(process.env.MANUAL_PAGE, 'utf8');
const run = (...options) => check('host', options);

test('--help has every option, and the page has them all', async () => {
  const { status, output } = await run('--help');
  assert.equal(status, 0);
  const options = output.match(/^ {2}--[a-z-]+/gm).map((text) => text.trim());
  assert.ok(options.length >= 10);
  for (const option of options) assert.ok(page.includes(`\`${option}`), option);
});

test('--list prints the names, and the page has every group', async () => {
  const { status, output } = await run('--list');
  assert.equal(status, 0);
  const names = output.trimEnd().split('\n');
  assert.equal(new Set(names).size, names.length);
  for (const name of names) assert.match(name, /^[a-z]+\.[a-z0-9-]+$/);
  for (const group of new Set(names.map((name) => name.split('.')[0]))) {
    assert.ok(page.includes(`\`${group}\``), group);
  }
});

test('--only runs a group or a check, and the output is TAP', async () => {
  const { status, output } = await run('--only', 'text', '--only', 'identity.screen-has-a-size');
  assert.equal(status, 0);
  assert.equal(
    output,
    `TAP version 14
1..3
ok 1 - identity.screen-has-a-size
ok 2 - text.trims-white-space
ok 3 - text.trims-given-characters
# 3 passed, 0 failed, 0 skipped
`,
  );
});

test('What cannot be tried is skipped with its reason', async () => {
  const { status, results } = await run(
    '--only',
    'http',
    '--only',
    'log',
    '--url',
    'https://127.0.0.1:1/',
    '--control',
    'http://127.0.0.1:1',
  );
  assert.equal(status, 0);
  const skipped = results.filter(({ skip }) => skip !== null);
  assert.ok(skipped.length >= 25);
  for (const { skip } of skipped) assert.match(skip, /set --[a-z-]+/);
});

test('--junit writes the results as XML', async () => {
  const folder = new Folder();
  const file = join(folder.path, 'results.xml');
  const { status } = await run(
    '--only',
    'text',
    '--only',
    'log.failure-is-written',
    '--junit',
    file,
  );
  const xml = readFileSync(file, 'utf8');
  folder.remove();
  assert.equal(status, 0);
  assert.match(
    xml,
    /<testsuite name="graphql-platform-check" tests="3" failures="0" errors="0" skipped="1">/,
  );
  assert.match(xml, /<testcase classname="text" name="trims-white-space" time="\d+\.\d{3}"\/>/);
  assert.match(
    xml,
    /<testcase classname="log" name="failure-is-written" time="[^"]+"><skipped message="set --log/,
  );
});

test('Wrong use is said with what to do', async () => {
  for (const [options, complaint] of [
    [['--nonsense'], /unknown argument '--nonsense'; run --help/],
    [['--only', 'nonsense'], /run --list/],
    [['--only'], /--only needs a value: NAME/],
    [['--timeout', '0'], /number of seconds from 1/],
    [['--timeout', 'ten'], /number of seconds from 1/],
    [['--url', 'http://127.0.0.1/'], /must begin with https/],
    [['--control', 'nonsense'], /must look like/],
    [['--folder', 'tmp'], /full path/],
    [['--junit', '/missing/results.xml'], /cannot write/],
    [['--root', '/dev/null'], /cannot create the folder/],
  ]) {
    const { status, output, errors } = await run(...options);
    assert.equal(status, 2, errors);
    assert.equal(output, '');
    assert.match(errors, /^graphql-platform-check: /);
    assert.match(errors, complaint);
  }
});

test('The files of a run are removed', async () => {
  const folder = new Folder();
  mkdirSync(join(folder.path, 'there'));
  const { status, output } = await check(
    'host',
    ['--root', folder.path, '--folder', '/there/new', '--only', 'config', '--only', 'tasks'],
    { environment: { ORVANE_ROOT: folder.path } },
  );
  const left = readdirSync(join(folder.path, 'there'));
  folder.remove();
  assert.equal(status, 0, output);
  assert.deepEqual(left, []);
});

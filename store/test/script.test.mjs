// scripts/store, called as a person or a test would, each time with a separate state folder.
import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import { existsSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { afterEach, beforeEach, test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { temporaryFolder } from './support.mjs';

const script = fileURLToPath(new URL('../../scripts/store', import.meta.url));

let folder;
let state;
beforeEach(() => {
  folder = temporaryFolder();
  state = join(folder.path, 'state');
});
afterEach(() => {
  run('stop');
  folder.remove();
});

function run(command, ...options) {
  const outcome = spawnSync(script, [command, '--state', state, ...options], { encoding: 'utf8' });
  const lines = outcome.stdout.split('\n').filter((line) => line.includes('='));
  const fields = Object.fromEntries(lines.map((line) => line.split(/=(.*)/s).slice(0, 2)));
  return { code: outcome.status, fields, stdout: outcome.stdout, stderr: outcome.stderr };
}

const isAlive = (pid) => {
  try {
    process.kill(pid, 0);
  } catch {
    return false;
  }
  return !/\) Z /.test(readFileSync(`/proc/${pid}/stat`, 'utf8'));
};

test('start prints the addresses of the service, which responds there', async () => {
  const { code, fields } = run('start', '--line', 'old');
  assert.equal(code, 0);
  assert.deepEqual(Object.keys(fields), ['url', 'port', 'control', 'ca', 'pid']);
  assert.equal(fields.url, `https://127.0.0.1:${fields.port}/graphql`);
  assert.match(readFileSync(fields.ca, 'utf8'), /BEGIN CERTIFICATE/);
  assert.equal((await (await fetch(`${fields.control}/settings`)).json()).line, 'old');
  assert.ok(readFileSync(join(state, 'store.env'), 'utf8').includes(`pid=${fields.pid}\n`));
});

test('the files of the service are readable by their owner only', () => {
  run('start');
  assert.equal(statSync(state).mode & 0o777, 0o700);
  for (const name of ['ca.key', 'ca.pem', 'cache-salt', 'store.env']) {
    assert.equal(statSync(join(state, name)).mode & 0o777, 0o600, name);
  }
});

test('a second start reports the running service and starts nothing', () => {
  const first = run('start');
  const second = run('start');
  assert.equal(second.code, 0);
  assert.match(second.stderr, /the service is already running/);
  assert.deepEqual(second.fields, first.fields);
});

test('two starts at once start one service', async () => {
  const outcomes = await Promise.all(
    [1, 2].map(
      () =>
        new Promise((resolve) => {
          const child = spawn(script, ['start', '--state', state]);
          let text = '';
          child.stdout.on('data', (piece) => (text += piece));
          child.on('close', () => resolve(text));
        }),
    ),
  );
  assert.match(outcomes[0], /pid=\d+/);
  assert.equal(outcomes[0], outcomes[1]);
});

test('status reports whether the service is running', () => {
  assert.equal(run('status').code, 1);
  assert.equal(existsSync(state), false);
  const { fields } = run('start');
  assert.deepEqual(run('status').fields, fields);
});

test('stop waits for the end, and the CA certificate is kept for the next start', () => {
  const { fields } = run('start');
  const authority = readFileSync(fields.ca, 'utf8');
  assert.equal(run('stop').code, 0);
  assert.equal(isAlive(Number(fields.pid)), false);
  assert.equal(existsSync(join(state, 'store.env')), false);
  assert.equal(readFileSync(run('start').fields.ca, 'utf8'), authority);
});

test('stop does not end another process that has the same pid', () => {
  run('start');
  run('stop');
  const other = spawn('sleep', ['60']);
  try {
    writeFileSync(join(state, 'store.env'), `pid=${other.pid}\nstarted=1\n`);
    assert.match(run('stop').stderr, /is not running/);
    assert.ok(isAlive(other.pid));
  } finally {
    other.kill();
  }
});

test('a killed service counts as not running and can be started again', () => {
  const { fields } = run('start');
  process.kill(Number(fields.pid), 'SIGKILL');
  while (isAlive(Number(fields.pid)));
  assert.equal(run('status').code, 1);
  assert.notEqual(run('start').fields.pid, fields.pid);
});

test('install starts nothing and returns at once when the modules are installed', () => {
  const outcome = run('install');
  assert.deepEqual([outcome.code, outcome.stdout, outcome.stderr], [0, '', '']);
  assert.equal(existsSync(state), false);
});

test('the error names a port that is in use', async () => {
  const server = createServer();
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  const { port } = server.address();
  const outcome = run('start', '--port', String(port));
  server.close();
  assert.equal(outcome.code, 1);
  assert.match(outcome.stderr, new RegExp(`port ${port} is in use`));
  assert.equal(outcome.stdout, '');
});

for (const options of [['--port', 'x'], ['--line', 'older'], ['--port'], ['--colour', 'red']]) {
  test(`wrong use is explained: ${options.join(' ')}`, () => {
    const outcome = run('start', ...options);
    assert.equal(outcome.code, 2);
    assert.ok(outcome.stderr.includes(options[0]));
    assert.match(outcome.stderr, /usage: scripts\/store/);
  });
}

test('with --end-with-stdin the service ends when nobody has the other end of the pipe', async () => {
  const starter = spawn(script, ['start', '--state', state, '--end-with-stdin'], {
    stdio: ['pipe', 'pipe', 'inherit'],
  });
  let lines = '';
  starter.stdout.on('data', (piece) => {
    lines += piece;
  });
  // When the starter has ended, the pipe is closed.
  assert.equal(await new Promise((resolve) => starter.once('close', resolve)), 0);
  const pid = /^pid=(\d+)$/m.exec(lines)[1];
  for (let count = 0; isAlive(pid) && count < 1000; count += 1) {
    await new Promise((resolve) => setTimeout(resolve, 10));
  }
  assert.equal(isAlive(pid), false);
});

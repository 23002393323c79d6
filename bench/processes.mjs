import { execFile, spawn } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { promisify } from 'node:util';

// The last processor that this process may use. Server and clients share it, so that neither of the
// two programs can gain from work that the server does in parallel.
export function lastProcessor() {
  const status = readFileSync('/proc/self/status', 'utf8');
  const [, allowed] = /^Cpus_allowed_list:\s*(\S+)$/m.exec(status);
  return allowed.split(/[-,]/).at(-1);
}

const running = new Set();

// Runs a program to its end on one processor. Resolves to its output; rejects with its command and
// its messages when it fails or takes longer than `seconds`.
export async function run(program, parameters, { env, processor, seconds = 60 } = {}) {
  const command = processor === undefined ? [] : ['taskset', '-c', processor];
  const [file, ...rest] = [...command, program, ...parameters];
  const ended = promisify(execFile)(file, rest, {
    env: { ...process.env, ...env },
    timeout: seconds * 1000,
    maxBuffer: 1 << 24,
  });
  running.add(ended.child);
  try {
    return (await ended).stdout;
  } finally {
    running.delete(ended.child);
  }
}

// Kills the programs that run() waits for.
export function killRunning() {
  for (const child of running) child.kill('SIGKILL');
}

// Starts a program in the background. Resolves to a function that ends it and waits for its end.
export function start(program, parameters, { processor }) {
  const child = spawn('taskset', ['-c', processor, program, ...parameters], { stdio: 'inherit' });
  const ended = new Promise((resolve, reject) => {
    child.once('exit', resolve);
    child.once('error', reject);
  });
  ended.catch(() => {});
  return {
    hasEnded: () => child.exitCode !== null || child.signalCode !== null,
    // Does not wait: this process is ending.
    kill: () => child.kill('SIGTERM'),
    stop: async () => {
      child.kill('SIGTERM');
      await ended;
    },
  };
}

// Starts programs for the test: each has a time limit and cannot see the developer's own state.
import { execFile } from 'node:child_process';
import { promisify } from 'node:util';

const execute = promisify(execFile);
const programMilliseconds = 40000;
const wholeTestMilliseconds = 120000;

// The time limit of a step, but no longer than the rest of the whole test's time, so that there is
// always time to end the started programs.
export function timeLimit(milliseconds) {
  return Math.max(1, Math.floor(Math.min(milliseconds, wholeTestMilliseconds - performance.now())));
}

// The environment without the host's settings, and with `additions`.
export function environmentWith(additions = {}) {
  const inherited = Object.entries(process.env).filter(([name]) => !name.startsWith('ORVANE_'));
  return { ...Object.fromEntries(inherited), ...additions };
}

// Resolves to the output of the program. Rejects with its error output when it fails or takes too
// long.
export async function outputOf(
  program,
  programArguments,
  { input = '', environment, timeout = timeLimit(programMilliseconds) } = {},
) {
  const running = execute(program, programArguments, {
    env: environmentWith(environment),
    timeout,
    killSignal: 'SIGKILL',
  });
  running.child.stdin.on('error', () => {}); // a program may end before it has read everything
  running.child.stdin.end(input);
  return (await running).stdout;
}

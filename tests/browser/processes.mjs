// Programs that the test starts. Each has a time limit and sees nothing of a developer's own state.
import { execFile } from 'node:child_process';
import { promisify } from 'node:util';

const execute = promisify(execFile);
const secondsToRun = 40;

// The environment without the host's settings, and with `additions`.
export function environmentWith(additions = {}) {
  const inherited = Object.entries(process.env).filter(([name]) => !name.startsWith('ORVANE_'));
  return { ...Object.fromEntries(inherited), ...additions };
}

// What the program prints. Rejects with its complaints when it fails or takes too long.
export async function outputOf(program, programArguments, { input = '', environment } = {}) {
  const running = execute(program, programArguments, {
    env: environmentWith(environment),
    timeout: secondsToRun * 1000,
    killSignal: 'SIGKILL',
  });
  running.child.stdin.on('error', () => {}); // a program may end before it has read everything
  running.child.stdin.end(input);
  return (await running).stdout;
}

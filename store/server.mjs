// Runs the store service in the foreground until SIGTERM or SIGINT, or with --end-with-stdin until the
// end of standard input: the service then ends with the process at the other end of the pipe.
import { readFileSync, rmSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { parseArgs } from 'node:util';

import { startService } from './src/service.mjs';
import { asLines, replaceFile } from './src/stateFile.mjs';

const usage =
  'usage: node server.mjs --state DIR [--port N] [--control-port N] [--line old|new] [--end-with-stdin]';

function readPort(name, text) {
  const port = Number(text);
  if (!/^\d+$/.test(text) || port > 65535) {
    throw new Error(`${name} must be an integer from 0 to 65535`);
  }
  return port;
}

function readOptions() {
  const { values } = parseArgs({
    options: {
      state: { type: 'string' },
      port: { type: 'string', default: '0' },
      'control-port': { type: 'string', default: '0' },
      line: { type: 'string', default: 'new' },
      'end-with-stdin': { type: 'boolean', default: false },
    },
  });
  if (!values.state) throw new Error(usage);
  return {
    stateFolder: resolve(values.state),
    port: readPort('--port', values.port),
    controlPort: readPort('--control-port', values['control-port']),
    line: values.line,
    endWithStdin: values['end-with-stdin'],
  };
}

// The start time of this process, from the kernel. It shows whether a later process has the same
// pid.
function ownStartTime() {
  const afterName = readFileSync('/proc/self/stat', 'utf8').split(') ').pop();
  return afterName.split(' ')[19];
}

async function main() {
  process.umask(0o077);
  const options = readOptions();
  const service = await startService(options);
  const stateFile = join(options.stateFolder, 'store.env');
  const fields = {
    url: service.url,
    port: service.port,
    control: service.controlUrl,
    ca: service.authorityPath,
    pid: process.pid,
    started: ownStartTime(),
  };
  replaceFile(stateFile, asLines(fields));
  process.stdout.write(asLines(fields));

  const end = async () => {
    rmSync(stateFile, { force: true });
    await service.close();
    process.exit(0);
  };
  process.once('SIGTERM', end);
  process.once('SIGINT', end);
  if (options.endWithStdin) process.stdin.once('close', end).resume();
}

main().catch((error) => {
  console.error(`store service: ${error.message}`);
  process.exitCode = 1;
});

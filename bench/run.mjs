// Runs the benchmarks (scripts/bench builds them first): the parts, then each case. The two
// programs run alternately on the server's processor.
// Usage: node run.mjs PROGRAMS-FOLDER RESULTS-FOLDER HOST [--quick] [--only TEXT]

import { deepStrictEqual } from 'node:assert';
import { existsSync, mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { cpus, release, tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { parseArgs } from 'node:util';

import { cases, isOperation, nameOf } from './cases.mjs';
import { makeCertificates } from './certificates.mjs';
import { killRunning, lastProcessor, run } from './processes.mjs';
import { printComparison, printParts, writeFiles } from './report.mjs';
import { pathOf, recordRequest, startNginx } from './server.mjs';
import { compare } from './statistics.mjs';

// Enough pairs for a meaningful spread, then more until the spread is small or the time is up.
const kThorough = { fewestPairs: 20, mostPairs: 400, seconds: 12, spread: 0.01, partSeconds: 0.5 };
const kQuick = { fewestPairs: 2, mostPairs: 2, seconds: 1, spread: 1, partSeconds: 0.01 };

const kPrograms = ['library', 'bare'];
const kDevice = {
  firmware: '3.2.105',
  model: 'QX417',
  screenHeight: '1600',
  screenWidth: '1200',
  serialNumber: 'BENCH00000000001',
};

// The root folder, in memory if possible: the benchmark does not measure disks.
function makeDevice(folder) {
  const path = join(folder, 'root/mnt/ext1/system/config/device.cfg');
  mkdirSync(dirname(path), { recursive: true, mode: 0o700 });
  const lines = Object.entries(kDevice).map(([key, value]) => `${key}=${value}\n`);
  writeFileSync(path, lines.join(''), { mode: 0o600 });
  return join(folder, 'root');
}

class Bench {
  constructor({ programs, host, folder, effort, operations }) {
    this.paths = {
      library: join(programs, 'bench_operation'),
      bare: join(programs, 'bench_bare'),
      parts: join(programs, 'bench_parts'),
      queue: join(programs, 'bench_queue'),
    };
    this.folder = folder;
    this.effort = effort;
    [this.host, this.port = '443'] = host.split(':');
    this.processor = lastProcessor();
    this.root = makeDevice(folder);
    this.operations = operations;
  }

  async start() {
    if (this.operations.length === 0) return;
    const { folder, operations, processor } = this;
    this.certificates = await makeCertificates(folder, this.host);
    const { certificates } = this;
    this.nginx = await startNginx({ folder, operations, certificates, processor });
  }

  async perform(program, operation, count, port, authorities) {
    const env = {
      ORVANE_ROOT: this.root,
      ORVANE_CA_FILE: this.certificates[authorities],
      ORVANE_CONNECT_TO: `${this.host}:${this.port}:127.0.0.1:${port}`,
      ORVANE_LOG_LEVEL: '2',
      ORVANE_HTTP_VERSION: '1.1',
    };
    const { processor } = this;
    return JSON.parse(
      await run(this.paths[program], [operation, String(count)], { env, processor }),
    );
  }

  // Both programs must do the same work, or their times cannot be compared.
  async checkSameWork(operation) {
    const [requests, fields] = [[], []];
    for (const program of kPrograms) {
      requests.push(
        await recordRequest(operation, this.certificates, async (port) => {
          fields.push((await this.perform(program, operation, 1, port, 'own')).fields);
        }),
      );
    }
    deepStrictEqual(requests[0], requests[1], `${operation}: the programs send different requests`);
    deepStrictEqual(requests[0].url, pathOf(operation));
    deepStrictEqual(fields[0], fields[1], `${operation}: the programs read different fields`);
  }

  async measureParts() {
    const parameters = [
      '--benchmark_format=json',
      `--benchmark_min_time=${this.effort.partSeconds}`,
    ];
    const { processor } = this;
    const env = { BENCH_FOLDER: this.folder };
    const report = JSON.parse(
      await run(this.paths.parts, parameters, { env, processor, seconds: 120 }),
    );
    return report.benchmarks.map(({ name, cpu_time: nanoseconds }) => ({ name, nanoseconds }));
  }

  async addToQueue(program, { items, count }) {
    const { processor } = this;
    const parameters = [program, String(items), String(count)];
    return JSON.parse(await run(this.paths.queue, parameters, { processor })).nanoseconds;
  }

  async measureOnce(one, program) {
    if (!isOperation(one)) return this.addToQueue(program, one);
    const port = this.nginx.ports[one.connection === 'cold' ? 'new' : one.connection];
    const count = one.connection === 'cold' ? 'cold' : one.count;
    return (await this.perform(program, one.operation, count, port, one.authorities)).nanoseconds;
  }

  // The first program changes from pair to pair, so that neither always runs after the other.
  async measure(one) {
    const { fewestPairs, mostPairs, seconds, spread } = this.effort;
    const deadline = Date.now() + seconds * 1000;
    const pairs = [];
    for (;;) {
      const order = pairs.length % 2 === 0 ? kPrograms : [...kPrograms].reverse();
      const pair = {};
      for (const program of order) pair[program] = await this.measureOnce(one, program);
      pairs.push(pair);
      const result = compare(pairs);
      const [low, high] = result.quartiles;
      const isSettled = high - low <= spread * result.ratio || Date.now() > deadline;
      if (pairs.length >= mostPairs || (pairs.length >= fewestPairs && isSettled)) {
        return { ...one, ...result };
      }
    }
  }

  // Ends all started programs and removes all files. Safe to call twice.
  async end() {
    await this.nginx?.stop();
    rmSync(this.folder, { recursive: true, force: true });
  }

  endAtOnce() {
    killRunning();
    this.nginx?.kill();
    rmSync(this.folder, { recursive: true, force: true });
  }
}

async function versions() {
  const curl = await run('curl-config', ['--version']);
  const openssl = await run('openssl', ['version']);
  return {
    processor: cpus()[0].model,
    kernel: release(),
    curl: curl.trim(),
    openssl: openssl.trim(),
  };
}

const { values: options, positionals } = parseArgs({
  options: { quick: { type: 'boolean' }, only: { type: 'string', default: '' } },
  allowPositionals: true,
});
const [programs, resultsFolder, host] = positionals;
const chosen = cases.filter((one) => nameOf(one).includes(options.only));
if (chosen.length === 0) {
  const names = cases.map(nameOf).join('\n  ');
  process.stderr.write(
    `bench: no case name contains '${options.only}'; the cases are:\n  ${names}\n`,
  );
  process.exit(2);
}
const inMemory = existsSync('/dev/shm') ? '/dev/shm' : tmpdir();
const bench = new Bench({
  programs,
  host,
  folder: mkdtempSync(join(inMemory, 'graphql-api-bench-')),
  effort: options.quick ? kQuick : kThorough,
  operations: [...new Set(chosen.filter(isOperation).map(({ operation }) => operation))],
});
for (const [signal, status] of [
  ['SIGINT', 130],
  ['SIGTERM', 143],
  ['SIGHUP', 129],
]) {
  process.once(signal, () => {
    bench.endAtOnce();
    process.exit(status);
  });
}
try {
  await bench.start();
  for (const operation of bench.operations) await bench.checkSameWork(operation);
  const parts = await bench.measureParts();
  printParts(parts);
  const results = [];
  for (const one of chosen) {
    process.stderr.write(`Measuring ${nameOf(one)} ...\n`);
    results.push(await bench.measure(one));
  }
  printComparison(results);
  mkdirSync(resultsFolder, { recursive: true });
  writeFiles(resultsFolder, { machine: await versions(), parts, results });
} catch (failure) {
  process.stderr.write(`bench: ${failure.message}${failure.stderr ?? ''}\n`);
  process.exitCode = 1;
} finally {
  await bench.end();
}

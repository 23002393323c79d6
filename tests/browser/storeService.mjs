// The local store service, as a process with a state folder of its own.
import { execFileSync } from 'node:child_process';
import { createHash, X509Certificate } from 'node:crypto';
import { openSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

import { outputOf, timeLimit } from './processes.mjs';

const script = fileURLToPath(new URL('../../scripts/store', import.meta.url));
const answerMilliseconds = 10000;
const stopMilliseconds = 15000;

export class StoreService {
  #state;
  #fields;

  constructor(state) {
    this.#state = state;
  }

  async start(line) {
    const options = ['--state', this.#state, '--line', line, '--end-with-stdin'];
    const output = await outputOf(
      'sh',
      ['-c', 'exec "$0" "$@" <"$LIFELINE"', script, 'start', ...options],
      { environment: { LIFELINE: this.#openLifeline() } },
    );
    const pairs = output.trimEnd().split('\n');
    this.#fields = Object.fromEntries(pairs.map((pair) => pair.split(/=(.*)/s).slice(0, 2)));
  }

  async stop() {
    await outputOf(script, ['stop', '--state', this.#state], { timeout: stopMilliseconds });
  }

  // A pipe whose writing end is open as long as this process lives: the service ends with it.
  #openLifeline() {
    const path = `${this.#state}.lifeline`;
    execFileSync('mkfifo', [path]);
    openSync(path, 'r+');
    return path;
  }

  get port() {
    return this.#fields.port;
  }

  get authorityFile() {
    return this.#fields.ca;
  }

  // The server's public key in the form of Chromium and curl: Base64 of its SHA-256.
  get keyDigest() {
    const certificate = new X509Certificate(readFileSync(join(this.#state, 'server.pem')));
    const key = certificate.publicKey.export({ type: 'spki', format: 'der' });
    return createHash('sha256').update(key).digest('base64');
  }

  async forgetRequests() {
    await this.#control('DELETE', '/requests');
  }

  // The requests since the list was last cleared, oldest first.
  requests() {
    return this.#control('GET', '/requests');
  }

  async #control(method, path) {
    const signal = AbortSignal.timeout(timeLimit(answerMilliseconds));
    const answer = await fetch(`${this.#fields.control}${path}`, { method, signal });
    if (!answer.ok) throw new Error(`${method} ${path}: ${await answer.text()}`);
    return answer.json();
  }
}

// A small WebDriver client, and the ChromeDriver process that it uses. ChromeDriver comes from the
// same Debian source package as Chromium, so that the two always match.
import { spawn } from 'node:child_process';

import { environmentWith, timeLimit } from './processes.mjs';

const startMilliseconds = 20000;
const answerMilliseconds = 30000;
const closeMilliseconds = 5000;

function commandLine({ profile, storePort, keyDigest }) {
  return [
    '--headless',
    '--no-sandbox', // Chromium refuses to run as root with it
    '--disable-gpu',
    '--disable-dev-shm-usage',
    '--disable-quic',
    '--disable-background-networking',
    '--disable-component-update',
    '--disable-sync',
    '--no-first-run',
    '--hide-scrollbars',
    '--window-size=1000,1100',
    `--user-data-dir=${profile}`,
    `--host-resolver-rules=MAP *.bookstore.example 127.0.0.1:${storePort}, MAP * ~NOTFOUND`,
    `--ignore-certificate-errors-spki-list=${keyDigest}`,
  ];
}

export class ChromeDriver {
  #process;
  #address;

  // Driver and browser write all their files to `folder`.
  async start(folder) {
    this.#process = spawn('chromedriver', ['--port=0'], {
      env: environmentWith({ HOME: folder, TMPDIR: folder, XDG_CONFIG_HOME: folder }),
      stdio: ['ignore', 'pipe', 'ignore'],
      detached: true, // a process group of its own, which its browsers join
    });
    this.#address = `http://127.0.0.1:${await this.#announcedPort()}`;
  }

  // Rejects when chromedriver is missing or prints no port.
  #announcedPort() {
    return new Promise((resolve, reject) => {
      const fail = (reason) =>
        reject(new Error(`chromedriver ${reason}; try: apt-get install chromium chromium-driver`));
      setTimeout(() => fail('told no port in time'), timeLimit(startMilliseconds)).unref();
      this.#process.on('error', (error) => fail(`did not start (${error.message})`));
      this.#process.on('exit', () => fail('ended'));
      let said = '';
      this.#process.stdout.setEncoding('utf8').on('data', (text) => {
        said += text;
        const port = /started successfully on port (\d+)/.exec(said)?.[1];
        if (port) resolve(port);
      });
    });
  }

  // Ends the driver and all its browsers, even if they hang.
  stop() {
    if (!this.#process?.pid) return;
    try {
      process.kill(-this.#process.pid, 'SIGKILL');
    } catch (error) {
      if (error.code !== 'ESRCH') throw error;
    }
  }

  // Starts a new browser; see commandLine() for the options.
  async open(options) {
    const { sessionId } = await this.command('POST', '/session', {
      capabilities: {
        alwaysMatch: {
          timeouts: { pageLoad: 20000, script: 10000 },
          'goog:chromeOptions': { args: commandLine(options) },
        },
      },
    });
    return new Browser(this, sessionId);
  }

  async command(method, path, body, milliseconds = answerMilliseconds) {
    const answer = await fetch(`${this.#address}${path}`, {
      method,
      body: body && JSON.stringify(body),
      signal: AbortSignal.timeout(timeLimit(milliseconds)),
    });
    const { value } = await answer.json();
    if (!answer.ok) throw new Error(`${method} ${path}: ${value.error}: ${value.message}`);
    return value;
  }
}

class Browser {
  #driver;
  #path;

  constructor(driver, session) {
    this.#driver = driver;
    this.#path = `/session/${session}`;
  }

  async close() {
    await this.#driver.command('DELETE', this.#path, undefined, closeMilliseconds);
  }

  // A command of the browser's debugging protocol.
  devTools(cmd, params) {
    return this.#post('/goog/cdp/execute', { cmd, params });
  }

  async visit(url) {
    await this.#post('/url', { url });
  }

  // Runs a script, the body of a function, and returns its result.
  evaluate(script) {
    return this.#post('/execute/sync', { script, args: [] });
  }

  // A screenshot of the window, as PNG.
  async screenshot() {
    return Buffer.from(await this.#driver.command('GET', `${this.#path}/screenshot`), 'base64');
  }

  #post(command, body) {
    return this.#driver.command('POST', `${this.#path}${command}`, body);
  }
}

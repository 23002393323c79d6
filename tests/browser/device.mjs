// A reader: a separate root folder, and programs that call the library in it, each in a new
// process.
import { join } from 'node:path';

import { outputOf } from './processes.mjs';

export class Device {
  #programs;
  #library;
  #environment;

  // `programs` is the folder of the built programs, `library` the library's path, `root` the folder
  // of the device's files.
  constructor({ programs, library, root, store }) {
    this.#programs = programs;
    this.#library = library;
    this.#environment = {
      ORVANE_ROOT: root,
      ORVANE_CA_FILE: store.authorityFile,
      ORVANE_CONNECT_TO: `::127.0.0.1:${store.port}`,
    };
  }

  // Registers the customer at the store and signs in.
  async signIn(storeCode, { email, password, firstname, lastname }) {
    const input = `${[email, password, firstname, lastname].join('\n')}\n`;
    await this.#run('sign_in', [storeCode], input);
  }

  async signOut() {
    await this.#run('sign_out');
  }

  // The data that the library currently gives the browser: { cookies, headers, storeUrl, isLoggedIn
  // }.
  async browserState() {
    return JSON.parse(await this.#run('browser_state', [this.#library]));
  }

  #run(program, programArguments = [], input = '') {
    const environment = this.#environment;
    return outputOf(join(this.#programs, program), programArguments, { input, environment });
  }
}

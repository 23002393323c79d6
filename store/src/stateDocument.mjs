// A small JSON document in memory and on disk. A change is written to disk first. When that fails,
// the document is unchanged and the error reaches the caller.
import { existsSync, readFileSync } from 'node:fs';

import { replaceFile } from './stateFile.mjs';

function read(path) {
  try {
    return JSON.parse(readFileSync(path, 'utf8'));
  } catch (error) {
    throw new Error(`cannot read ${path} (${error.message}); fix or remove the file`);
  }
}

export class StateDocument {
  #path;
  #value;

  // `empty` is the document if the file does not exist.
  constructor(path, empty) {
    this.#path = path;
    this.#value = existsSync(path) ? read(path) : empty;
  }

  // The current document. Do not change it in place.
  get value() {
    return this.#value;
  }

  // Merges the members that `change(value)` returns into the document.
  update(change) {
    const next = { ...this.#value, ...change(this.#value) };
    replaceFile(this.#path, `${JSON.stringify(next, null, 1)}\n`);
    this.#value = next;
  }
}

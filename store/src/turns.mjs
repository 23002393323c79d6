// Runs work with the same key one after the other.
export class Turns {
  #last = new Map();

  async take(key, work) {
    const turn = (this.#last.get(key) ?? Promise.resolve()).then(work);
    const done = turn.catch(() => {});
    this.#last.set(key, done);
    try {
      return await turn;
    } finally {
      if (this.#last.get(key) === done) this.#last.delete(key);
    }
  }
}

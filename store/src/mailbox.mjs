// Writes emails to files instead of sending them, one file per message:
// mail/0001-password-reset.eml.
import { mkdirSync, readdirSync } from 'node:fs';
import { join } from 'node:path';

import { replaceFile } from './stateFile.mjs';

const lineEnd = '\r\n';
const oneLine = (text) => text.replace(/\p{Cc}+/gu, ' ');

export class Mailbox {
  #folder;
  #clock;

  constructor(folder, clock) {
    this.#folder = folder;
    this.#clock = clock;
    mkdirSync(folder, { recursive: true, mode: 0o700 });
  }

  // Writes one message. `kind` becomes part of the file name. `paragraphs` are texts; line ends in
  // them become blanks, as in the header fields.
  send({ kind, from, to, subject, paragraphs }) {
    const number = this.#nextNumber();
    const fields = {
      From: from,
      To: to,
      Subject: subject,
      Date: new Date(this.#clock()).toUTCString().replace('GMT', '+0000'),
      'Message-ID': `<${number}.${this.#clock()}@bookstore.example>`,
      'MIME-Version': '1.0',
      'Content-Type': 'text/plain; charset=utf-8',
      'Content-Transfer-Encoding': '8bit',
    };
    const head = Object.entries(fields).map(([name, value]) => `${name}: ${oneLine(value)}`);
    const body = paragraphs.flatMap((paragraph) => ['', oneLine(paragraph)]);
    const name = `${String(number).padStart(4, '0')}-${kind}.eml`;
    replaceFile(join(this.#folder, name), [...head, ...body, ''].join(lineEnd));
  }

  #nextNumber() {
    const numbers = readdirSync(this.#folder).map((name) => Number.parseInt(name, 10) || 0);
    return 1 + Math.max(0, ...numbers);
  }
}

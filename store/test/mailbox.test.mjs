import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { Mailbox } from '../src/mailbox.mjs';
import { temporaryFolder } from './support.mjs';

test('a line end in a field or paragraph does not start another one', (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  new Mailbox(folder.path, () => 0).send({
    kind: 'note',
    from: 'a@example.org',
    to: 'b@example.org',
    subject: 'Dear\r\nBcc: c@example.org',
    paragraphs: ['first\nline', 'second'],
  });
  assert.deepEqual(readFileSync(join(folder.path, '0001-note.eml'), 'utf8').split('\r\n'), [
    'From: a@example.org',
    'To: b@example.org',
    'Subject: Dear Bcc: c@example.org',
    'Date: Thu, 01 Jan 1970 00:00:00 +0000',
    'Message-ID: <1.0@bookstore.example>',
    'MIME-Version: 1.0',
    'Content-Type: text/plain; charset=utf-8',
    'Content-Transfer-Encoding: 8bit',
    '',
    'first line',
    '',
    'second',
    '',
  ]);
});

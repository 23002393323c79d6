import assert from 'node:assert/strict';
import { test } from 'node:test';

import { isEmailAddress } from '../src/emailAddress.mjs';

const good = [
  'a@b.example',
  "o'neil+books@mail.example.org",
  'x.y_z@bücher.example',
  '1@2.example',
];
for (const text of good) {
  test(`${text} is an address`, () => assert.equal(isEmailAddress(text), true));
}

const bad = [
  '',
  'a',
  'a@',
  '@b.example',
  'a@b',
  'a b@c.example',
  'a@b .example',
  'a@@b.example',
  '.a@b.example',
  'a..b@c.example',
  'a.@b.example',
  'a@-b.example',
  'a@b-.example',
  'a@b..example',
  'a@b.example.',
  'a@b.example\n',
  'ä@b.example',
  '"a"@b.example',
  '<a@b.example>',
  `${'a'.repeat(250)}@b.example`,
];
for (const text of bad) {
  test(`${JSON.stringify(text.slice(0, 40))} is not an address`, () => {
    assert.equal(isEmailAddress(text), false);
  });
}

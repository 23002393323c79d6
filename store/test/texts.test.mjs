import assert from 'node:assert/strict';
import { test } from 'node:test';

import { fill, languages, textsFor } from '../src/texts.mjs';

function shapeOf(value) {
  if (typeof value === 'string') return (value.match(/\{\w+\}/g) ?? []).sort().join();
  if (Array.isArray(value)) return value.map(shapeOf);
  return Object.fromEntries(Object.entries(value).map(([name, item]) => [name, shapeOf(item)]));
}

for (const langCode of languages) {
  test(`the texts in "${langCode}" match those in English and take the same values`, () => {
    assert.deepEqual(shapeOf(textsFor({ langCode })), shapeOf(textsFor({ langCode: 'en' })));
  });
}

test('a store in an unsupported language has English texts', () => {
  assert.equal(textsFor({ langCode: 'xx' }), textsFor({ langCode: 'en' }));
});

test('a value that looks like a placeholder is not replaced', () => {
  assert.equal(fill('{a} and {b}', { a: '{b}', b: '$&' }), '{b} and $&');
});

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { phpJson } from '../src/phpJson.mjs';

test('escapes slashes and writes everything outside ASCII in lower-case hexadecimal', () => {
  assert.equal(phpJson({ a: 'é/č\u2028😀' }), '{"a":"\\u00e9\\/\\u010d\\u2028\\ud83d\\ude00"}');
});

test('writes whole prices without a fraction', () => {
  assert.equal(phpJson([10.0, 9.99, 7.5]), '[10,9.99,7.5]');
});

test('does not escape markup by default', () => {
  assert.equal(phpJson('\'"&<>'), '"\'\\"&<>"');
});

test('escapes markup inside texts on request', () => {
  assert.equal(
    phpJson({ a: '\'"&<>' }, { escapesMarkup: true }),
    '{"a":"\\u0027\\u0022\\u0026\\u003C\\u003E"}',
  );
});

test('keeps a backslash before a quote', () => {
  const texts = ['\\"', 'a\\', '\n"'];
  const written = phpJson(texts, { escapesMarkup: true });
  assert.equal(written, '["\\\\\\u0022","a\\\\","\\n\\u0022"]');
  assert.deepEqual(JSON.parse(written), texts);
});

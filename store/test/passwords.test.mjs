import assert from 'node:assert/strict';
import { test } from 'node:test';

import { defaultPasswordCost, isPassword, passwordHasher } from '../src/passwords.mjs';

const hashPassword = passwordHasher(2);

test('a password is recognised, but no text that differs in one character', async () => {
  const kept = await hashPassword('Moonlight-42');
  assert.equal(await isPassword('Moonlight-42', kept), true);
  for (const other of ['Moonlight-43', 'moonlight-42', 'Moonlight-42 ', '']) {
    assert.equal(await isPassword(other, kept), false, other);
  }
});

test('the hash does not contain the password, and every hash has a different salt', async () => {
  const [one, other] = [await hashPassword('Moonlight-42'), await hashPassword('Moonlight-42')];
  assert.match(one, /^scrypt:2:8:1:[\w-]{22}:[\w-]{43}$/);
  assert.doesNotMatch(one, /Moonlight/);
  assert.notEqual(one.split(':')[4], other.split(':')[4]);
  assert.notEqual(one.split(':')[5], other.split(':')[5]);
});

test('a hash with another cost is still recognised', async () => {
  const kept = await passwordHasher(4)('Moonlight-42');
  assert.equal(await isPassword('Moonlight-42', kept), true);
  assert.equal(await isPassword('Moonlight-42', kept.replace('scrypt:4:', 'scrypt:8:')), false);
});

test('the default cost is the one recommended for sign-ins', async () => {
  assert.match(await passwordHasher(defaultPasswordCost)('x'), /^scrypt:16384:8:1:/);
});

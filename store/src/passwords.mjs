// Password hashes: scrypt with a salt for each password. Cost and salt are stored with the hash.
import { randomBytes, scrypt, timingSafeEqual } from 'node:crypto';
import { promisify } from 'node:util';

const derive = promisify(scrypt);
const blockSize = 8;
const parallelization = 1;
const saltBytes = 16;
const hashBytes = 32;

export const defaultPasswordCost = 16384;

// Returns a function that hashes a password to the text "scrypt:N:r:p:salt:hash". `cost` is
// scrypt's N, a power of two: time and memory grow with it.
export function passwordHasher(cost) {
  return async (password) => {
    const salt = randomBytes(saltBytes);
    const numbers = { N: cost, r: blockSize, p: parallelization };
    const hash = await derive(password, salt, hashBytes, numbers);
    const texts = [salt, hash].map((bytes) => bytes.toString('base64url'));
    return ['scrypt', ...Object.values(numbers), ...texts].join(':');
  };
}

// Whether a password matches the stored hash.
export async function isPassword(password, kept) {
  const [, N, r, p, salt, hash] = kept.split(':');
  const expected = Buffer.from(hash, 'base64url');
  const numbers = { N: Number(N), r: Number(r), p: Number(p) };
  const derived = await derive(password, Buffer.from(salt, 'base64url'), expected.length, numbers);
  return timingSafeEqual(derived, expected);
}

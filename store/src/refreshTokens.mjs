// A refresh token is the name of its session and a secret, both random. Only their hashes are
// stored.
import { createHash, randomBytes } from 'node:crypto';

const sessionBytes = 16;
const secretBytes = 32;
const sessionCharacters = 22;
const pattern = /^[A-Za-z0-9_-]{65}$/;

const random = (bytes) => randomBytes(bytes).toString('base64url');
const hash = (text) => createHash('sha256').update(text).digest('base64url');

export function newSessionName() {
  return random(sessionBytes);
}

export function newRefreshToken(sessionName) {
  return `${sessionName}${random(secretBytes)}`;
}

// The hashes of a refresh token and of its session's name; undefined for a text in another format.
export function describeRefreshToken(token) {
  if (!pattern.test(token)) return undefined;
  const sessionName = token.slice(0, sessionCharacters);
  return { sessionName, session: hash(sessionName), refreshHash: hash(token) };
}

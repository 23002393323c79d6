// Customer access tokens in the platform's format: JWTs signed with HS256.
import { createHmac, randomUUID, timingSafeEqual } from 'node:crypto';

const customerType = 3;
const header = encode({ kid: '1', alg: 'HS256' });

function encode(value) {
  return Buffer.from(JSON.stringify(value)).toString('base64url');
}

function isSame(one, other) {
  const [left, right] = [Buffer.from(one), Buffer.from(other)];
  return left.length === right.length && timingSafeEqual(left, right);
}

export class AccessTokens {
  #key;

  constructor(key) {
    this.#key = key;
  }

  #sign(text) {
    return createHmac('sha256', this.#key).update(text).digest('base64url');
  }

  // A token that expires `lifetimeSeconds` after now. Its id makes every token unique.
  make({ customerId, session, lifetimeSeconds, now }) {
    const iat = now / 1000;
    const claims = { uid: customerId, utypid: customerType, iat, exp: iat + lifetimeSeconds };
    const signed = `${header}.${encode({ ...claims, sid: session, jti: randomUUID() })}`;
    return `${signed}.${this.#sign(signed)}`;
  }

  // The claims of a token, expired or not; undefined for a text that this class did not make.
  read(token) {
    const parts = token.split('.');
    if (parts.length !== 3) return undefined;
    const [head, body, signature] = parts;
    if (!isSame(signature, this.#sign(`${head}.${body}`))) return undefined;
    const { uid, sid, exp } = JSON.parse(Buffer.from(body, 'base64url').toString('utf8'));
    return { customerId: uid, session: sid, expiresAt: exp * 1000 };
  }
}

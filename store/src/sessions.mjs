// Sessions of signed-in customers: one sign-in and all tokens that descend from it. A refresh token
// that is used a second time ends its session: the service cannot know whether the owner or a thief
// has the newer token, so both need the password again.
import { Category, Reason, Refusal } from './platformErrors.mjs';
import { describeRefreshToken, newRefreshToken, newSessionName } from './refreshTokens.mjs';

const sessionsPerCustomer = 100;

function refuse(message) {
  throw new Refusal(Reason.Token, message, Category.Authentication);
}

export class Sessions {
  #document;
  #accessTokens;
  #settings;
  #clock;

  constructor({ document, accessTokens, settings, clock }) {
    this.#document = document;
    this.#accessTokens = accessTokens;
    this.#settings = settings;
    this.#clock = clock;
  }

  // Opens a session and returns its first tokens: `accessToken`, `refreshToken`, `expiresIn`.
  open(customerId) {
    return this.#giveTokens(customerId, newSessionName());
  }

  // Uses up a refresh token, and returns its customer (`customerId`) and new `tokens`. Returns
  // undefined when the token is unknown, has expired or was used before.
  refresh(refreshToken) {
    const described = describeRefreshToken(refreshToken);
    const session = described && this.#find(described.session);
    if (!session) return undefined;
    const isGood =
      session.refreshHash === described.refreshHash && this.#clock() < session.expiresAt;
    if (!isGood) {
      this.#end(described.session);
      return undefined;
    }
    const { customerId } = session;
    return { customerId, tokens: this.#giveTokens(customerId, described.sessionName) };
  }

  // The customer of an access token; undefined for any other text. Throws a Refusal for an expired
  // token and for a token whose session has ended.
  customerOf(accessToken) {
    const claims = this.#accessTokens.read(accessToken);
    if (!claims) return undefined;
    if (this.#clock() >= claims.expiresAt) refuse('Consumer key has expired');
    if (!this.#find(claims.session)) refuse('User token has been revoked');
    return claims.customerId;
  }

  #find(session) {
    return this.#document.value.sessions[session];
  }

  #giveTokens(customerId, sessionName) {
    const now = this.#clock();
    const { tokenLifetimeSeconds, refreshTokenLifetimeSeconds } = this.#settings;
    const refreshToken = newRefreshToken(sessionName);
    const { session, refreshHash } = describeRefreshToken(refreshToken);
    const expiresAt = now + refreshTokenLifetimeSeconds * 1000;
    const accessToken = this.#accessTokens.make({
      customerId,
      session,
      lifetimeSeconds: tokenLifetimeSeconds,
      now,
    });
    this.#document.update(({ sessions }) => ({
      sessions: this.#pruned({ ...sessions, [session]: { customerId, refreshHash, expiresAt } }),
    }));
    return { accessToken, refreshToken, expiresIn: tokenLifetimeSeconds };
  }

  #end(session) {
    this.#document.update(({ sessions: { [session]: _ended, ...others } }) => ({
      sessions: others,
    }));
  }

  // Without expired sessions, and without the oldest sessions of a customer who has too many.
  #pruned(sessions) {
    const counts = new Map();
    const kept = Object.entries(sessions)
      .reverse()
      .filter(([, { customerId, expiresAt }]) => {
        if (expiresAt <= this.#clock()) return false;
        counts.set(customerId, (counts.get(customerId) ?? 0) + 1);
        return counts.get(customerId) <= sessionsPerCustomer;
      });
    return Object.fromEntries(kept.reverse());
  }
}

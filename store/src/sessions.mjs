// Sessions of signed-in customers: one sign-in and all tokens that descend from it. Whoever shows a
// refresh token that was used before ends its session: the newer one may be with a thief or with
// the owner, nobody can tell, and so neither goes on without the password.
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

  // The customer (`customerId`) and new `tokens` for a refresh token, which is used up; undefined
  // when it is unknown, has expired or was used before.
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

  // The customer of an access token; undefined for a text that is none of ours. Throws a Refusal
  // for one that has expired or whose session has ended.
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

  // Without the expired ones and the oldest of a customer who has too many.
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

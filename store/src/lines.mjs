// The two lines of the platform that clients meet. What differs between them stands here and
// nowhere else; the switch is `settings.line`.
import { Category, Reason } from './platformErrors.mjs';

// A refusal before execution is an answer with status 500 on the old line, whatever the reason.
const old = {
  refusalStatus: Object.fromEntries(Object.values(Reason).map((reason) => [reason, 500])),
  categoryStatus: {},
  // A token that nobody can read makes the caller a guest.
  refusesUnreadableTokens: false,
  sendsCacheIdForMutations: true,
  answersUnreadableBodiesWithAPage: true,
  escapesMarkupInJson: true,
  mayHideEmailAvailability: false,
  missingValueMessage: (label) => `Required parameters are missing: ${label}`,
  cacheControl: 'max-age=0, must-revalidate, no-cache, no-store',
  shapeError: ({ message, extensions, ...rest }, { executed }) => ({
    message,
    extensions: extensions ?? (executed ? undefined : { category: 'graphql' }),
    ...rest,
  }),
};

const current = {
  refusalStatus: {
    [Reason.ContentType]: 415,
    [Reason.UnreadableBody]: 400,
    [Reason.Store]: 200,
    [Reason.Currency]: 200,
    [Reason.Token]: 401,
    [Reason.Syntax]: 400,
    [Reason.MutationOverGet]: 405,
    [Reason.Unexpected]: 500,
  },
  categoryStatus: { [Category.Authentication]: 401, [Category.Authorization]: 403 },
  refusesUnreadableTokens: true,
  sendsCacheIdForMutations: false,
  answersUnreadableBodiesWithAPage: false,
  escapesMarkupInJson: false,
  // Unless guests may check out with a known address, every address is said to be free.
  mayHideEmailAvailability: true,
  missingValueMessage: (label) => `"${label}" is a required value.`,
  cacheControl: 'no-store, no-cache, must-revalidate, max-age=0',
  shapeError: (error) => error,
};

export const lines = Object.freeze({ old, new: current });

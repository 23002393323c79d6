// The two lines (versions) of the platform. This file contains all their differences;
// `settings.line` selects the line.
import { Category, Reason } from './platformErrors.mjs';

// On the old line, every refusal before execution is a response with status 500.
const old = {
  refusalStatus: Object.fromEntries(Object.values(Reason).map((reason) => [reason, 500])),
  categoryStatus: {},
  // A caller with an unreadable token is a guest.
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
  // While the setting guestCheckoutLogin is false, every address is reported as available.
  mayHideEmailAvailability: true,
  missingValueMessage: (label) => `"${label}" is a required value.`,
  cacheControl: 'no-store, no-cache, must-revalidate, max-age=0',
  shapeError: (error) => error,
};

export const lines = Object.freeze({ old, new: current });

import { lines } from './lines.mjs';

const isFlag = { check: (value) => typeof value === 'boolean', expected: 'true or false' };

const tenYears = 10 * 365 * 24 * 3600;

const secondsFrom = (least) => ({
  check: (value) => Number.isInteger(value) && value >= least && value <= tenYears,
  expected: `an integer from ${least} to ${tenYears}`,
});

const members = {
  line: {
    check: (value) => Object.hasOwn(lines, value),
    expected: `one of: ${Object.keys(lines).join(', ')}`,
  },
  cacheIdHeader: {
    check: (value) =>
      value === null || (typeof value === 'string' && /^x-magento-cache-id$/i.test(value)),
    expected: '"X-Magento-Cache-Id" in any letter case, or null to omit it',
  },
  sessionCookies: isFlag,
  guestCheckoutLogin: isFlag,
  tokenLifetimeSeconds: secondsFrom(1),
  refreshTokenLifetimeSeconds: secondsFrom(1),
  clockOffsetSeconds: secondsFrom(0),
};

export const defaultSettings = Object.freeze({
  line: 'new',
  cacheIdHeader: 'X-Magento-Cache-Id',
  sessionCookies: true,
  guestCheckoutLogin: true,
  tokenLifetimeSeconds: 3600,
  refreshTokenLifetimeSeconds: 30 * 24 * 3600,
  clockOffsetSeconds: 0,
});

// Checks the given settings; throws an Error that names the first invalid one.
export function checkSettings(value) {
  for (const [name, content] of Object.entries(value ?? {})) {
    const member = members[name];
    const known = Object.keys(members).join(', ');
    if (!member) throw new Error(`unknown setting "${name}"; use ${known}`);
    if (!member.check(content)) throw new Error(`"${name}" must be ${member.expected}`);
  }
  return { ...value };
}

import { lines } from './lines.mjs';

const isFlag = { check: (value) => typeof value === 'boolean', wants: 'true or false' };

const tenYears = 10 * 365 * 24 * 3600;

const secondsFrom = (least) => ({
  check: (value) => Number.isInteger(value) && value >= least && value <= tenYears,
  wants: `a whole number from ${least} to ${tenYears}`,
});

const members = {
  line: {
    check: (value) => Object.hasOwn(lines, value),
    wants: `one of: ${Object.keys(lines).join(', ')}`,
  },
  cacheIdHeader: {
    check: (value) =>
      value === null || (typeof value === 'string' && /^x-magento-cache-id$/i.test(value)),
    wants: '"X-Magento-Cache-Id" in any letter case, or null to leave it out',
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

// The given settings; throws an Error that names the first wrong one.
export function checkSettings(value) {
  for (const [name, content] of Object.entries(value ?? {})) {
    const member = members[name];
    const known = Object.keys(members).join(', ');
    if (!member) throw new Error(`unknown setting "${name}"; use ${known}`);
    if (!member.check(content)) throw new Error(`"${name}" must be ${member.wants}`);
  }
  return { ...value };
}

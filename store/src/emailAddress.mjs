const maximumCharacters = 254;
const atom = "[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+";
const label = '[\\p{L}\\p{N}](?:[\\p{L}\\p{N}-]{0,61}[\\p{L}\\p{N}])?';
const pattern = new RegExp(`^${atom}(?:\\.${atom})*@(?:${label}\\.)+${label}$`, 'u');

// Whether a text has the form of an e-mail address: ASCII before the "@", a name with a dot after.
export function isEmailAddress(text) {
  return text.length <= maximumCharacters && pattern.test(text);
}

// Two addresses are the same account when they differ in letter case only.
export function emailKey(email) {
  return email.toLowerCase();
}

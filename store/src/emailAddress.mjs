const maximumCharacters = 254;
const atom = "[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+";
const label = '[\\p{L}\\p{N}](?:[\\p{L}\\p{N}-]{0,61}[\\p{L}\\p{N}])?';
const pattern = new RegExp(`^${atom}(?:\\.${atom})*@(?:${label}\\.)+${label}$`, 'u');

// Whether a text is a valid email address: ASCII before the "@", and a name with a dot after it.
export function isEmailAddress(text) {
  return text.length <= maximumCharacters && pattern.test(text);
}

// Addresses that differ only in letter case belong to the same account.
export function emailKey(email) {
  return email.toLowerCase();
}

const hex = (character) => `\\u${character.charCodeAt(0).toString(16).padStart(4, '0')}`;

const markup = { "'": '\\u0027', '&': '\\u0026', '<': '\\u003C', '>': '\\u003E' };

// Compact JSON as PHP writes it: slashes escaped, everything outside ASCII as \uXXXX. With
// `escapesMarkup` quotes, ampersands and angle brackets inside texts are escaped too.
export function phpJson(value, { escapesMarkup = false } = {}) {
  const text = JSON.stringify(value)
    .replace(/\//g, '\\/')
    .replace(/[\u0080-\uffff]/g, hex);
  if (!escapesMarkup) return text;
  return text
    .replace(/\\./g, (pair) => (pair === '\\"' ? '\\u0022' : pair))
    .replace(/['&<>]/g, (character) => markup[character]);
}

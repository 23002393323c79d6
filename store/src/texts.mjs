// The store's own texts in the languages of the stores (texts.json).
import { readFileSync } from 'node:fs';

const texts = JSON.parse(readFileSync(new URL('../texts.json', import.meta.url), 'utf8'));

export const languages = Object.freeze(Object.keys(texts));

// The texts in the language of a store, or in English.
export function textsFor(store) {
  return texts[store.langCode] ?? texts.en;
}

// A text with `{name}` replaced by `values.name`, and so on.
export function fill(text, values) {
  return text.replace(/\{(\w+)\}/g, (_all, name) => values[name]);
}

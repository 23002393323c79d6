// The pictures of the books, drawn on request. Each number has its own pattern.
import { createHash } from 'node:crypto';

import { page, pages } from './pages.mjs';
import { encodePng } from './png.mjs';
import { pictureHeaders } from './responseHeaders.mjs';

export const pictureFolder = '/media/catalog/product/';
const placeholderName = 'placeholder';

const width = 120;
const height = 180;
const cell = 20;
const border = 10;
const white = 255;

// The name of a book's picture without its extension, or null.
function pictureName({ cover, number }) {
  if (cover === 'none') return null;
  return cover === 'placeholder' ? placeholderName : number;
}

// The URL of a book's picture in a store's responses, or null. The picture itself may be missing.
export function pictureUrl(book, store) {
  const name = pictureName(book);
  return name && new URL(`${pictureFolder}${name}.png`, store.url).href;
}

// A field of squares within a white border, mirrored from left to right, in shades drawn from the
// name.
function paint(name) {
  const shades = createHash('sha256').update(name).digest();
  const shadeAt = (x, y) => {
    const isBorder = Math.min(x, y, width - 1 - x, height - 1 - y) < border;
    if (isBorder) return white;
    const column = Math.floor((Math.min(x, width - 1 - x) - border) / cell);
    const row = Math.floor((y - border) / cell);
    return shades[row * 3 + column];
  };
  return encodePng({ width, height, shadeAt });
}

// Makes the function `(request) => response` for the pictures of a catalogue; see frame.mjs for
// requests and responses.
export function createPictures(catalogue) {
  const painted = [...catalogue.values()].filter(({ cover }) => cover === 'painted');
  const names = new Set([placeholderName, ...painted.map(pictureName)]);
  return function answer({ method, url }) {
    const [path] = url.split('?');
    const name = path.slice(pictureFolder.length).replace(/\.png$/, '');
    if (!path.endsWith('.png') || !names.has(name)) return page(404, pages.notFound);
    if (method !== 'GET') return page(405, pages.notAllowed);
    return { status: 200, headers: pictureHeaders(), body: paint(name), operation: null };
  };
}

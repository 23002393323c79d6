// The few HTML pages that the platform and the web server before it answer with.
import { pageHeaders } from './responseHeaders.mjs';

function html(title, heading) {
  return (
    `<!doctype html>\n<html><head><title>${title}</title></head>\n` +
    `<body><h1>${heading}</h1></body></html>\n`
  );
}

export const pages = Object.freeze({
  internalError: html('Error 500', 'There has been an error processing your request'),
  notFound: html('404 Not Found', 'The page you requested was not found'),
  tooLarge: html('413 Request Entity Too Large', '413 Request Entity Too Large'),
  notAllowed: html('405 Not Allowed', '405 Not Allowed'),
});

// An answer that is a page and belongs to no operation.
export function page(status, body) {
  return { status, headers: pageHeaders(), body, operation: null };
}

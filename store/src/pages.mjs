// The HTML error pages of the platform and of the web server in front of it.
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

// A response with a page, without an operation.
export function page(status, body) {
  return { status, headers: pageHeaders(), body, operation: null };
}

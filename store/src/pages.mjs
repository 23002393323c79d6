// The few HTML pages that the platform and the web server before it answer with.
function page(title, heading) {
  return `<!doctype html>\n<html><head><title>${title}</title></head>\n<body><h1>${heading}</h1></body></html>\n`;
}

export const pages = Object.freeze({
  internalError: page('Error 500', 'There has been an error processing your request'),
  notFound: page('404 Not Found', 'The page you requested was not found'),
  tooLarge: page('413 Request Entity Too Large', '413 Request Entity Too Large'),
  notAllowed: page('405 Not Allowed', '405 Not Allowed'),
});

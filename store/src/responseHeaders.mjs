// The platform's response headers as [name, value] pairs, in order and in its letter case (HTTP/2
// delivers every name in lower case).
import { randomBytes } from 'node:crypto';

const secondsPerHour = 3600;
const secondsPerTenYears = 315360000;
const secondsPerYear = 31536000;

const protection = [
  ['X-Content-Type-Options', 'nosniff'],
  ['X-XSS-Protection', '1; mode=block'],
  ['X-Frame-Options', 'SAMEORIGIN'],
];

function dateIn(seconds) {
  return new Date(Date.now() + seconds * 1000).toUTCString();
}

function cookie(name, value, lifetime, attributes) {
  const expires = dateIn(lifetime);
  return ['Set-Cookie', `${name}=${value}; expires=${expires}; Max-Age=${lifetime}; ${attributes}`];
}

function sessionCookies(host) {
  const domain = host ? ` domain=${host};` : '';
  return [
    cookie(
      'PHPSESSID',
      randomBytes(13).toString('hex'),
      secondsPerHour,
      `path=/;${domain} secure; HttpOnly; SameSite=Lax`,
    ),
    cookie(
      'private_content_version',
      randomBytes(16).toString('hex'),
      secondsPerTenYears,
      'path=/; secure; SameSite=Lax',
    ),
  ];
}

function notCached(line) {
  return [
    ['Pragma', 'no-cache'],
    ['Cache-Control', line.cacheControl],
    ['Expires', dateIn(-secondsPerYear)],
  ];
}

// Headers of a GraphQL response. Without a `cacheId` (null) its header is omitted.
export function answerHeaders({ request, line, settings, cacheId }) {
  const posted = request.method === 'POST';
  return [
    ['Content-Type', 'application/json'],
    ...(posted ? notCached(line) : []),
    ...(cacheId ? [[settings.cacheIdHeader, cacheId]] : []),
    ...(posted && settings.sessionCookies ? sessionCookies(request.hostName) : []),
    ...protection,
  ];
}

export function pictureHeaders() {
  return [['Content-Type', 'image/png'], ['Cache-Control', 'public, max-age=3600'], ...protection];
}

export function pageHeaders() {
  return [['Content-Type', 'text/html; charset=UTF-8'], ...protection];
}

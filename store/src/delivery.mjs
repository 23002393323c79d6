// Sends a response over HTTP/1.1 or HTTP/2, complete or damaged as a fault requests.
import { Readable, pipeline } from 'node:stream';
import { setTimeout as wait } from 'node:timers/promises';
import { createGzip } from 'node:zlib';

const endlessPiece = Buffer.alloc(16384, ' ');

function acceptsGzip(header) {
  return (header ?? '').split(',').some((choice) => {
    const [name, ...parameters] = choice.toLowerCase().replace(/\s/g, '').split(';');
    return name === 'gzip' && !parameters.some((parameter) => /^q=0(\.0*)?$/.test(parameter));
  });
}

function* bodyPieces(body, endless) {
  yield Buffer.from(body);
  while (endless) yield endlessPiece;
}

function encoded(pieces, gzip) {
  const source = Readable.from(pieces);
  return gzip ? pipeline(source, createGzip(), () => {}) : source;
}

async function* dripped(pieces, { bytes, intervalMilliseconds }, signal) {
  for await (const piece of pieces) {
    for (let start = 0; start < piece.length; start += bytes) {
      yield piece.subarray(start, start + bytes);
      await wait(intervalMilliseconds, undefined, { signal });
    }
  }
}

async function* firstBytes(pieces, count) {
  let left = count;
  for await (const piece of pieces) {
    if (left > 0) yield piece.subarray(0, left);
    left -= piece.length;
    if (left <= 0) return;
  }
}

// Resolves when the piece has been sent, rejects when the client has left.
function write(response, piece, signal) {
  return new Promise((resolve, reject) => {
    const gone = () => reject(signal.reason);
    signal.throwIfAborted();
    signal.addEventListener('abort', gone, { once: true });
    response.write(piece, (error) => {
      signal.removeEventListener('abort', gone);
      if (error) reject(error);
      else resolve();
    });
  });
}

export function closeConnection(request) {
  if (request.httpVersionMajor === 2) request.stream.session?.destroy();
  else request.socket.destroy();
}

function writeHead(response, { status, headers }, gzip) {
  response.statusCode = status;
  const all = gzip
    ? [...headers, ['Content-Encoding', 'gzip'], ['Vary', 'Accept-Encoding']]
    : headers;
  const names = new Set(all.map(([name]) => name));
  for (const name of names) {
    const values = all.filter(([other]) => other === name).map(([, value]) => value);
    response.setHeader(name, values.length === 1 ? values[0] : values);
  }
}

async function send(request, response, answer, fault, signal) {
  await wait(fault.delayMilliseconds ?? 0, undefined, { signal });
  if (fault.drop) return closeConnection(request);
  if (answer.body === null) return writeHeadOnly(response, answer);

  const gzip = fault.gzip ?? acceptsGzip(request.headers['accept-encoding']);
  const cuts = fault.cutAfterBytes !== undefined;
  writeHead(response, answer, gzip);
  response.flushHeaders();
  let pieces = encoded(bodyPieces(answer.body, fault.endless), gzip);
  if (fault.drip) pieces = dripped(pieces, fault.drip, signal);
  if (cuts) pieces = firstBytes(pieces, fault.cutAfterBytes);
  for await (const piece of pieces) await write(response, piece, signal);
  if (cuts) closeConnection(request);
  else response.end();
}

function writeHeadOnly(response, answer) {
  writeHead(response, answer, false);
  response.end();
}

// Sends the response. Rejects when the client leaves before the end (see hasClientLeft).
export async function deliver(request, response, answer, fault) {
  const client = new AbortController();
  response.once('close', () => client.abort());
  await send(request, response, answer, fault, client.signal);
}

const leavingCodes = new Set([
  'ECONNRESET',
  'EPIPE',
  'ERR_HTTP2_INVALID_STREAM',
  'ERR_STREAM_DESTROYED',
  'ERR_STREAM_PREMATURE_CLOSE',
]);

// Whether an error only means that the client has left, which is not a failure of the service.
export function hasClientLeft(error) {
  return error.name === 'AbortError' || leavingCodes.has(error.code);
}

// A server for the tests of the host's HTTP. The path selects a canned response, which may be one
// that no real server sends.
// Usage: node https-server.mjs CERTIFICATE KEY
// Prints {"http1":PORT,"http2":PORT,"mute":PORT} when it listens (the last port accepts connections
// and sends nothing); ends when its standard input is closed.

import { readFileSync } from 'node:fs';
import http2 from 'node:http2';
import net from 'node:net';
import tls from 'node:tls';
import zlib from 'node:zlib';

const credentials = { cert: readFileSync(process.argv[2]), key: readFileSync(process.argv[3]) };
const MAX_DRIPS = 300;

let connections = 0;
let dropNext = false;

const compressed = {
  gzip: zlib.gzipSync('compressed'),
  deflate: zlib.deflateSync('compressed'),
  br: zlib.brotliCompressSync('compressed'),
  // "compressed" as one raw block
  zstd: Buffer.concat([Buffer.from('28b52ffd200a510000', 'hex'), Buffer.from('compressed')]),
};

function answer(body, lines = [], status = '200 OK') {
  const head = [`HTTP/1.1 ${status}`, `Content-Length: ${body.length}`, ...lines, '', ''];
  return Buffer.concat([Buffer.from(head.join('\r\n')), Buffer.from(body)]);
}

function repeat(socket, piece, milliseconds) {
  let left = MAX_DRIPS;
  const timer = setInterval(() => {
    socket.write(piece);
    if (--left === 0) socket.destroy();
  }, milliseconds);
  socket.on('close', () => clearInterval(timer));
}

// Sends as fast as the client reads, without end.
function flood(socket, piece) {
  const fill = () => {
    while (!socket.destroyed && socket.write(piece));
  };
  socket.on('drain', fill);
  fill();
}

const chunk = (text) => `${text.length.toString(16)}\r\n${text}\r\n`;

// The function of each path: it gets the socket and the whole request as bytes.
const paths = {
  '/echo': (socket, request) => socket.write(answer(request)),
  '/connection': (socket) =>
    socket.write(
      answer(JSON.stringify({ number: socket.number, resumed: socket.isSessionReused() })),
    ),
  '/close': (socket) => socket.end(answer('last', ['Connection: close'])),
  '/close-silently': (socket) => socket.end(answer('last')),
  '/drop-next': (socket) => {
    dropNext = true;
    socket.write(answer('kept'));
  },
  '/headers': (socket) =>
    socket.write(
      answer('', [
        'X-MaGeNto-Cache-ID:  \t abc \t ',
        'X-Twice: first',
        'x-twice: second',
        'X-Empty:',
      ]),
    ),
  '/early': (socket) => {
    socket.write('HTTP/1.1 103 Early Hints\r\nX-Early: yes\r\n\r\n');
    socket.write(answer('late', ['X-Late: yes']));
  },
  '/early-only': (socket) => socket.end('HTTP/1.1 103 Early Hints\r\nX-Early: yes\r\n\r\n'),
  '/trailer': (socket) =>
    socket.write(
      `HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n${chunk('body')}0\r\nX-Trailer: yes\r\n\r\n`,
    ),
  '/error': (socket) => socket.write(answer('sorry', [], '500 Internal Server Error')),
  '/redirect': (socket) => socket.write(answer('', ['Location: /echo'], '302 Found')),
  '/cookie': (socket) => socket.write(answer('', ['Set-Cookie: session=1; Path=/'])),
  '/cut': (socket) => socket.end('HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf'),
  '/silent': () => {},
  '/stall': (socket) => socket.write('HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf'),
  '/huge': (socket) => socket.write('HTTP/1.1 200 OK\r\nContent-Length: 5000000000\r\n\r\n.'),
  '/drip': (socket) => {
    socket.write('HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n');
    repeat(socket, '.', 100);
  },
  '/drip-headers': (socket) => {
    socket.write('HTTP/1.1 200 OK\r\n');
    repeat(socket, 'X-Drip: 1\r\n', 100);
  },
  '/endless': (socket) => {
    socket.write('HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n');
    flood(socket, chunk('.'.repeat(65536)));
  },
  '/endless-headers': (socket) => {
    socket.write('HTTP/1.1 200 OK\r\n');
    flood(socket, `X-More: ${'.'.repeat(1000)}\r\n`);
  },
  '/bomb': (socket) =>
    socket.write(answer(zlib.gzipSync(Buffer.alloc(64 << 20)), ['Content-Encoding: gzip'])),
  '/not-http': (socket) => socket.end('220 mail.example ready\r\n'),
};
for (const [encoding, body] of Object.entries(compressed)) {
  paths[`/${encoding}`] = (socket) => socket.write(answer(body, [`Content-Encoding: ${encoding}`]));
}

// The length of the first request in `bytes`, or 0 while it is incomplete.
function requestLength(bytes) {
  const headEnd = bytes.indexOf('\r\n\r\n');
  if (headEnd < 0) return 0;
  const match = /^content-length: (\d+)/im.exec(bytes.toString('latin1', 0, headEnd));
  const length = headEnd + 4 + (match ? Number(match[1]) : 0);
  return bytes.length < length ? 0 : length;
}

function serve(socket, request) {
  if (dropNext && socket.served > 0) {
    dropNext = false;
    socket.destroy();
    return;
  }
  socket.served += 1;
  const path = request.toString('latin1').split(' ')[1].split('?')[0];
  const handler = paths[path] ?? (() => socket.write(answer('unknown path', [], '404 Not Found')));
  handler(socket, request);
}

function onConnection(socket) {
  let bytes = Buffer.alloc(0);
  socket.number = ++connections;
  socket.served = 0;
  socket.on('error', () => socket.destroy());
  socket.on('data', (piece) => {
    bytes = Buffer.concat([bytes, piece]);
    let length = requestLength(bytes);
    while (length > 0) {
      serve(socket, bytes.subarray(0, length));
      bytes = bytes.subarray(length);
      length = requestLength(bytes);
    }
  });
}

function onStream(stream, headers) {
  const pieces = [];
  stream.on('error', () => {});
  stream.on('data', (piece) => pieces.push(piece));
  stream.on('end', () => {
    stream.respond({ ':status': 200, 'X-Protocol': 'h2' });
    stream.end(JSON.stringify({ headers, body: Buffer.concat(pieces).toString() }));
  });
}

const listen = (server) =>
  new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => resolve(server.address().port));
  });

const http1 = await listen(tls.createServer(credentials, onConnection));
const http2Server = http2.createSecureServer(credentials);
http2Server.on('stream', onStream);
const mute = await listen(net.createServer((socket) => socket.on('error', () => {})));
console.log(JSON.stringify({ http1, http2: await listen(http2Server), mute }));
process.stdin.on('end', () => process.exit()).resume();

// Writes greyscale PNG pictures.
import { deflateSync } from 'node:zlib';

const signature = Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);
const bitsPerPixel = 8;
const grey = 0;
const noFilter = 0;

// PNG's checksum, computed bit by bit because the pictures are small.
function checksum(bytes) {
  let rest = 0xffffffff;
  for (const byte of bytes) {
    rest ^= byte;
    for (let bit = 0; bit < 8; bit += 1) rest = (rest >>> 1) ^ (rest & 1 ? 0xedb88320 : 0);
  }
  return (rest ^ 0xffffffff) >>> 0;
}

function unsigned32(value) {
  const bytes = Buffer.alloc(4);
  bytes.writeUInt32BE(value);
  return bytes;
}

function chunk(type, content) {
  const checked = Buffer.concat([Buffer.from(type), content]);
  return Buffer.concat([unsigned32(content.length), checked, unsigned32(checksum(checked))]);
}

// The bytes of a picture; `shadeAt(x, y)` gives the grey level of a pixel, from 0 (black) to 255.
export function encodePng({ width, height, shadeAt }) {
  const rows = Array.from({ length: height }, (_row, y) => [
    noFilter,
    ...Array.from({ length: width }, (_pixel, x) => shadeAt(x, y)),
  ]);
  const header = [...unsigned32(width), ...unsigned32(height), bitsPerPixel, grey, 0, 0, 0];
  return Buffer.concat([
    signature,
    chunk('IHDR', Buffer.from(header)),
    chunk('IDAT', deflateSync(Buffer.from(rows.flat()))),
    chunk('IEND', Buffer.alloc(0)),
  ]);
}

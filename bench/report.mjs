import { writeFileSync } from 'node:fs';
import { join } from 'node:path';

import { nameOf } from './cases.mjs';

const microseconds = (nanoseconds) => (nanoseconds / 1000).toFixed(1);

function printTable(header, rows) {
  const widths = header.map((title, column) =>
    Math.max(title.length, ...rows.map((row) => row[column].length)),
  );
  for (const row of [header, ...rows]) {
    const cells = row.map((cell, column) =>
      column === 0 ? cell.padEnd(widths[column]) : cell.padStart(widths[column]),
    );
    console.log(`  ${cells.join('  ')}`);
  }
}

export function printParts(parts) {
  console.log('\nParts of the library, in microseconds of processor time:\n');
  printTable(
    ['part', 'time'],
    parts.map(({ name, nanoseconds }) => [name, (nanoseconds / 1000).toFixed(2)]),
  );
}

export function printComparison(results) {
  console.log('\nWhole operations against the bare program, medians in microseconds:\n');
  printTable(
    [
      'operation, connection, authorities',
      'library',
      'bare',
      'ratio',
      'middle half',
      'to reach',
      'pairs',
      '',
    ],
    results.map((result) => [
      nameOf(result),
      microseconds(result.library),
      microseconds(result.bare),
      result.ratio.toFixed(3),
      result.quartiles.map((value) => value.toFixed(3)).join(' - '),
      result.limit.toFixed(2),
      String(result.pairs),
      result.ratio <= result.limit ? 'reached' : 'not reached',
    ]),
  );
}

const escaped = (text) => text.replace(/[&<>]/g, (character) => `&#${character.charCodeAt(0)};`);

// One bar per result, with a line at 1, a mark at the target, and the middle half.
function plot(results) {
  const [left, row, width] = [250, 44, 900];
  const most = Math.max(...results.flatMap(({ ratio, limit }) => [ratio, limit])) * 1.12;
  const x = (value) => (left + (value / most) * (width - left)).toFixed(1);
  const height = 60 + results.length * row;
  const bars = results.map((result, index) => {
    const y = 44 + index * row;
    const [low, high] = result.quartiles;
    const colour = result.ratio <= result.limit ? '#3b7d4f' : '#b5533c';
    return `
  <text x="8" y="${y + 16}">${escaped(nameOf(result))}</text>
  <rect x="${left}" y="${y}" width="${(x(result.ratio) - left).toFixed(1)}" height="24" fill="${colour}"/>
  <line x1="${x(low)}" x2="${x(high)}" y1="${y + 12}" y2="${y + 12}" stroke="#222" stroke-width="2"/>
  <line x1="${x(result.limit)}" x2="${x(result.limit)}" y1="${y - 5}" y2="${y + 29}" stroke="#222" stroke-dasharray="3 2"/>
  <text x="${left + 6}" y="${y + 16}" fill="#fff">${result.ratio.toFixed(2)} (${result.limit})</text>`;
  });
  return `<svg xmlns="http://www.w3.org/2000/svg" width="${width + 20}" height="${height}" font-family="sans-serif" font-size="13">
  <rect width="100%" height="100%" fill="#fff"/>
  <text x="8" y="22" font-size="15">Time through the library as a ratio to the bare program (dashed: to reach)</text>${bars.join('')}
  <line x1="${x(1)}" x2="${x(1)}" y1="34" y2="${height - 8}" stroke="#888"/>
</svg>
`;
}

// Writes results.json and ratios.svg into `folder`.
export function writeFiles(folder, { machine, parts, results }) {
  const record = JSON.stringify({ schema: 1, machine, parts, results }, null, 2);
  writeFileSync(join(folder, 'results.json'), `${record}\n`);
  writeFileSync(join(folder, 'ratios.svg'), plot(results));
  console.log(`\nWritten: ${join(folder, 'results.json')}, ${join(folder, 'ratios.svg')}`);
}

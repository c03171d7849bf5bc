import assert from 'node:assert/strict';
import { test } from 'node:test';

import { glyphRows } from '../../src/cards/font.js';
import { angleOf, arc, horn, round, valueAt } from '../../src/cards/geometry.js';
import { dotsOfRow, glassBox } from '../../src/cards/glass.js';
import { encoderAngle } from '../../src/cards/keypad.js';
import { sparkPath } from '../../src/cards/knob.js';
import { entriesOf } from '../../src/cards/turns.js';
import { formatNumber, formatValue } from '../../src/widgets/format.js';
import { channel } from './kit.js';

// The dots of a row, as they stand on the glass.
function picture(text: string): string[] {
  const dots = new Set(dotsOfRow(text, 0).match(/(?<=M)\d+ \d+/g));
  return Array.from({ length: 8 }, (_, y) =>
    Array.from({ length: text.length * 6 - 1 }, (_, x) => (dots.has(`${x} ${y}`) ? '#' : '.')).join(
      '',
    ),
  );
}

test('characters are drawn dot by dot, with one column between them', () => {
  assert.deepEqual(picture('Ag1'), [
    '.###..........#..',
    '#...#........##..',
    '#...#..####...#..',
    '#...#.#...#...#..',
    '#####.#...#...#..',
    '#...#..####...#..',
    '#...#.....#..###.',
    '.......###.......',
  ]);
});

test('every printable character has its own dots', () => {
  assert.equal(glyphRows.length, 95);
  assert.ok(glyphRows.every((rows) => rows.length === 8 && rows.every((bits) => bits < 32)));
  assert.equal(new Set(glyphRows.map(String)).size, 95);
});

test('what the glass cannot print is a blank', () => {
  assert.equal(dotsOfRow('\u00e9', 0), '');
});

test('the second row stands nine dots below the first', () => {
  const bar = [0, 1, 2, 3, 4].map((x) => `M${x} 12h0.84v0.84h-0.84z`);
  assert.equal(dotsOfRow('-', 1), bar.join(''));
});

test('a glass of 4 rows of 20 is 119 by 35 dots and its frame', () => {
  assert.equal(glassBox(4, 20), '-3 -3 125 41');
});

test('a horn goes from left to right, the middle is up', () => {
  assert.equal(angleOf(0, 0, 255, horn), -90);
  assert.equal(angleOf(127.5, 0, 255, horn), 0);
  assert.equal(angleOf(255, 0, 255, horn), 90);
  assert.equal(angleOf(300, 0, 255, horn), 90);
});

test('a hand on the dial means the value below it', () => {
  assert.equal(valueAt(-10, 0, 0, 255, horn), 0);
  assert.equal(valueAt(0, -10, 0, 255, horn), 127.5);
  assert.equal(valueAt(10, 0, 0, 255, horn), 255);
  assert.equal(valueAt(10, 3, 0, 255, horn), 255);
  assert.equal(valueAt(0, -10, -100, 100, round), 0);
});

test('an arc goes the long way where it has to', () => {
  assert.equal(arc(-90, 90, 40), 'M-40 0A40 40 0 0 1 40 0');
  assert.equal(arc(-135, 135, 40), 'M-28.28 28.28A40 40 0 1 1 28.28 28.28');
});

test('a spark line has a step for each value', () => {
  const points = [
    { time: 0, value: 0 },
    { time: 15_000, value: 255 },
  ];
  assert.equal(sparkPath(points, 0, 255, 30_000, 15_000), 'M50 22.5H100V1.5H100');
  assert.equal(sparkPath([], 0, 255, 30_000, 15_000), '');
});

test('a spark line ends now, and says nothing of when nothing was known', () => {
  const point = { time: 60_000, value: 255 };
  assert.equal(sparkPath([point], 0, 255, 30_000, 75_000), 'M50 1.5H100');
  assert.equal(sparkPath([point], 0, 255, 30_000, 120_000), 'M0 1.5H100');
  assert.equal(sparkPath([point], 0, 255, 30_000, 59_000), 'M100 1.5H100');
});

test('a step of the encoder is a twenty-fourth of a turn', () => {
  assert.equal(encoderAngle(-2), -30);
});

test('steps in one direction are one entry', () => {
  const event = (type: 'right' | 'press', code: number | null) => ({
    seq: 1,
    time: '',
    card: '8',
    event_type: type,
    code,
  });
  const events = [event('right', null), event('right', null), event('press', 5), event('press', 5)];
  assert.deepEqual(
    entriesOf(events).map(({ count }) => count),
    [2, 1, 1],
  );
});

test('a value is read with its decimals, and with up to two where nobody has said how many', () => {
  const level = (value: number, decimals?: number | null) =>
    formatValue(
      channel('F.3', { type: 'level', value, ...(decimals === undefined ? {} : { decimals }) }),
    );
  assert.equal(level(2.5), '2.5');
  assert.equal(level(2.5, null), '2.5');
  assert.equal(level(2.5, 2), '2.50');
  assert.equal(level(2.504, 0), '3');
  assert.equal(level(12, 1), '12.0');
  assert.equal(formatNumber(-0.5, 2), '\u22120.50');
  assert.equal(formatNumber(-0.04, 1), '0.0');
  assert.equal(formatNumber(-0.001), '0');
});

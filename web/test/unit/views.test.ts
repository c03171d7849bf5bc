import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { JournalEntry, Point } from '../../src/api/Past.js';
import {
  commandsIn,
  completed,
  completions,
  emptyConsole,
  linesBefore,
  withAnswer,
  withLine,
} from '../../src/state/console.js';
import { emptyJournal, filtered, journalAfter, wholeJournal } from '../../src/state/journal.js';
import {
  heldAt,
  heldCurve,
  moved,
  noPlots,
  plotsAfter,
  windowOf,
  withChannels,
  withHistory,
  zoomed,
} from '../../src/state/plots.js';
import { csvOf } from '../../src/views/plots/csv.js';
import { saidOf } from '../../src/views/journal/said.js';
import { numberIn } from '../../src/views/settings/fields.js';
import { card, channel } from './kit.js';

const at = (time: number, value: number): Point => [time, value, value, value];
const level = (value: number, since: string) =>
  channel('F.3', { type: 'level', value, raw: value, since });

test('a live window ends now; what reaches now while it is moved is live again', () => {
  assert.deepEqual(windowOf({ span: 60, end: null }, 1000), { from: 940, to: 1000 });
  assert.deepEqual(windowOf({ span: 60, end: 500 }, 1000), { from: 440, to: 500 });
  assert.deepEqual(moved({ from: 9_000, to: 19_000 }, -5000, 19_000), {
    span: 10_000,
    end: 14_000,
  });
  assert.deepEqual(moved({ from: 4_000, to: 14_000 }, 6000, 19_000), { span: 10_000, end: null });
});

test('the moment under the pointer stays while the window is zoomed', () => {
  const window = { from: 0, to: 100_000 };
  assert.deepEqual(zoomed(window, 0.5, 25_000, 1e9), { span: 50_000, end: 62_500 });
  assert.deepEqual(zoomed(window, 0.5, 100_000, 100_000), { span: 50_000, end: null });
});

test('values that come are behind the history, those of others are not kept', () => {
  let plots = withChannels(noPlots, ['F.3']);
  plots = plotsAfter(plots, [level(7, '1970-01-01T00:00:05.000Z'), channel('5.0')]);
  plots = withHistory(plots, { channel: 'F.3', unit: null, step_ms: 0, points: [at(1000, 3)] });
  assert.deepEqual(plots.curves, { 'F.3': [at(1000, 3), at(5000, 7)] });
  assert.equal(plotsAfter(plots, [level(7, '1970-01-01T00:00:05.000Z')]), plots);
  assert.deepEqual(withChannels(plots, []).curves, {});
});

test('a curve that is gathered for long fills its window, and keeps what stood out in it', () => {
  const begin = Date.parse('2026-11-21T12:00:00.000Z');
  let plots = withChannels({ ...noPlots, span: 600_000 }, ['F.3']);
  const change = (step: number) =>
    level(step === 34 ? 250 : step % 2, new Date(begin + step * 60).toJSON());
  for (let step = 0; step < 13_000; ++step) plots = plotsAfter(plots, [change(step)]); // 13 min
  const curve = plots.curves['F.3'] ?? [];
  assert.ok(curve.length <= 6000, String(curve.length));
  assert.equal(curve[0]?.[0], begin);
  const spike = curve.find(([, , , most]) => most === 250);
  assert.equal(Math.floor((spike?.[0] ?? 0) / 1200), Math.floor((begin + 2000) / 1200));
  assert.equal(spike?.[2], 0);
  const apart = curve.slice(1).map(([time], at) => time - (curve[at]?.[0] ?? 0));
  assert.ok(Math.max(...apart) <= 1200); // a step of ten minutes in 500
  const [, mean] = heldAt(curve, begin + 300_000) ?? [0, 0];
  assert.equal(mean, 0.5);
});

test('what is far behind the window is not kept for ever', () => {
  let plots = withChannels({ ...noPlots, span: 10_000 }, ['F.3']);
  for (let step = 0; step < 7000; ++step)
    plots = plotsAfter(plots, [level(step % 7, new Date(step * 20).toJSON())]);
  assert.ok((plots.curves['F.3']?.[0]?.[0] ?? 0) >= 80_000);
});

test('whoever looks at the past is not pushed out of it by what comes', () => {
  let plots = withChannels({ ...noPlots, end: 2000 }, ['F.3']);
  plots = withHistory(plots, { channel: 'F.3', unit: null, step_ms: 0, points: [at(1000, 3)] });
  assert.equal(plotsAfter(plots, [level(7, '1970-01-01T00:00:05.000Z')]), plots);
});

test('a value holds until the next, and what is not known is not drawn', () => {
  const points = [at(1000, 3), at(5000, 7)];
  assert.equal(heldAt(points, 999), null);
  assert.deepEqual(heldAt(points, 4999), at(1000, 3));
  const window = { from: 2000, to: 9000 };
  assert.deepEqual(heldCurve(points, level(7, '1970-01-01T00:00:05.000Z'), window, 9000), [
    ...points,
    at(9000, 7),
  ]);
  const still = level(4, '1970-01-01T00:00:01.000Z');
  assert.deepEqual(heldCurve([], still, window, 9000), [at(2000, 4), at(9000, 4)]);
  assert.deepEqual(heldCurve([], { ...still, known: false }, window, 9000), []);
});

test('CSV has a row a change, and no name is taken for a formula', () => {
  const column = { id: 'F.3', name: '=1+1, "x"', unit: 'V', points: [at(1000, 3), at(5000, 7.5)] };
  assert.equal(
    csvOf([column], { from: 2000, to: 9000 }),
    'time,channel,name,mean,least,most,unit\r\n' +
      '1970-01-01T00:00:02.000Z,F.3,"\'=1+1, ""x""",3,3,3,V\r\n' +
      '1970-01-01T00:00:05.000Z,F.3,"\'=1+1, ""x""",7.5,7.5,7.5,V\r\n',
  );
});

test('HELP gives the commands, and what is typed becomes one of them', () => {
  const commands = commandsIn([
    '--Driver commands--',
    ' - POLLSTATE          shows polling states',
    ' - POLLON:x           activates polling on the card at address x  (x=0..F)',
    ' - SETSCpc:x=vv       sets end position parameters',
  ]);
  assert.deepEqual(
    commands.map(({ stem }) => stem),
    ['POLLSTATE', 'POLLON:', 'SETSC'],
  );
  assert.equal(completed(completions(commands, 'po'), 'po'), 'POLL');
  assert.equal(completed(completions(commands, 'POLLO'), 'POLLO'), 'POLLON:');
  assert.deepEqual(
    completions(commands, 'POLLON:3').map(({ form }) => form),
    ['POLLON:x'],
  );
  assert.deepEqual(completions(commands, ''), []);
});

test('the console remembers lines, each once, and puts answers to theirs', () => {
  let log = withLine(withLine(withLine(emptyConsole, 'HELP'), 'DRVVER'), 'HELP');
  assert.deepEqual(linesBefore(log), ['HELP', 'DRVVER']);
  log = withAnswer(log, 2, { answer: ['CIA: DRIVER VERSION 1.20'] });
  assert.deepEqual(
    log.said.map(({ answer }) => answer),
    [null, ['CIA: DRIVER VERSION 1.20'], null],
  );
});

const entry = (seq: number, kind: string, text: string): JournalEntry => ({
  seq,
  time: '2026-11-21T12:00:00.000Z',
  kind,
  text,
  by: seq === 2 ? 'operator' : null,
});

test('the journal is filtered by kind and by all words, the newest first', () => {
  const entries = [entry(1, 'hub', 'started'), entry(2, 'command', '5.0 (Lamp): on')];
  const log = wholeJournal(emptyJournal, { entries, lost: 0 });
  const seqs = (kind: string, words: string) =>
    filtered(log.entries, { kind, words }).map(({ seq }) => seq);
  assert.deepEqual(seqs('', ''), [2, 1]);
  assert.deepEqual(seqs('hub', ''), [1]);
  assert.deepEqual(seqs('', 'OPERATOR lamp'), [2]);
  assert.deepEqual(seqs('hub', 'lamp'), []);
});

test('a command is said by name and id', () => {
  const cards = {
    5: card('5', { name: 'Relays', channels: [channel('5.0', { name: 'Lamp' }), channel('5.1')] }),
    E: card('E', { kind: 'lcd' }),
  };
  const said = (line: string, kind = 'command') => saidOf(entry(1, kind, line), cards);
  assert.equal(said('5.0 (Lamp): on'), 'Lamp (5.0) on');
  assert.equal(said('5.0: on'), 'Lamp (5.0) on');
  assert.equal(said('5.1: off for 500 ms'), 'Line 1 (5.1) off for 500 ms');
  assert.equal(said('0.3: 12.5 within 2000 ms'), '0.3 12.5 within 2000 ms');
  assert.equal(said('5.0 (A (b), c): on, 5.1: off'), 'A (b), c (5.0) on, Line 1 (5.1) off');
  assert.equal(said('E: light on'), 'Display (E): light on');
  assert.equal(said('9: code 434F'), '9: code 434F');
  assert.equal(said('5.0 of shed: ON'), '5.0 of shed: ON');
  assert.equal(said('5.0: on', 'hub'), '5.0: on');
});

test('entries that passed unseen are counted as lost', () => {
  const log = wholeJournal(emptyJournal, { entries: [entry(1, 'hub', 'started')], lost: 0 });
  const next = journalAfter(log, {
    entries: [entry(5, 'hub', 'a'), entry(6, 'hub', 'b')],
    lost: 0,
  });
  assert.equal(next.lost, 3);
  assert.deepEqual(
    next.entries.map(({ seq }) => seq),
    [1, 5, 6],
  );
  assert.equal(journalAfter(next, { entries: [], lost: 0 }), next);
});

test('an empty field is as usual; a comma is a point', () => {
  assert.equal(numberIn(' '), null);
  assert.equal(numberIn('x'), NaN);
  assert.equal(numberIn('2,5'), 2.5);
  assert.equal(numberIn('\u221290'), -90);
});

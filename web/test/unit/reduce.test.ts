import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { BoardRow, Changes, KeyEvent } from '../../src/api/Shapes.js';
import type { Action } from '../../src/state/Actions.js';
import { reduce } from '../../src/state/reduce.js';
import { isStale, knownTill } from '../../src/state/select.js';
import { beginning, type State } from '../../src/state/State.js';
import { bus, card, channel, noChanges, snapshot } from './kit.js';

function after(...actions: Action[]): State {
  return actions.reduce(reduce, beginning);
}

const take = (change: Partial<Changes>, now = 0): Action => ({
  type: 'changes',
  changes: { ...noChanges, ...change },
  now,
});

const subscribed: Action = {
  type: 'snapshot',
  snapshot: snapshot([card('3'), card('5')]),
};

const level = (value: number, since: number) =>
  channel('F.0', { type: 'level', value, since: new Date(since).toJSON() });

const trailOf = (state: State) => state.trails['F.0']?.map(({ value }) => value);

const key = (seq: number, type: KeyEvent['event_type'], code: number | null = null): KeyEvent => ({
  seq,
  time: '2026-11-21T12:00:00.000Z',
  card: '8',
  event_type: type,
  code,
});

test('a change of a channel replaces it, and leaves all others the same objects', () => {
  const before = after(subscribed);
  const next = reduce(before, take({ channels: [channel('5.1', { value: true })] }));
  assert.equal(next.cards['5']?.channels[1]?.value, true);
  assert.equal(next.cards['5'].channels[0], before.cards['5']?.channels[0]);
  assert.equal(next.cards['3'], before.cards['3']);
  assert.equal(before.cards['5']?.channels[1]?.value, false);
});

test('a change of a card that nobody knows is passed over', () => {
  const next = after(subscribed, take({ channels: [channel('C.1')] }));
  assert.equal(next.cards['C'], undefined);
});

test('a card that a later snapshot leaves out is missing', () => {
  const next = after(subscribed, { type: 'snapshot', snapshot: snapshot([card('5')]) });
  assert.equal(next.cards['3']?.state, 'absent');
  assert.equal(next.cards['5']?.state, 'present');
});

test('cards are kept as from before while a hub that began anew has told of none', () => {
  const greeting = { ...bus, daemon: { ...bus.daemon, state: 'waiting' as const } };
  const begun: Action = { type: 'snapshot', snapshot: snapshot([], { bus: greeting }) };
  const open: Action = { type: 'connection', state: 'open', nextTry: null, heard: null, now: 1 };
  const before = after(open, subscribed, begun, take({ bus }));
  assert.deepEqual(
    Object.values(before.cards).map(({ state }) => state),
    ['present', 'present'],
  );
  assert.equal(isStale(before), true);
  const next = reduce(before, take({ cards: [card('5')] }));
  assert.equal(isStale(next), false);
  assert.equal(next.cards['5']?.state, 'present');
  assert.equal(next.cards['3']?.state, 'absent');
  assert.equal(reduce(before, { type: 'counted' }).cards['5']?.state, 'absent');
});

test('what is shown is from when the hub was heard last, not from when that was noticed', () => {
  const lost: Action = {
    type: 'connection',
    state: 'lost',
    nextTry: 1,
    heard: 40_000,
    now: 60_000,
  };
  assert.equal(after(subscribed, lost).lostSince, 40_000);
});

test('keys of a hub that began anew are not taken for old ones', () => {
  const again: Action = { type: 'snapshot', snapshot: snapshot([card('8')], { seq: 2 }) };
  const next = after(
    subscribed,
    take({ events: [key(11, 'press', 5)] }),
    again,
    take({ events: [key(3, 'press', 6)] }),
  );
  assert.deepEqual(
    next.keys['8']?.map(({ code }) => code),
    [6],
  );
});

test('another bus behind the same address begins anew', () => {
  const other = snapshot([card('5')], { bus: { ...bus, id: '00000001' } });
  const next = after(subscribed, { type: 'snapshot', snapshot: other });
  assert.deepEqual(Object.keys(next.cards), ['5']);
});

test('the time of a loss stays through all tries, till the connection is back', () => {
  const lost = (now: number): Action => ({
    type: 'connection',
    state: 'lost',
    nextTry: 1000,
    heard: null,
    now,
  });
  const trying: Action = {
    type: 'connection',
    state: 'connecting',
    nextTry: null,
    heard: null,
    now: 60,
  };
  const open: Action = { type: 'connection', state: 'open', nextTry: null, heard: null, now: 90 };
  assert.equal(after(lost(50), trying, lost(70)).lostSince, 50);
  assert.equal(after(lost(50)).nextTry, 1050);
  assert.equal(after(lost(50), open).lostSince, null);
});

test('events come newest first, once, and lost ones are counted', () => {
  const press = key(11, 'press', 5);
  const release = key(12, 'release', 5);
  const next = after(subscribed, take({ events: [press, release] }), take({ events: [release] }));
  assert.deepEqual(next.keys['8'], [release, press]);
  const missed = [subscribed, take({ lost: 7 }), take({ lost: 2 })];
  assert.equal(after(...missed).missed, 9);
  assert.equal(after(...missed, { type: 'missed-seen' }, take({ lost: 1 })).missed, 1);
});

test('the encoder stands where its steps have led', () => {
  const steps = [key(11, 'right'), key(12, 'right'), key(13, 'left'), key(14, 'right')];
  assert.equal(after(subscribed, take({ events: steps })).turns['8'], 2);
});

test('a level keeps its way of the last half minute', () => {
  const next = after(
    { type: 'snapshot', snapshot: snapshot([card('F', { channels: [level(1, 0)] })]) },
    take({ channels: [level(2, 10_000)] }),
    take({ channels: [level(3, 35_000)] }),
    take({ channels: [level(4, 45_000)] }),
  );
  assert.deepEqual(trailOf(next), [2, 3, 4]);
});

test('a level that changes fast keeps all of its half minute', () => {
  const changes = Array.from({ length: 2000 }, (_, step) => level(step % 7, step * 16));
  const next = changes.reduce((state, one) => reduce(state, take({ channels: [one] })), beginning);
  const trail = next.trails['F.0'] ?? [];
  assert.ok((trail[0]?.time ?? Infinity) <= 1999 * 16 - 30_000);
  assert.ok(trail.length <= 160);
});

test('of what a level did while nobody was connected, its trail says nothing', () => {
  const again = snapshot([card('F', { channels: [level(5, 90_000)] })]);
  const next = after(
    { type: 'snapshot', snapshot: snapshot([card('F', { channels: [level(1, 0)] })]) },
    take({ channels: [level(2, 10_000)] }),
    { type: 'snapshot', snapshot: again },
  );
  assert.deepEqual(next.trails['F.0'], [{ time: 90_000, value: 5 }]);
});

test('what is shown is known till now, or till the hub or the daemon was lost', () => {
  const known = (...actions: Action[]) => knownTill({ ...after(subscribed, ...actions), ahead: 0 });
  const at = (state: 'open' | 'lost'): Action => ({
    type: 'connection',
    state,
    nextTry: null,
    heard: 40_000,
    now: 60_000,
  });
  assert.ok(Math.abs(known(at('open')) - Date.now()) < 60_000);
  assert.equal(known(at('open'), at('lost')), 40_000);
  const daemon = { ...bus.daemon, state: 'absent' as const, since: '1970-01-01T00:00:30.000Z' };
  assert.equal(known(at('open'), take({ bus: { ...bus, daemon } })), 30_000);
});

test('the same refusal is said once, and three at most', () => {
  const refuse = (id: number, detail: string): Action => ({
    type: 'refused',
    id,
    problem: { title: 'does not fit', status: 422, detail, where: null },
  });
  const next = after(
    refuse(1, 'a'),
    refuse(2, 'a'),
    refuse(3, 'b'),
    refuse(4, 'c'),
    refuse(5, 'd'),
  );
  assert.deepEqual(
    next.notices.map(({ problem }) => problem.detail),
    ['b', 'c', 'd'],
  );
  assert.equal(reduce(next, { type: 'noticed', id: 4 }).notices.length, 2);
});

test('an arrangement comes with what has changed, and stays where nothing came', () => {
  const page = { order: ['5', '3'], hidden: [], groups: [] };
  let state = reduce(beginning, { type: 'snapshot', snapshot: snapshot([card('5')]) });
  state = reduce(state, { type: 'changes', changes: { ...noChanges, page }, now: 1 });
  assert.deepEqual(state.arrangement.order, ['5', '3']);
  state = reduce(state, { type: 'changes', changes: noChanges, now: 2 });
  assert.deepEqual(state.arrangement.order, ['5', '3']);
});

const shed: BoardRow = {
  board: 'shed',
  state: 'online',
  since: '2026-11-21T12:00:00.000Z',
  name: 'Shed',
  ignored: 0,
  ignored_why: null,
};

test('the rows of other boards come with the state, change, and go', () => {
  const told: Action = { type: 'snapshot', snapshot: snapshot([], { boards: [shed] }) };
  const change = (row: BoardRow | null) =>
    take({ boards: [{ board: 'shed', row, cards: [], channels: [] }] });
  assert.equal(after(told).boards['shed'], shed);
  assert.equal(after(told, change(null)).boards['shed'], shed);
  const stale = { ...shed, state: 'stale' as const };
  assert.equal(after(told, change(stale)).boards['shed'], stale);
  assert.deepEqual(after(told, change({ ...shed, state: 'gone' })).boards, {});
  assert.deepEqual(after(told, subscribed).boards, {});
});

test('cards of another board are kept as soon as somebody has looked at it', () => {
  const pump = card('5', { name: 'Pumps' });
  const on = channel('5.1', { value: true });
  const change = take({ boards: [{ board: 'shed', row: null, cards: [], channels: [on] }] });
  assert.deepEqual(after(change).boardCards, {});
  const seen: Action = { type: 'board', board: 'shed', cards: { 5: pump } };
  const next = after(seen, change);
  assert.equal(next.boardCards['shed']?.['5']?.channels[1], on);
  assert.equal(next.boardCards['shed']['5'].channels[0], pump.channels[0]);
  assert.deepEqual(next.cards, {}); // of this bus
  const lamp = card('6');
  const another = take({ boards: [{ board: 'shed', row: null, cards: [lamp], channels: [] }] });
  assert.deepEqual(after(seen, another).boardCards['shed'], { 5: pump, 6: lamp });
});

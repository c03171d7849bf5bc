// The hub's clock, beside one of this machine that is right, or hours off.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { Action } from '../../src/state/Actions.js';
import { hubTime } from '../../src/state/clock.js';
import { reduce } from '../../src/state/reduce.js';
import { beginning } from '../../src/state/State.js';
import { channel, noChanges } from './kit.js';

const hour = 3_600_000; // ms
const noon = Date.parse('2026-11-21T12:00:00.000Z');

function hubShows(now: number, ...actions: Action[]): number {
  return hubTime(actions.reduce(reduce, beginning), now) - noon;
}

const answer = (date: number, now: number): Action => ({
  type: 'dated',
  date: noon + date,
  asked: now - 40,
  now,
});

const change = (time: number, now: number): Action => ({
  type: 'changes',
  changes: { ...noChanges, channels: [channel('5.0', { since: new Date(noon + time).toJSON() })] },
  now,
});

test('a clock that is right is believed to the millisecond', () => {
  assert.equal(hubShows(noon + 700, answer(0, noon + 700)), 700);
  assert.equal(hubShows(noon + 700, answer(0, noon + 700), change(690, noon + 700)), 700);
});

test('a clock that is hours off is put right by an answer, to the second', () => {
  const slow = noon - 5 * hour;
  assert.equal(hubShows(slow, answer(0, slow)), 0);
  const fast = noon + 5 * hour;
  assert.equal(hubShows(fast, answer(0, fast)), 1040);
});

test('a change is never of the future', () => {
  const slow = noon - 5 * hour;
  assert.equal(hubShows(slow + 10, answer(0, slow), change(600, slow + 10)), 600);
  assert.equal(hubShows(slow + 20, answer(0, slow), change(600, slow + 10)), 610);
});

test('a clock that is put right while the page is open is noticed with the next answer', () => {
  const slow = noon - 5 * hour;
  assert.equal(hubShows(noon, answer(0, slow), answer(0, noon)), 0);
});

test('an event is dated, too; what has no date says nothing', () => {
  const event = { seq: 1, time: new Date(noon).toJSON(), card: '8', event_type: 'left' as const };
  const events = [{ ...event, code: null }];
  assert.equal(hubShows(50, { type: 'changes', changes: { ...noChanges, events }, now: 50 }), 0);
  const unknown = [channel('5.0', { since: null })];
  const changes = { ...noChanges, channels: unknown };
  assert.equal(hubShows(50, { type: 'changes', changes, now: 50 }), 50 - noon);
});

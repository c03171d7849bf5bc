import assert from 'node:assert/strict';
import { test } from 'node:test';

import { type Pace, paceAfter, still } from '../../src/state/pace.js';

// A second of messages with `rate` changes in all, from `since` on.
function aSecond(pace: Pace, rate: number, since: number): Pace {
  let next = pace;
  for (let step = 0; step < 10; ++step) next = paceAfter(next, rate / 10, since + step * 100);
  return next;
}

test('a bench is fast after a second of many changes, and slow after one of few', () => {
  const fast = paceAfter(aSecond(still, 400, 5000), 1, 6000);
  assert.equal(aSecond(still, 400, 5000).isFast, false);
  assert.equal(fast.isFast, true);
  assert.equal(paceAfter(aSecond(fast, 250, 6000), 1, 7000).isFast, true);
  assert.equal(paceAfter(aSecond(fast, 100, 6000), 1, 7000).isFast, false);
});

test('changes long ago, or before the clock was put back, make nothing fast', () => {
  const busy = aSecond(still, 400, 5000);
  assert.equal(paceAfter(busy, 1, 9000).isFast, false);
  assert.equal(paceAfter(still, 1, -5000).isFast, false);
});

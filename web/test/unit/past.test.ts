// What the page asks of the past, against a hub that has kept little of it.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { History, Point } from '../../src/api/Past.js';
import type { Hub } from '../../src/state/deeds/Deeds.js';
import { plotDeeds } from '../../src/state/deeds/plots.js';
import { Latest } from '../../src/state/Latest.js';
import { reduce } from '../../src/state/reduce.js';
import { beginning, type State } from '../../src/state/State.js';
import { card, channel, snapshot } from './kit.js';

const minute = 60_000;
const end = 1_000_000 * minute;

interface Span {
  from: number;
  to?: number;
}

// Asks for the ten minutes up to `end`, as the hub's answers are.
async function curveAfter(answer: (span: Span) => Partial<History>): Promise<readonly Point[]> {
  const level = channel('F.3', { type: 'level', value: 7 });
  const here = snapshot([card('F', { channels: [level] })]);
  let state: State = reduce(beginning, { type: 'snapshot', snapshot: here });
  state = { ...state, plots: { ...state.plots, channels: ['F.3'] } };
  const hub = {
    latest: new Latest(),
    get state() {
      return state;
    },
    dispatch: (action: Parameters<typeof reduce>[1]) => {
      state = reduce(state, action);
    },
    ask: (_method: string, span: object) =>
      Promise.resolve({ channel: 'F.3', unit: null, step_ms: 0, ...answer(span as Span) }),
    refuse: (reason: unknown) => {
      throw reason;
    },
  } as unknown as Hub;
  await plotDeeds['plot-look'](hub, { do: 'plot-look', span: 10 * minute, end });
  return state.plots.curves['F.3'] ?? [];
}

test('what held at the beginning of a window is looked for, in ever finer steps', async () => {
  const changed = end - 5 * minute;
  const before = end - 3000 * minute;
  const asked: (number | undefined)[] = [];
  const curve = await curveAfter(({ from, to }) => {
    asked.push(to);
    if (to === end) return { points: [[changed, 7, 7, 7]] };
    if (from < before - minute)
      return { points: [[before - minute, 4, 3, 5]], step_ms: 2 * minute };
    return { points: [[before, 3, 3, 3]] };
  });
  assert.deepEqual(curve, [
    [before, 3, 3, 3],
    [changed, 7, 7, 7],
  ]);
  assert.deepEqual(asked, [end, end - 30 * minute, before + minute]);
});

test('nothing is looked for where the window begins with a value', async () => {
  let count = 0;
  await curveAfter(() => {
    ++count;
    return { points: [[end - 20 * minute, 3, 3, 3]] };
  });
  assert.equal(count, 1);
});

test('a channel of which nothing else is kept is asked for once more, and no oftener', async () => {
  const curve = await curveAfter(({ to }) => ({ points: to === end ? [[end - 1, 7, 7, 7]] : [] }));
  assert.deepEqual(curve, [[end - 1, 7, 7, 7]]);
});

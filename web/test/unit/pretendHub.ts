// A hub for deeds: remembers what it was asked, answers as it is told, and keeps a state.
import { Refusal } from '../../src/api/Refusal.js';
import type { Card } from '../../src/api/Shapes.js';
import type { Action } from '../../src/state/Actions.js';
import type { Hub } from '../../src/state/deeds/Deeds.js';
import { Latest } from '../../src/state/Latest.js';
import { reduce } from '../../src/state/reduce.js';
import { beginning, type State } from '../../src/state/State.js';
import { snapshot } from './kit.js';

// Timers of deeds end nothing here, and keep no test from its end.
globalThis.setTimeout = (() => 0) as unknown as typeof setTimeout;

type Parameters = Record<string, unknown>;

export interface PretendHub extends Hub {
  asked: [method: string, params: object][];
  told: string[]; // refusals
}

export function pretendHub(
  cards: Card[],
  answer: (method: string, params: Parameters) => unknown,
): PretendHub {
  let state: State = reduce(beginning, { type: 'snapshot', snapshot: snapshot(cards) });
  const asked: PretendHub['asked'] = [];
  const told: string[] = [];
  const hub = {
    asked,
    told,
    latest: new Latest(),
    get state() {
      return state;
    },
    dispatch: (action: Action) => {
      state = reduce(state, action);
    },
    ask: async (method: string, params: object) => {
      asked.push([method, params]);
      return Promise.resolve(answer(method, params as Parameters));
    },
    refuse: (reason: unknown) => {
      if (!(reason instanceof Refusal)) throw reason;
      told.push(reason.problem.detail);
    },
  };
  return hub as unknown as PretendHub;
}

// What can happen to the state.
import type { Connection } from '../api/Live.js';
import type {
  Arrangement,
  Card,
  Changes,
  Channel,
  Problem,
  Snapshot,
  VirtualBus,
  Who,
} from '../api/Shapes.js';
import type { Cards } from './cards.js';
import type { Dated } from './clock.js';
import type { AllOff, State } from './State.js';

export type Action =
  | {
      type: 'connection';
      state: Connection;
      nextTry: number | null;
      heard: number | null;
      now: number;
    }
  | { type: 'who'; who: Who }
  | ({ type: 'dated' } & Dated) // an answer over HTTP
  | { type: 'snapshot'; snapshot: Snapshot }
  | { type: 'counted' } // it is time to know of all cards
  | { type: 'changes'; changes: Changes; now: number }
  | { type: 'card'; card: Card } // an answer; the same comes as a change
  | { type: 'channel'; channel: Channel }
  | { type: 'board'; board: string; cards: Cards } // of another board, all of them
  | { type: 'virtual'; virtual: VirtualBus | null }
  | { type: 'arrangement'; arrangement: Arrangement }
  | { type: 'refused'; id: number; problem: Problem }
  | { type: 'noticed'; id: number }
  | { type: 'missed-seen' }
  | { type: 'all-off'; allOff: AllOff | null }
  | { type: 'view'; part: Partial<Pick<State, 'plots' | 'console' | 'journal' | 'settings'>> };

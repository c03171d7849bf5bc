// All that the page knows. Plain data that nobody changes in place: what is another object is new.
import type { Connection } from '../api/Live.js';
import type { Arrangement, Bus, KeyEvent, Problem, Value, VirtualBus, Who } from '../api/Shapes.js';
import type { BoardCards, BoardRows } from './boards.js';
import type { Cards } from './cards.js';
import { type ConsoleLog, emptyConsole } from './console.js';
import { emptyJournal, type JournalLog } from './journal.js';
import { type Pace, still } from './pace.js';
import { noPlots, type Plots } from './plots.js';
import { noSettings, type Settings } from './settings.js';

export interface TrailPoint {
  time: number; // ms, the hub's clock
  value: number;
}

export interface SentCode {
  time: number;
  bytes: string;
}

export interface Notice {
  id: number;
  problem: Problem;
}

// Outputs that were switched off together, and what they were.
export interface AllOff {
  stage: 'going' | 'off' | 'waiting' | 'partly'; // waiting for the adapter; not all were reached
  until: number | null; // ms, this machine's clock: it can be undone till then
  before: Record<string, Record<string, Value>>; // by address and number
}

export interface State {
  connection: Connection;
  ahead: number; // ms that the hub's clock is ahead of this machine's
  nextTry: number | null; // ms, this machine's clock
  lostSince: number | null; // ms, this machine's clock
  who: Who | null; // null: not asked yet
  bus: Bus | null;
  cards: Cards;
  isCounting: boolean; // a hub that began anew has told of no card yet: these are from before
  boards: BoardRows; // the others on the broker
  boardCards: BoardCards; // of those that somebody has looked at
  pace: Pace;
  missed: number; // events that this page has lost, since somebody has read how many
  keys: Readonly<Record<string, readonly KeyEvent[]>>; // the last of each card, newest first
  turns: Readonly<Record<string, number>>; // steps of a card's encoder, right is more
  codes: Readonly<Record<string, readonly SentCode[]>>; // infrared, newest first
  trails: Readonly<Record<string, readonly TrailPoint[]>>; // of levels, without a gap, oldest first
  arrangement: Arrangement;
  notices: readonly Notice[];
  allOff: AllOff | null;
  virtual: VirtualBus | null; // null: a real bus, or whoever looks may not touch it
  // What single views hold.
  plots: Plots;
  console: ConsoleLog;
  journal: JournalLog;
  settings: Settings;
}

export const beginning: State = {
  connection: 'connecting',
  ahead: 0,
  nextTry: null,
  lostSince: null,
  who: null,
  bus: null,
  cards: {},
  isCounting: false,
  boards: {},
  boardCards: {},
  pace: still,
  missed: 0,
  keys: {},
  turns: {},
  codes: {},
  trails: {},
  arrangement: {},
  notices: [],
  allOff: null,
  virtual: null,
  plots: noPlots,
  console: emptyConsole,
  journal: emptyJournal,
  settings: noSettings,
};

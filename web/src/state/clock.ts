// The hub's clock, as far as its messages tell: what it has dated is drawn in its time. Pure.
//
// This machine's clock is believed as far as no message contradicts it.
import type { Changes } from '../api/Shapes.js';
import type { State } from './State.js';

const second = 1000; // ms

type Ahead = State['ahead'];

// What the hub's clock shows at a time (ms) of this machine's.
export function hubTime({ ahead }: Pick<State, 'ahead'>, time = Date.now()): number {
  return time + ahead;
}

// What has just happened was dated before it came: the hub's clock shows that by now, or more.
export function aheadAfterChanges(ahead: Ahead, changes: Changes, now: number): Ahead {
  let newest = '';
  for (const { since } of changes.channels) if (since !== null && since > newest) newest = since;
  for (const { time } of changes.events) if (time > newest) newest = time;
  return newest === '' ? ahead : Math.max(ahead, Date.parse(newest) - now);
}

export interface Dated {
  date: number; // ms, the hub's clock, down to a whole second: at some time between the others
  asked: number; // ms, this machine's clock
  now: number;
}

// What is contradicted is forgotten: one of the two clocks was put right.
export function aheadAfterAnswer(ahead: Ahead, { date, asked, now }: Dated): Ahead {
  const [least, most] = [date - now, date + second - asked];
  const believed = ahead >= least && ahead <= most ? ahead : 0;
  return Math.min(Math.max(believed, least), most);
}

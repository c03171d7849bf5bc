// How fast channels change, counted second by second. Pure.
export interface Pace {
  since: number; // ms, this machine's clock: the second that is counted
  count: number; // changes in it so far
  isFast: boolean; // the second before had many
}

export const still: Pace = { since: 0, count: 0, isFast: false };

const second = 1000; // ms
const many = 300; // changes a second
const few = 200; // to be slow again

export function paceAfter(pace: Pace, changes: number, now: number): Pace {
  const time = now - pace.since;
  if (time >= 0 && time < second) return { ...pace, count: pace.count + changes };
  const rate = (pace.count * second) / Math.max(time, second);
  return { since: now, count: changes, isFast: rate > (pace.isFast ? few : many) };
}

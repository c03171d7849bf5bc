// What is remembered of channels that pass: keys, codes, and the way of the knobs. All bounded.
import type { Channel, KeyEvent } from '../api/Shapes.js';
import type { SentCode, State, TrailPoint } from './State.js';

const mostKeys = 24;
const mostCodes = 5;
const mostPoints = 160;
export const trailSpan = 30_000; // ms
const twoSteps = 400; // ms: a line shows no more than two within it

export function addKeys(keys: State['keys'], events: readonly KeyEvent[]): State['keys'] {
  if (events.length === 0) return keys;
  const next = { ...keys };
  for (const event of events) {
    const before = next[event.card] ?? [];
    if (before[0] && before[0].seq >= event.seq) continue;
    next[event.card] = [event, ...before].slice(0, mostKeys);
  }
  return next;
}

// A hub that began anew counts from 0: events of before would be taken for newer than its own.
export function keysBefore(keys: State['keys'], seq: number): State['keys'] {
  return Object.values(keys).some(([last]) => last && last.seq > seq) ? {} : keys;
}

export function addTurns(turns: State['turns'], events: readonly KeyEvent[]): State['turns'] {
  const steps = { left: -1, right: 1, press: 0, release: 0 };
  let next = turns;
  for (const { card, event_type: type } of events)
    if (steps[type] !== 0) next = { ...next, [card]: (next[card] ?? 0) + steps[type] };
  return next;
}

export function codesAfter(codes: State['codes'], channels: readonly Channel[]): State['codes'] {
  const sent = channels.filter(({ type, value }) => type === 'code' && typeof value === 'string');
  let next = codes;
  for (const { id, value, since } of sent) {
    const code: SentCode = { time: Date.parse(since ?? ''), bytes: String(value) };
    const before = next[id] ?? [];
    if (before[0]?.time === code.time && before[0].bytes === code.bytes) continue;
    next = { ...next, [id]: [code, ...before].slice(0, mostCodes) };
  }
  return next;
}

export function trailsAfter(
  trails: State['trails'],
  channels: readonly Channel[],
): State['trails'] {
  const levels = channels.filter(
    ({ type, value, since }) => type === 'level' && typeof value === 'number' && since !== null,
  );
  if (levels.length === 0) return trails;
  const next = { ...trails };
  for (const { id, value, since } of levels) {
    const before = next[id] ?? [];
    if (before.at(-1)?.value === value) continue;
    next[id] = withPoint(before, { time: Date.parse(since ?? ''), value: value as number });
  }
  return next;
}

// The point before the span stays: the line begins there. Of many close together the last one stands.
function withPoint(points: readonly TrailPoint[], point: TrailPoint): TrailPoint[] {
  const first = points.findIndex(({ time }) => time > point.time - trailSpan);
  const kept = first === -1 ? points.slice(-1) : points.slice(Math.max(0, first - 1));
  const isClose = point.time - (kept.at(-2)?.time ?? -Infinity) < twoSteps;
  return [...(isClose ? kept.slice(0, -1) : kept), point].slice(-mostPoints);
}

// The curves that are looked at, and the window they are seen through. Pure.
//
// The hub keeps a value when it changes, so a curve holds each value until the next.
import type { History, Point } from '../api/Past.js';
import type { Channel } from '../api/Shapes.js';
import { thinned } from './thinning.js';

export interface Plots {
  channels: readonly string[]; // ids, in the order in which they were taken
  span: number; // ms
  end: number | null; // ms; null: live
  curves: Readonly<Record<string, readonly Point[]>>; // by id, oldest first
}

export const second = 1000;
export const minute = 60 * second;
export const hour = 60 * minute;
export const day = 24 * hour;
export const spans: readonly number[] = [
  minute,
  10 * minute,
  hour,
  day,
  7 * day,
  30 * day,
  365 * day,
];
export const mostPlots = 16;
const mostPoints = 6000; // of one curve, before it is thinned
const shortest = 2 * second;
const longest = 366 * day;

export const noPlots: Plots = { channels: [], span: 10 * minute, end: null, curves: {} };

export interface Span {
  from: number;
  to: number;
}

export function windowOf({ span, end }: Pick<Plots, 'span' | 'end'>, now: number): Span {
  const to = end ?? now;
  return { from: to - span, to };
}

// Zoomed about a moment that stays where it is; a window that reaches now goes on with it.
export function zoomed(window: Span, factor: number, at: number, now: number): Partial<Plots> {
  const whole = window.to - window.from;
  const span = Math.min(longest, Math.max(shortest, whole * factor));
  const share = (window.to - at) / whole;
  return settled(span, at + share * span, now);
}

export function moved({ from, to }: Span, by: number, now: number): Partial<Plots> {
  return settled(to - from, to + by, now);
}

function settled(span: number, end: number, now: number): { span: number; end: number | null } {
  return { span, end: end >= now - span / 200 ? null : end };
}

export function numberIn({ value, known }: Channel): number | null {
  if (!known) return null;
  if (typeof value === 'boolean') return value ? 1 : 0;
  return typeof value === 'number' ? value : null;
}

// Codes are texts, and keys only pass: neither is a curve.
export function canPlot({ type }: Channel): boolean {
  return type !== 'code' && type !== 'key';
}

// Who looks at the past sees nothing of this, and reads it when he comes back.
export function plotsAfter(plots: Plots, channels: readonly Channel[]): Plots {
  let curves = plots.curves;
  for (const channel of channels) {
    const before = curves[channel.id];
    const value = numberIn(channel);
    if (!before || value === null || channel.since === null) continue;
    const time = Date.parse(channel.since);
    const last = before.at(-1);
    if (plots.end !== null && time > plots.end) continue;
    if (last && (last[0] > time || (last[0] === time && last[1] === value))) continue;
    const points: Point[] = [...before, [time, value, value, value]];
    const isMany = points.length > mostPoints;
    curves = { ...curves, [channel.id]: isMany ? thinned(points, plots.span) : points };
  }
  return curves === plots.curves ? plots : { ...plots, curves };
}

// What the hub has kept, and behind it what came while it was asked.
export function withHistory(plots: Plots, { channel, points, step_ms: step }: History): Plots {
  if (!plots.channels.includes(channel)) return plots;
  const end = (points.at(-1)?.[0] ?? 0) + step;
  const fresh = (plots.curves[channel] ?? []).filter(([time]) => time > end);
  return { ...plots, curves: { ...plots.curves, [channel]: [...points, ...fresh] } };
}

export function withChannels(plots: Plots, channels: readonly string[]): Plots {
  const shown = [...new Set(channels)].slice(0, mostPlots);
  const curves = Object.fromEntries(shown.map((id) => [id, plots.curves[id] ?? []]));
  return { ...plots, channels: shown, curves };
}

// The value that held at a time; null: none is known of then.
export function heldAt(points: readonly Point[], time: number): Point | null {
  let low = 0;
  let high = points.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if ((points[middle]?.[0] ?? 0) <= time) low = middle + 1;
    else high = middle;
  }
  return points[low - 1] ?? null;
}

// A curve up to now, or to when something was known last: the channel's value holds, and where no
// change is known at all, since when it has held.
export function heldCurve(
  points: readonly Point[],
  channel: Channel | undefined,
  { from }: Span,
  now: number,
): readonly Point[] {
  const value = channel ? numberIn(channel) : null;
  if (!channel || value === null || channel.since === null) return points;
  const since = Math.min(Date.parse(channel.since), now);
  const hold = (time: number): Point => [time, value, value, value];
  const last = points.at(-1);
  if (!last) return [hold(Math.max(since, from)), hold(now)];
  return [...points, ...(since > last[0] ? [hold(since)] : []), hold(Math.max(now, last[0]))];
}

// A curve that is gathered for long, with no more points than can be seen. Pure.
import type { Point } from '../api/Past.js';

export const pointsInWindow = 500; // as many as the hub is asked for
export const windows = 3; // what is seen and two before it: to look back, and for what has long held

// What is far behind the window goes; the rest is put together in steps, as the hub does it.
export function thinned(points: readonly Point[], span: number): Point[] {
  const newest = points.at(-1)?.[0] ?? 0;
  const oldest = newest - windows * span;
  const stepAt = (time: number) => Math.floor((time * pointsInWindow) / span);
  const steps: Point[][] = [];
  for (const [at, point] of points.entries()) {
    const till = points[at + 1]?.[0] ?? newest;
    if (till <= oldest) continue;
    const last = steps.at(-1);
    if (last?.[0] && stepAt(last[0][0]) === stepAt(point[0])) last.push(point);
    else steps.push([point]);
  }
  return steps.map((step, at) => together(step, steps[at + 1]?.[0]?.[0] ?? newest));
}

// Each value counts as long as it held.
function together(step: readonly Point[], end: number): Point {
  const begin = step[0]?.[0] ?? end;
  const least = Math.min(...step.map((point) => point[2]));
  const most = Math.max(...step.map((point) => point[3]));
  let sum = 0;
  for (const [at, [time, mean]] of step.entries())
    sum += mean * ((step[at + 1]?.[0] ?? end) - time);
  return [begin, end > begin ? sum / (end - begin) : (step.at(-1)?.[1] ?? least), least, most];
}

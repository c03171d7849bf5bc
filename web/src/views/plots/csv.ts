// The curves of a window as comma-separated values, a row a change. Pure.
import type { Point } from '../../api/Past.js';
import { heldAt, type Span } from '../../state/plots.js';

export interface Column {
  id: string;
  name: string;
  unit: string;
  points: readonly Point[];
}

const heads = 'time,channel,name,mean,least,most,unit';

export function csvOf(columns: readonly Column[], window: Span): string {
  const rows = columns.flatMap((column) =>
    pointsIn(column.points, window).map(
      ([time, ...values]) =>
        [new Date(time).toISOString(), column.id, field(column.name), ...values].join(',') +
        `,${field(column.unit)}`,
    ),
  );
  return [heads, ...rows, ''].join('\r\n');
}

// What held when the window began is its first row.
export function pointsIn(points: readonly Point[], { from, to }: Span): Point[] {
  const held = heldAt(points, from);
  const inside = points.filter(([time]) => time > from && time <= to);
  return held ? [[from, held[1], held[2], held[3]], ...inside] : inside;
}

// A spreadsheet takes a text that begins so for a formula.
function field(text: string): string {
  const safe = /^[=+\-@\t\r]/.test(text) ? `'${text}` : text;
  return /[",\r\n]/.test(safe) ? `"${safe.replace(/"/g, '""')}"` : safe;
}

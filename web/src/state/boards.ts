// The rows of the other boards on the broker, after what the hub told of them.
import type { BoardChange, BoardRow } from '../api/Shapes.js';

export type BoardRows = Readonly<Record<string, BoardRow>>; // by name on the broker

export function boardsOf(rows: readonly BoardRow[] = []): BoardRows {
  return Object.fromEntries(rows.map((row) => [row.board, row]));
}

// One that is gone is nobody's any more.
export function boardsAfter(boards: BoardRows, changes: readonly BoardChange[] = []): BoardRows {
  const told = changes.flatMap(({ row }) => (row ? [row] : []));
  if (told.length === 0) return boards;
  const rows = { ...boards, ...boardsOf(told) };
  return boardsOf(Object.values(rows).filter(({ state }) => state !== 'gone'));
}

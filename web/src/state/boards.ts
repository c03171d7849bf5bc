// The other boards on the broker, after what the hub told of them; and the cards of those that
// somebody looks at.
import type { BoardChange, BoardRow, Card } from '../api/Shapes.js';
import { withChannels } from './cards.js';

export type BoardRows = Readonly<Record<string, BoardRow>>; // by name on the broker
export type BoardCards = Readonly<Record<string, Readonly<Record<string, Card>>>>; // by address

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

// Boards that nobody has looked at have no cards here, and get none.
export function boardCardsAfter(
  known: BoardCards,
  changes: readonly BoardChange[] = [],
): BoardCards {
  let next = known;
  for (const { board, cards, channels } of changes) {
    const before = next[board];
    if (!before || cards.length + channels.length === 0) continue;
    next = { ...next, [board]: withChannels({ ...before, ...byAddress(cards) }, channels) };
  }
  return next;
}

export function byAddress(cards: readonly Card[]): Readonly<Record<string, Card>> {
  return Object.fromEntries(cards.map((card) => [card.address, card]));
}

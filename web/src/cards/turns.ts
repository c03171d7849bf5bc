// Events as a list for people: steps of the encoder in the same direction are one entry. Pure.
import type { KeyEvent } from '../api/Shapes.js';

export interface Entry {
  event: KeyEvent; // the newest of them
  count: number;
}

export function entriesOf(events: readonly KeyEvent[]): Entry[] {
  const entries: Entry[] = [];
  for (const event of events) {
    const last = entries.at(-1);
    if (last && event.code === null && last.event.event_type === event.event_type) ++last.count;
    else entries.push({ event, count: 1 });
  }
  return entries;
}

// A line of the journal as people say it: "5.0 (Lamp): on" is "Lamp (5.0) on". Pure.
import type { JournalEntry } from '../../api/Past.js';
import type { Cards } from '../../state/cards.js';
import { text } from '../../text/text.js';
import { nameOf } from '../../widgets/format.js';

// Channels that were set, one after the other; names may hold anything.
const channels =
  /(^|, )([0-9A-F]\.\d{1,2})(?: \((.*?)\))?: (on|off|-?\d[\d.]*)(?=$|, [0-9A-F]\.\d| for | within )/g;
const card = /^([0-9A-F]): /;

export function saidOf({ kind, text: line }: JournalEntry, cards: Cards): string {
  if (kind !== 'command') return line;
  const there = cards[card.exec(line)?.[1] ?? ''];
  if (there)
    return line.replace(card, () => `${there.name ?? text.kinds[there.kind]} (${there.address}): `);
  return line.replace(
    channels,
    (_, before: string, id: string, name: string | undefined, value: string) => {
      const called = name ?? channelName(cards, id);
      return `${before}${called === null ? id : `${called} (${id})`} ${value}`;
    },
  );
}

function channelName(cards: Cards, id: string): string | null {
  const channel = cards[id.charAt(0)]?.channels[Number(id.slice(2))];
  return channel ? nameOf(channel) : null;
}

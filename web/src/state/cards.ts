// Cards after changes of their channels. Pure.
import type { Card, Channel } from '../api/Shapes.js';

export type Cards = Readonly<Record<string, Card>>; // by address

// Channels that are not named stay the same objects, so that nobody draws them again.
export function withChannels(before: Cards, fresh: readonly Channel[]): Cards {
  if (fresh.length === 0) return before;
  const cards = { ...before };
  const copied = new Set<string>();
  for (const channel of fresh) {
    const [address = '', number = ''] = channel.id.split('.');
    let card = cards[address];
    if (!card) continue;
    if (!copied.has(address)) {
      card = { ...card, channels: [...card.channels] };
      cards[address] = card;
      copied.add(address);
    }
    card.channels[Number(number)] = channel;
  }
  return cards;
}

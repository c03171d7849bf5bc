// Where the cards stand. Pure.
import type { Arrangement, Card } from '../api/Shapes.js';

export interface Slot {
  address: string;
  card: Card | null; // null: an empty slot
}

export interface Rail {
  title: string | null; // of a group
  slots: Slot[];
}

const addresses = Array.from('0123456789ABCDEF');

// As the bus has them: sixteen slots by address. As soon as somebody has arranged the cards, only
// those that are there, in that order, by groups; what nobody has placed comes last, by address, and
// behind it the empty slots where a card could be plugged in.
export function arrange(
  cards: Readonly<Record<string, Card>>,
  arrangement: Arrangement,
  hasFreeSlots = false,
): Rail[] {
  const { order = [], hidden = [], groups = [] } = arrangement;
  const isArranged = order.length + hidden.length + groups.length > 0;
  if (!isArranged)
    return [{ title: null, slots: addresses.map((address) => slotOf(cards, address)) }];
  const shown = [...new Set([...order, ...addresses])].filter(
    (address) => address in cards && !hidden.includes(address),
  );
  const grouped = new Set(groups.flatMap((group) => group.cards));
  const rails = groups.map(({ name, cards: members }) => ({
    title: name,
    slots: shown.filter((address) => members.includes(address)).map((a) => slotOf(cards, a)),
  }));
  const rest = shown.filter((address) => !grouped.has(address)).map((a) => slotOf(cards, a));
  const free = addresses.filter((address) => hasFreeSlots && !(address in cards));
  const others = [rest, free.map((address) => slotOf(cards, address))];
  return [...rails, ...others.map((slots) => ({ title: null, slots }))].filter(
    ({ slots }) => slots.length > 0,
  );
}

function slotOf(cards: Readonly<Record<string, Card>>, address: string): Slot {
  return { address, card: cards[address] ?? null };
}

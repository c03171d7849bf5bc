// All outputs off, and back.
import type { CardSettings } from '../../api/Settled.js';
import type { Card } from '../../api/Shapes.js';
import { offValues, type Values, valuesBefore } from '../allOff.js';
import { presentCards } from '../select.js';
import type { Hub } from './Deeds.js';

const undoTime = 10_000; // ms

export async function switchAllOff(hub: Hub): Promise<void> {
  const before: Record<string, Values> = {};
  const sending: Promise<unknown>[] = [];
  for (const card of presentCards(hub.state)) {
    const off = offValues(card, await silentRanges(hub, card));
    if (Object.keys(off).length === 0) continue;
    before[card.address] = valuesBefore(card, off);
    sending.push(hub.ask('cards.set', { address: card.address, values: off }));
  }
  const allOff = { until: Date.now() + undoTime, before };
  hub.dispatch({ type: 'all-off', allOff });
  setTimeout(() => {
    if (hub.state.allOff === allOff) hub.dispatch({ type: 'all-off', allOff: null });
  }, undoTime);
  await Promise.all(sending);
}

export async function undoAllOff(hub: Hub): Promise<void> {
  const before = hub.state.allOff?.before ?? {};
  hub.dispatch({ type: 'all-off', allOff: null });
  const sending = Object.entries(before)
    .filter(([, values]) => Object.keys(values).length > 0)
    .map(([address, values]) => hub.ask('cards.set', { address, values }));
  await Promise.all(sending);
}

async function silentRanges(hub: Hub, card: Card): Promise<readonly (number | null)[]> {
  if (card.kind !== 'motor') return [];
  const asked = await hub.ask('card.settings.get', { address: card.address });
  return (asked as CardSettings).silent_range ?? [];
}

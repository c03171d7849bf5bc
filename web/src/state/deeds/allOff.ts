// All outputs off, and back.
import { Refusal } from '../../api/Refusal.js';
import type { CardSettings } from '../../api/Settled.js';
import type { Card } from '../../api/Shapes.js';
import { text } from '../../text/text.js';
import { offValues, type Values, valuesBefore } from '../allOff.js';
import { presentCards } from '../select.js';
import type { AllOff } from '../State.js';
import type { Hub } from './Deeds.js';

const undoTime = 10_000; // ms

type Outcome =
  | { is: 'off' | 'waiting'; card: Card; before: Values }
  | { is: 'unknown'; card: Card } // how its drives stand still
  | { is: 'failed'; card: Card; refusal: Refusal };

// Lines go first, then motors whose silent ranges are known: to ask a card takes three seconds, in
// which nothing else reaches the bus. A card that fails keeps no other from being switched.
export async function switchAllOff(hub: Hub): Promise<void> {
  if (hub.state.allOff?.stage === 'going') return;
  put(hub, { stage: 'going', until: null, before: {} });
  const cards = presentCards(hub.state);
  const ofKind = (wanted: Card['kind']) => cards.filter(({ kind }) => kind === wanted);
  const first = [...ofKind('digital-output'), ...ofKind('motor')];
  const outcomes: Outcome[] = [];
  for (const outcome of await Promise.all(first.map((card) => attempt(hub, card, false))))
    outcomes.push(outcome.is === 'unknown' ? await attempt(hub, outcome.card, true) : outcome);
  conclude(hub, outcomes);
}

export async function undoAllOff(hub: Hub): Promise<void> {
  const before = hub.state.allOff?.before ?? {};
  put(hub, null);
  const sending = Object.entries(before)
    .filter(([, values]) => Object.keys(values).length > 0)
    .map(([address, values]) => hub.ask('cards.set', { address, values }));
  for (const outcome of await Promise.allSettled(sending))
    if (outcome.status === 'rejected') hub.refuse(outcome.reason);
}

function put(hub: Hub, allOff: AllOff | null): void {
  hub.dispatch({ type: 'all-off', allOff });
}

async function attempt(hub: Hub, card: Card, mayAsk: boolean): Promise<Outcome> {
  try {
    return await switchOff(hub, card, mayAsk);
  } catch (refusal) {
    if (!(refusal instanceof Refusal)) throw refusal;
    return { is: 'failed', card, refusal };
  }
}

async function switchOff(hub: Hub, card: Card, mayAsk: boolean): Promise<Outcome> {
  const { address } = card;
  const off = offValues(card, card.kind === 'motor' ? await silentRanges(hub, card, mayAsk) : []);
  if (!off) return { is: 'unknown', card };
  const before = valuesBefore(hub.state.cards[address] ?? card, off);
  const now = (await hub.ask('cards.set', { address, values: off })) as Card;
  if (now.state === 'silent') throw refusalOf(text.why.silent);
  return { is: now.channels.some(({ pending }) => pending) ? 'waiting' : 'off', card, before };
}

async function silentRanges(hub: Hub, { address }: Card, ask: boolean) {
  const settings = await hub.ask('card.settings.get', ask ? { address, ask } : { address });
  return (settings as CardSettings).silent_range ?? [];
}

// What was not reached is said by its reason; what was can be undone.
function conclude(hub: Hub, outcomes: readonly Outcome[]): void {
  const missed = new Map<string, string[]>();
  const before: Record<string, Values> = {};
  for (const outcome of outcomes) {
    const { address, name, kind } = outcome.card;
    if ('before' in outcome) {
      before[address] = outcome.before;
      continue;
    }
    const why = outcome.is === 'failed' ? outcome.refusal.problem.detail : text.allOff.unknown;
    missed.set(why, [...(missed.get(why) ?? []), `${address} ${name ?? text.kinds[kind]}`]);
  }
  for (const [why, cards] of missed) hub.refuse(refusalOf(text.allOff.missed(cards, why)));
  const isWaiting = outcomes.some(({ is }) => is === 'waiting');
  const isNothingDone = missed.size > 0 && Object.keys(before).length === 0;
  const stage = missed.size > 0 ? 'partly' : isWaiting ? 'waiting' : 'off';
  if (isNothingDone) put(hub, null);
  else offerUndo(hub, { stage, until: Date.now() + undoTime, before });
}

function offerUndo(hub: Hub, allOff: AllOff): void {
  put(hub, allOff);
  setTimeout(() => {
    if (hub.state.allOff === allOff) put(hub, null);
  }, undoTime);
}

function refusalOf(detail: string): Refusal {
  return new Refusal({ title: detail, status: 0, detail, where: null });
}

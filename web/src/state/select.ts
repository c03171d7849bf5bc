// Questions to the state that more than one component asks. Pure.
import type { Card, Channel, Role } from '../api/Shapes.js';
import { hubTime } from './clock.js';
import type { State } from './State.js';

const rank: Record<Role, number> = { view: 1, use: 2, admin: 3 };

export function may(state: State, role: Role): boolean {
  const own = state.who?.role;
  return own ? rank[own] >= rank[role] : false;
}

// The person has hands at a virtual bus.
export function hasHands(state: State): boolean {
  return state.virtual !== null && may(state, 'admin');
}

export function isPulled({ virtual }: State, address: string): boolean {
  return virtual?.cards.some((card) => card.address === address && !card.plugged) ?? false;
}

// What the page shows was true once, and nobody knows whether it still is.
export function isStale(state: State): boolean {
  return state.connection !== 'open' || state.bus?.daemon.state !== 'up' || state.isCounting;
}

// Up to when what the page shows is known: till now, or till it was lost. ms, the hub's clock.
export function knownTill(state: State): number {
  const { connection, lostSince, bus } = state;
  if (connection !== 'open' && lostSince !== null) return hubTime(state, lostSince);
  const gone = bus && bus.daemon.state !== 'up' ? bus.daemon.since : null;
  return gone === null ? hubTime(state) : Date.parse(gone);
}

// No output follows: the cable is out.
export function isAdapterDown(state: State): boolean {
  return state.bus?.adapter.state === 'down';
}

export type Certainty = 'unknown' | 'pending' | 'assumed' | 'known';

export function certainty(channel: Channel): Certainty {
  if (channel.pending) return 'pending';
  if (!channel.known || channel.value === null) return 'unknown';
  return channel.assumed ? 'assumed' : 'known';
}

export function numberOf(channel: Channel): number {
  return Number(channel.id.slice(2));
}

export function presentCards(state: Pick<State, 'cards'>): Card[] {
  return inOrder(state.cards).filter((card) => card.state !== 'absent');
}

export function inOrder(cards: State['cards']): Card[] {
  return Object.values(cards).sort((a, b) => a.address.localeCompare(b.address));
}

export interface NamedCode {
  bytes: string;
  name: string;
}

// Infrared codes that have a name, by their names.
export function namedCodes({ codes }: Pick<Card, 'codes'>): NamedCode[] {
  const named = Object.entries(codes ?? {}).map(([bytes, name]) => ({ bytes, name }));
  return named.sort((one, other) => one.name.localeCompare(other.name));
}

// Cards and states as the hub tells them.
import type { Bus, Card, Changes, Channel, Snapshot } from '../../src/api/Shapes.js';

export const bus: Bus = {
  id: '3f9a21c0',
  name: 'bench',
  seq: 10,
  daemon: { state: 'up', version: '1.20', since: null, waiting_for: null },
  adapter: { state: 'up', device: '/dev/ttyUSB0', version: null },
  pace: 50,
  polling: true,
  virtual: false,
};

export function channel(id: string, change: Partial<Channel> = {}): Channel {
  return {
    id,
    name: null,
    type: 'switch',
    value: false,
    raw: 1,
    known: true,
    assumed: false,
    pending: false,
    since: '2026-11-21T12:00:00.000Z',
    unit: null,
    min: null,
    max: null,
    ...change,
  };
}

export function card(address: string, change: Partial<Card> = {}): Card {
  return {
    address,
    kind: 'digital-output',
    name: null,
    state: 'present',
    keep: true,
    polling: null,
    channels: [channel(`${address}.0`), channel(`${address}.1`)],
    glass: null,
    ...change,
  };
}

export function snapshot(cards: Card[], change: Partial<Snapshot> = {}): Snapshot {
  return { seq: 10, bus, cards, page: {}, events: [], lost: 0, ...change };
}

export const noChanges: Changes = {
  after: 10,
  seq: 11,
  bus: null,
  cards: [],
  channels: [],
  page: null,
  events: [],
  lost: 0,
};

// What a stand-in shows: benches of one and of sixteen cards, and what the other views read.
import type { Card, Channel, ChannelType, Kind } from '../../src/api/Shapes.js';
import { bus, card, channel, snapshot } from '../unit/kit.js';
import type { Scene } from './StandIn.js';

const shapes: Partial<Record<Kind, [type: ChannelType, count: number]>> = {
  'digital-output': ['switch', 16],
  'digital-input': ['contact', 16],
  servo: ['position', 6],
  motor: ['drive', 4],
  'analogue-input': ['level', 6],
  keys: ['key', 1],
  ir: ['code', 1],
};

const lines = ['switch', 'contact'];

// Values that differ from channel to channel, the same each time.
function valueOf(type: ChannelType, number: number): Partial<Channel> {
  if (lines.includes(type)) return { value: number % 3 === 0, raw: number % 3 === 0 ? 0 : 1 };
  if (type === 'code') return { value: '434F', raw: null };
  const byte = type === 'key' ? 0 : (40 + number * 53) % 256;
  return { value: byte, raw: byte, min: 0, max: 255 };
}

export function cardOf(address: string, kind: Kind, change: Partial<Channel> = {}): Card {
  const [type, count] = shapes[kind] ?? ['switch', 0];
  const channels = Array.from({ length: count }, (_, number) =>
    channel(`${address}.${number}`, { type, ...valueOf(type, number), ...change }),
  );
  const rows = ['                    ', '   Tail of the cat  ', '                    '];
  const glass = { rows: [...rows, '12.5 V        20:15 '], known: true, light: true };
  const shown = { ...glass, cursor: false, blink: false, at: null };
  return card(address, { kind, channels, glass: kind === 'lcd' ? shown : null });
}

const sixteen: readonly Kind[] = [
  'servo',
  'servo',
  'digital-output',
  'digital-input',
  'motor',
  'digital-output',
  'digital-input',
  'analogue-input',
  'keys',
  'ir',
  'digital-output',
  'motor',
  'analogue-input',
  'digital-input',
  'lcd',
  'analogue-input',
];

export const fullCards = sixteen.map((kind, place) =>
  cardOf(place.toString(16).toUpperCase(), kind),
);

export const eightCards = fullCards
  .filter(({ address }) => '034589EF'.includes(address))
  .map((each) => (each.address === '5' ? { ...each, name: 'Relays' } : each));

export const now = '2026-11-21T12:10:00.000Z';

// A curve of ten minutes: as good as any.
const history = {
  channel: 'F.3',
  unit: null,
  step_ms: 0,
  points: Array.from({ length: 60 }, (_, step) => {
    const value = Math.round(120 + 90 * Math.sin(step / 7));
    return [Date.parse(now) - (60 - step) * 10_000, value, value, value];
  }),
};

const journal = {
  entries: [
    { seq: 1, time: '2026-11-21T11:58:02.000Z', kind: 'hub', text: 'started', by: null },
    { seq: 2, time: '2026-11-21T11:58:09.000Z', kind: 'daemon', text: 'up, 1.20', by: null },
    { seq: 3, time: '2026-11-21T11:58:11.000Z', kind: 'adapter', text: 'up', by: null },
    { seq: 4, time: '2026-11-21T12:00:00.000Z', kind: 'command', text: '5.0: on', by: 'operator' },
  ],
  lost: 0,
};

const answers = {
  'history.get': history,
  'journal.get': journal,
  'setup.get': { cards: {}, channels: {} },
  'accounts.list': { accounts: [{ account: 'operator', role: 'admin' }] },
  'tokens.list': { tokens: [] },
  'card.settings.get': {},
  'console.run': { lines: ['CIA: DRIVER VERSION 1.20'] },
};

export function scene(cards: readonly Card[], change: Partial<Scene> = {}): Scene {
  return {
    snapshot: snapshot([...cards]),
    who: { account: null, role: 'admin' },
    answers,
    ...change,
  };
}

// Another board on the broker, and one that is away.
const row = { since: '2026-11-21T11:40:00.000Z', name: null, ignored: 0, ignored_why: null };

export const twoBoards = {
  snapshot: snapshot([...eightCards], {
    boards: [
      { ...row, board: 'shed', state: 'online', name: 'Shed' },
      { ...row, board: 'yard', state: 'stale' },
    ],
  }),
  answers: {
    ...answers,
    'boards.cards.list': { cards: eightCards.filter(({ address }) => '459EF'.includes(address)) },
  },
};

export const virtualBus = {
  snapshot: snapshot([...eightCards], { bus: { ...bus, virtual: true } }),
  answers: {
    ...answers,
    'virtual.get': {
      device: '/dev/pts/3',
      cable: true,
      frames: 5111,
      replies: 5111,
      lost: 0,
      shaped: 0,
      faults: [],
      cards: eightCards.map(({ address, kind }) => ({
        address,
        kind,
        plugged: true,
        values: null,
      })),
    },
    'virtual.run': { lines: [] },
  },
};

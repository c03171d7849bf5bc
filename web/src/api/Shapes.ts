// What the hub answers. A field without a value is null; further fields may come.

export type Role = 'view' | 'use' | 'admin';

export interface Who {
  account: string | null;
  role: Role | null;
}

export interface Broker {
  state: 'connecting' | 'up' | 'refused';
  host: string;
  detail: string | null;
}

export interface Bus {
  id: string;
  name: string | null;
  seq: number;
  daemon: {
    state: 'absent' | 'waiting' | 'up';
    version: string | null;
    since: string | null;
    waiting_for: 'cae' | 'io' | 'mon' | null;
  };
  adapter: {
    state: 'unknown' | 'down' | 'up';
    device: string | null;
    version: string | null;
  };
  broker?: Broker | null; // a hub without a broker has null, an older one has none
  pace: number | null;
  polling: boolean | null;
  virtual: boolean;
}

export type Kind =
  | 'digital-output'
  | 'digital-input'
  | 'servo'
  | 'motor'
  | 'analogue-input'
  | 'keys'
  | 'lcd'
  | 'ir'
  | 'silent'
  | 'unknown';

export type ChannelType = 'switch' | 'contact' | 'position' | 'drive' | 'level' | 'key' | 'code';

export type Value = boolean | number | string | null;

export interface Channel {
  id: string; // "5.0"
  name: string | null;
  type: ChannelType;
  value: Value;
  raw: number | null; // the line's bit, or the byte
  known: boolean;
  assumed: boolean;
  pending: boolean;
  since: string | null;
  unit: string | null;
  min: number | null;
  max: number | null;
  decimals?: number | null; // as people want to read it; a hub of before has none
}

export interface Glass {
  rows: string[];
  known: boolean;
  light: boolean | null;
  cursor: boolean | null;
  blink: boolean | null;
  at?: { row: number; column: number } | null; // where the next character goes, if it is known
}

export interface Card {
  address: string; // "0".."F"
  kind: Kind;
  name: string | null;
  state: 'present' | 'silent' | 'absent';
  keep: boolean | null;
  polling: boolean | null;
  channels: Channel[];
  glass: Glass | null;
  codes?: Readonly<Record<string, string>> | null; // names of infrared codes, by their bytes
}

export interface KeyEvent {
  seq: number;
  time: string;
  card: string;
  event_type: 'press' | 'release' | 'left' | 'right';
  code: number | null;
}

// Another hub on the broker.
export interface BoardRow {
  board: string; // its name there
  state: 'online' | 'stale' | 'gone';
  since: string;
  name: string | null;
  ignored: number; // messages of it that say nothing
  ignored_why: string | null;
}

export interface BoardChange {
  board: string;
  row: BoardRow | null; // null: as it was
  cards: Card[];
  channels: Channel[];
}

export interface Snapshot {
  seq: number;
  bus: Bus;
  cards: Card[];
  page: Arrangement;
  events: KeyEvent[];
  lost: number;
  boards?: BoardRow[]; // a hub that listens to no others has none
}

export interface Changes {
  after: number;
  seq: number;
  bus: Bus | null;
  cards: Card[];
  channels: Channel[];
  page: Arrangement | null; // null: as it was
  events: KeyEvent[];
  lost: number;
  boards?: BoardChange[];
}

export interface Arrangement {
  order?: string[];
  hidden?: string[];
  groups?: { name: string; cards: string[] }[];
}

export interface VirtualCard {
  address: string;
  kind: Kind;
  plugged: boolean;
  values: number[] | null; // the bytes of an input card
}

export interface VirtualBus {
  device: string | null;
  cable: boolean;
  frames: number;
  replies: number;
  lost: number;
  shaped: number; // replies that a fault has changed
  faults: string[]; // the lines that switch them on
  cards: VirtualCard[];
}

export interface Problem {
  title: string;
  status: number;
  detail: string;
  where: string | null;
  retry_after?: number;
}

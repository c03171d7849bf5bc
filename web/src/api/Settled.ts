// What people have settled: set-up, what cards keep of themselves, who may come in, backups.
import type { Role } from './Shapes.js';

export type OutputForm = 'switch' | 'light' | 'fan';

export interface ChannelSetup {
  unit?: string | null;
  min?: number | null;
  max?: number | null;
  decimals?: number | null;
  hysteresis?: number | null;
  active?: 'high' | 'low' | null;
  as?: OutputForm | null;
  device_class?: string | null;
}

export interface CardSetup {
  keep?: boolean | null;
  signed?: boolean | null;
  rows?: number | null;
  columns?: number | null;
}

export interface Setup {
  cards: Record<string, CardSetup>; // by address; what is as usual is missing
  channels: Record<string, ChannelSetup>; // by id
}

export type Bytes = (number | null)[];

// null: the card was not asked. Each kind of card has its own fields.
export interface CardSettings {
  end_a?: Bytes; // servo: six, 0 to 255
  end_b?: Bytes;
  silent_range?: Bytes; // motor: three, 1 to 32; 0 is the manual mode
  mask?: number | null; // analogue input: a bit a channel
  self_test?: boolean | null; // display
  init_light?: boolean | null;
}

export interface Account {
  account: string;
  role: Role;
}

export interface Token {
  name: string;
  role: Role;
}

export interface NewToken extends Token {
  token: string; // the secret, told this once
}

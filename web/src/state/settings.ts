// What the settings show, as far as it was asked for.
import type { Account, CardSettings, NewToken, Setup, Token } from '../api/Settled.js';
import type { Kind } from '../api/Shapes.js';

export interface KeptByCard {
  settings: CardSettings;
  doing: 'asking' | 'setting' | 'storing' | null;
}

export interface Settings {
  setup: Setup | null;
  cards: Readonly<Record<string, KeptByCard>>; // by address
  accounts: readonly Account[] | null;
  tokens: readonly Token[] | null;
  newToken: NewToken | null; // as long as its secret is shown
  backup: object | null; // to be saved
  restored: number | null; // ms: when a backup was put back
}

export const noSettings: Settings = {
  setup: null,
  cards: {},
  accounts: null,
  tokens: null,
  newToken: null,
  backup: null,
  restored: null,
};

// How many values a card of a kind is asked for, a second each; none: it has no settings.
export const askedValues: Partial<Record<Kind, number>> = {
  servo: 12,
  motor: 3,
  'analogue-input': 1,
  lcd: 0,
};

// Kinds that keep what is set only when they are told to.
export function isStored(kind: Kind): boolean {
  return kind === 'servo' || kind === 'motor' || kind === 'analogue-input';
}

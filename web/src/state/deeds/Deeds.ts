// What a deed, an intent come true, may use; and the form of a table of deeds.
import type { Live } from '../../api/Live.js';
import type { Action } from '../Actions.js';
import type { Intent } from '../Intent.js';
import type { Latest } from '../Latest.js';
import type { State } from '../State.js';
import type { VirtualHands } from '../VirtualHands.js';

export interface Hub {
  readonly state: State;
  readonly live: Live;
  readonly latest: Latest;
  readonly hands: VirtualHands;
  dispatch(action: Action): void;
  ask(method: string, params: object): Promise<unknown>; // rejects with a Refusal
  refuse(reason: unknown): void; // tells the person
}

// A row an intent. What a deed throws is told as a refusal.
export type Deeds<Wanted extends Intent> = {
  [Name in Wanted['do']]: (
    hub: Hub,
    intent: Extract<Wanted, { do: Name }>,
  ) => Promise<unknown> | undefined;
};

// What a person wants. Components emit intents and know nothing of how they come true.
import type { CardSettings, CardSetup, ChannelSetup } from '../api/Settled.js';
import type { Arrangement, Problem, Role, Value } from '../api/Shapes.js';

export type Intent =
  | BenchIntent
  | BoardIntent
  | PlotIntent
  | ConsoleIntent
  | JournalIntent
  | SettingsIntent;

export type BenchIntent =
  | { do: 'set'; id: string; value: Value }
  | { do: 'write'; address: string; row: number; column: number; text: string }
  | { do: 'control'; address: string; what: string } // "clear", "light-on", ...
  | { do: 'infrared'; address: string; bytes: string }
  | { do: 'rename-card'; address: string; name: string | null }
  | { do: 'rename-channel'; id: string; name: string | null }
  | { do: 'rename-bus'; name: string | null }
  | { do: 'rename-code'; bytes: string; name: string | null } // infrared; on all cards
  | { do: 'arrange'; arrangement: Arrangement }
  | { do: 'hand'; line: string } // what a hand does to the virtual bus
  | { do: 'discover' }
  | { do: 'all-off' }
  | { do: 'undo-all-off' }
  | { do: 'log-in'; account: string; password: string }
  | { do: 'log-out' }
  | { do: 'try-now' } // to connect
  | { do: 'dismiss'; notice: number }
  | { do: 'missed-seen' };

// What can be done to a card of another board, too.
export type FarIntent = Extract<BenchIntent, { do: 'set' | 'write' | 'control' | 'infrared' }>;

type OnBoard<One extends FarIntent> = One extends FarIntent
  ? Omit<One, 'do'> & { do: `board-${One['do']}`; board: string }
  : never;

export type BoardIntent = { do: 'board-read'; board: string } | OnBoard<FarIntent>;

export type PlotIntent =
  | { do: 'plot'; channels: readonly string[] } // these and no others
  | { do: 'plot-look'; span: number; end: number | null }; // ms; null: live

export type ConsoleIntent = { do: 'console-help' } | { do: 'console-run'; line: string };

export type JournalIntent = { do: 'journal-read' } | { do: 'journal-older' };

export type SettingsIntent =
  | { do: 'settings-read' }
  | { do: 'setup-card'; address: string; setup: CardSetup }
  | { do: 'setup-channel'; id: string; setup: ChannelSetup }
  | { do: 'card-ask'; address: string; ask: boolean } // not to ask: what is known already
  | { do: 'card-set'; address: string; settings: CardSettings }
  | { do: 'card-store'; address: string }
  | { do: 'account-add'; account: string; password: string; role: Role }
  | { do: 'account-change'; account: string; password?: string; role?: Role }
  | { do: 'account-remove'; account: string }
  | { do: 'token-add'; name: string; role: Role }
  | { do: 'token-remove'; name: string }
  | { do: 'token-seen' } // the new one's secret
  | { do: 'backup-read' }
  | { do: 'backup-put'; backup: object };

// Says to the person that the hub has refused it, in place of a notice.
export type Refused = (problem: Problem) => void;

export class IntentEvent extends Event {
  static readonly type = 'qelm-intent';

  constructor(
    readonly intent: Intent,
    readonly refused?: Refused,
  ) {
    super(IntentEvent.type, { bubbles: true, composed: true });
  }
}

export function want(element: EventTarget, intent: Intent, refused?: Refused): void {
  element.dispatchEvent(new IntentEvent(intent, refused));
}

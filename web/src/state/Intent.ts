// What a person wants. Components emit intents and know nothing of how they come true.
import type { Arrangement, Value } from '../api/Shapes.js';

export type Intent =
  | { do: 'set'; id: string; value: Value }
  | { do: 'write'; address: string; row: number; column: number; text: string }
  | { do: 'control'; address: string; what: string } // "clear", "light-on", ...
  | { do: 'infrared'; address: string; bytes: string }
  | { do: 'rename-card'; address: string; name: string | null }
  | { do: 'rename-channel'; id: string; name: string | null }
  | { do: 'rename-bus'; name: string | null }
  | { do: 'arrange'; arrangement: Arrangement }
  | { do: 'all-off' }
  | { do: 'undo-all-off' }
  | { do: 'log-in'; account: string; password: string }
  | { do: 'log-out' }
  | { do: 'try-now' } // to connect
  | { do: 'dismiss'; notice: number };

export class IntentEvent extends Event {
  static readonly type = 'qelm-intent';

  constructor(readonly intent: Intent) {
    super(IntentEvent.type, { bubbles: true, composed: true });
  }
}

export function want(element: EventTarget, intent: Intent): void {
  element.dispatchEvent(new IntentEvent(intent));
}

// Who is here, and the connection.
import { type Answer, request } from '../../api/Http.js';
import type { Who } from '../../api/Shapes.js';
import type { BenchIntent } from '../Intent.js';
import { may } from '../select.js';
import type { Deeds, Hub } from './Deeds.js';

type Wanted = Extract<
  BenchIntent,
  { do: 'log-in' | 'log-out' | 'try-now' | 'dismiss' | 'missed-seen' }
>;

export const sessionDeeds: Deeds<Wanted> = {
  'log-in': async (hub, { account, password }) => {
    take(hub, await request('POST', '/api/session', { account, password }));
    hub.live.start();
  },
  'log-out': async (hub) => {
    take(hub, await request('DELETE', '/api/session'));
  },
  'try-now': (hub) => {
    wake(hub);
    return undefined;
  },
  dismiss: (hub, { notice }) => {
    hub.dispatch({ type: 'noticed', id: notice });
    return undefined;
  },
  'missed-seen': (hub) => {
    hub.dispatch({ type: 'missed-seen' });
    return undefined;
  },
};

export function wake(hub: Hub): void {
  if (hub.state.who?.role === null) return;
  hub.live.wake();
  void askWho(hub);
}

// Its answer also tells the hub's time.
export async function askWho(hub: Hub): Promise<void> {
  try {
    take(hub, await request('GET', '/api/session'));
  } catch {
    // The connection says so already, and tries again.
  }
}

function take(hub: Hub, { json, asked, date }: Answer): void {
  if (date !== null) hub.dispatch({ type: 'dated', date, asked, now: Date.now() });
  hub.dispatch({ type: 'who', who: json as Who });
  void hub.hands.look();
  if (!may(hub.state, 'view')) hub.live.stop();
}

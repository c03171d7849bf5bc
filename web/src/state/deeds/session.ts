// Who is here, and the connection.
import { request } from '../../api/Http.js';
import type { Who } from '../../api/Shapes.js';
import type { BenchIntent } from '../Intent.js';
import { may } from '../select.js';
import type { Deeds, Hub } from './Deeds.js';

type Wanted = Extract<BenchIntent, { do: 'log-in' | 'log-out' | 'try-now' | 'dismiss' }>;

export const sessionDeeds: Deeds<Wanted> = {
  'log-in': async (hub, { account, password }) => {
    takeWho(hub, await request('POST', '/api/session', { account, password }));
    hub.live.start();
  },
  'log-out': async (hub) => {
    takeWho(hub, await request('DELETE', '/api/session'));
  },
  'try-now': (hub) => {
    wake(hub);
    return undefined;
  },
  dismiss: (hub, { notice }) => {
    hub.dispatch({ type: 'noticed', id: notice });
    return undefined;
  },
};

export function wake(hub: Hub): void {
  if (hub.state.who?.role !== null) hub.live.wake();
}

export async function askWho(hub: Hub): Promise<void> {
  try {
    takeWho(hub, await request('GET', '/api/session'));
  } catch {
    // The connection says so already, and tries again.
  }
}

function takeWho(hub: Hub, who: unknown): void {
  hub.dispatch({ type: 'who', who: who as Who });
  void hub.hands.look();
  if (!may(hub.state, 'view')) hub.live.stop();
}

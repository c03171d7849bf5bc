// Outputs, names and the arrangement.
import type { Arrangement, Channel } from '../../api/Shapes.js';
import type { BenchIntent } from '../Intent.js';
import { switchAllOff, undoAllOff } from './allOff.js';
import type { Deeds, Hub } from './Deeds.js';

type Wanted = Exclude<
  BenchIntent,
  { do: 'log-in' | 'log-out' | 'try-now' | 'dismiss' | 'missed-seen' }
>;

export const benchDeeds: Deeds<Wanted> = {
  set: (hub, { id, value }) => hub.latest.run(id, () => set(hub, id, value)),
  write: (hub, { address, row, column, text }) =>
    hub.ask('lcd.write', { address, row, column, text }),
  control: (hub, { address, what }) => hub.ask('lcd.control', { address, do: what }),
  infrared: (hub, { address, bytes }) => hub.ask('ir.send', { address, bytes }),
  'rename-card': (hub, { address, name }) => hub.ask('names.merge', { cards: { [address]: name } }),
  'rename-channel': (hub, { id, name }) => hub.ask('names.merge', { channels: { [id]: name } }),
  'rename-code': (hub, { bytes, name }) => hub.ask('names.merge', { infrared: { [bytes]: name } }),
  'rename-bus': (hub, { name }) => hub.ask('names.merge', { bus: name }),
  arrange: (hub, { arrangement }) => arrange(hub, arrangement),
  hand: (hub, { line }) => hub.hands.run(line),
  discover: (hub) => hub.ask('bus.discover', {}),
  'all-off': switchAllOff,
  'undo-all-off': undoAllOff,
};

async function set(hub: Hub, id: string, value: Channel['value']): Promise<void> {
  try {
    const channel = (await hub.ask('channels.set', { id, value })) as Channel;
    hub.dispatch({ type: 'channel', channel });
  } catch (reason) {
    hub.refuse(reason);
  }
}

// Seen at once where it was done; what the hub refuses is as before.
async function arrange(hub: Hub, arrangement: Arrangement): Promise<void> {
  const before = hub.state.arrangement;
  hub.dispatch({ type: 'arrangement', arrangement });
  await hub.latest.run('page', async () => {
    try {
      await hub.ask('page.set', { page: arrangement });
    } catch (reason) {
      hub.dispatch({ type: 'arrangement', arrangement: before });
      throw reason;
    }
  });
}

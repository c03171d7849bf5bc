// Curves: which, and which piece of their history.
import type { History } from '../../api/Past.js';
import type { PlotIntent } from '../Intent.js';
import { type Plots, windowOf, withChannels, withHistory } from '../plots.js';
import type { Deeds, Hub } from './Deeds.js';
import { keepPlots } from './kept.js';

const pointsInWindow = 500;
const windows = 3; // that and two before it: to look back, and for values that have long held

export const plotDeeds: Deeds<PlotIntent> = {
  plot: (hub, { channels }) => {
    put(hub, withChannels(hub.state.plots, channels));
    keepPlots(hub.state.plots);
    return read(hub);
  },
  'plot-look': (hub, { span, end }) => {
    put(hub, { ...hub.state.plots, span, end });
    keepPlots(hub.state.plots);
    return read(hub);
  },
};

function put(hub: Hub, plots: Plots): void {
  hub.dispatch({ type: 'view', part: { plots } });
}

function read(hub: Hub): Promise<void> {
  return hub.latest.run('plots', async () => {
    try {
      await Promise.all(channelsThere(hub).map((channel) => readOne(hub, channel)));
    } catch (reason) {
      hub.refuse(reason);
    }
  });
}

// Of a card that was there before a reload nothing can be asked.
function channelsThere({ state }: Hub): string[] {
  return state.plots.channels.filter((id) => id.charAt(0) in state.cards);
}

// A live window asks up to the hub's own now.
async function readOne(hub: Hub, channel: string): Promise<void> {
  const { plots } = hub.state;
  const { from, to } = windowOf(plots, Date.now());
  const span = {
    from: Math.round(to - windows * (to - from)),
    ...(plots.end ? { to: Math.round(to) } : {}),
  };
  const asked = { channel, points: windows * pointsInWindow, ...span };
  const history = (await hub.ask('history.get', asked)) as History;
  put(hub, withHistory(hub.state.plots, history));
}

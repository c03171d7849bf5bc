// Curves: which, and which piece of their history.
import type { History, Point } from '../../api/Past.js';
import type { PlotIntent } from '../Intent.js';
import { hubTime } from '../clock.js';
import { day, type Plots, windowOf, withChannels, withHistory } from '../plots.js';
import { pointsInWindow, windows } from '../thinning.js';
import type { Deeds, Hub } from './Deeds.js';
import { keepPlots } from './kept.js';

const longestBefore = 366 * day;

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

// A live window asks up to the hub's own now. The hub tells changes only: where the window begins with
// none, what held then is looked for before it.
async function readOne(hub: Hub, channel: string): Promise<void> {
  const { plots } = hub.state;
  const { from, to } = windowOf(plots, hubTime(hub.state));
  const begin = Math.round(to - windows * (to - from));
  const history = await ask(hub, {
    channel,
    points: windows * pointsInWindow,
    from: begin,
    ...(plots.end ? { to: Math.round(to) } : {}),
  });
  const [first] = history.points;
  const held = first && first[0] > from ? await heldBefore(hub, channel, begin) : null;
  const points = held ? [held, ...history.points] : history.points;
  put(hub, withHistory(hub.state.plots, { ...history, points }));
}

// The last value before a moment: found in a step of a year, then in finer steps of that step.
async function heldBefore(hub: Hub, channel: string, moment: number): Promise<Point | null> {
  let span = { from: Math.max(0, moment - longestBefore), to: moment };
  for (;;) {
    const { points, step_ms: step } = await ask(hub, { channel, points: pointsInWindow, ...span });
    const last = points.at(-1);
    if (!last) return null;
    const [time, , least, most] = last;
    const end = Math.min(moment, time + step);
    const isFinest = step === 0 || end - time >= span.to - span.from;
    if (least === most || isFinest) return last;
    span = { from: time, to: end };
  }
}

async function ask(hub: Hub, span: object): Promise<History> {
  return (await hub.ask('history.get', span)) as History;
}

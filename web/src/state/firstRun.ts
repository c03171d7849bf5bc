// What an empty bench waits for: three steps, each of which needs the one before it. Pure.
import type { State } from './State.js';

export type Step = 'hub' | 'daemon' | 'adapter' | 'cards';
export interface Progress {
  step: Step;
  state: 'done' | 'now' | 'later';
}

export function progressOf(state: Pick<State, 'connection' | 'bus'>): Progress[] {
  const done: Record<Step, boolean> = {
    hub: state.connection === 'open',
    daemon: state.bus?.daemon.state === 'up',
    adapter: state.bus?.adapter.state === 'up',
    cards: false,
  };
  const steps: Step[] = ['hub', 'daemon', 'adapter', 'cards'];
  const first = steps.findIndex((step) => !done[step]);
  return steps.map((step, place) => ({
    step,
    state: place < first ? 'done' : place === first ? 'now' : 'later',
  }));
}

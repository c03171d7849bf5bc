// What an empty bench waits for: three steps, each of which needs the one before it. Pure.
import type { State } from './State.js';

export type Step = 'hub' | 'daemon' | 'adapter' | 'cards';
export interface Progress {
  step: Step;
  state: 'done' | 'unsure' | 'now' | 'later';
}

export function progressOf(state: Pick<State, 'connection' | 'bus'>): Progress[] {
  const done: Record<Step, boolean> = {
    hub: state.connection === 'open',
    daemon: state.bus?.daemon.state === 'up',
    adapter: state.bus?.adapter.state !== 'down', // one that is not known may well be there
    cards: false,
  };
  const steps: Step[] = ['hub', 'daemon', 'adapter', 'cards'];
  const first = steps.findIndex((step) => !done[step]);
  const isUnsure = (step: Step) => step === 'adapter' && state.bus?.adapter.state === 'unknown';
  return steps.map((step, place) => ({
    step,
    state: place > first ? 'later' : place === first ? 'now' : isUnsure(step) ? 'unsure' : 'done',
  }));
}

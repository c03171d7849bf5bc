// The one store. Whoever reads it is told once a frame, however much has happened in between.
import type { ReactiveController, ReactiveControllerHost } from 'lit';

import type { Action } from './Actions.js';
import { reduce } from './reduce.js';
import { beginning, type State } from './State.js';

type Listener = () => void;

export class Store {
  state: State = beginning;
  private readonly listeners = new Set<Listener>();
  private isAsked = false; // for the next frame

  dispatch(action: Action): void {
    this.state = reduce(this.state, action);
    if (this.isAsked) return;
    this.isAsked = true;
    requestAnimationFrame(() => {
      this.isAsked = false;
      for (const listener of this.listeners) listener();
    });
  }

  listen(listener: Listener): () => void {
    this.listeners.add(listener);
    return () => this.listeners.delete(listener);
  }
}

export const store = new Store();

// A component's view of the store: it updates when what `select` picks has become another.
export class Reads<Part> implements ReactiveController {
  private seen: Part; // when the component was told last
  private end: Listener | undefined;

  constructor(
    private readonly host: ReactiveControllerHost,
    private readonly select: (state: State) => Part,
  ) {
    this.seen = this.value;
    host.addController(this);
  }

  // As it is by now: what is done between two frames meets what was done before it.
  get value(): Part {
    return this.select(store.state);
  }

  hostConnected(): void {
    this.end = store.listen(() => {
      this.look();
    });
    this.look();
  }

  hostDisconnected(): void {
    this.end?.();
  }

  private look(): void {
    const { value } = this;
    if (Object.is(value, this.seen)) return;
    this.seen = value;
    this.host.requestUpdate();
  }
}

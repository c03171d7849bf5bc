// What hands do to a virtual bus, and what it looks like now: asked after each line, and from time
// to time, for others have hands, too.
import type { VirtualBus } from '../api/Shapes.js';
import { Latest } from './Latest.js';
import { may } from './select.js';
import type { Store } from './Store.js';

const lookEvery = 3000; // ms

type Call = (method: string, params: object) => Promise<unknown>;

export class VirtualHands {
  private readonly latest = new Latest();
  private queue: Promise<unknown> = Promise.resolve();
  private timer: ReturnType<typeof setTimeout> | undefined;

  constructor(
    private readonly store: Store,
    private readonly call: Call,
  ) {}

  // Lines are done in their order; of those that set an input only the last one has to be.
  async run(line: string): Promise<void> {
    if (line.startsWith('set ')) {
      const [, address = '', block = ''] = line.split(' ');
      return this.latest.run(`${address}.${block}`, () => this.send(line));
    }
    const done = this.queue.then(() => this.send(line));
    this.queue = done.catch(() => undefined);
    await done;
    if (!/^(press|release|turn) /.test(line)) await this.look();
  }

  async look(): Promise<void> {
    clearTimeout(this.timer);
    const { bus, connection } = this.store.state;
    if (!bus?.virtual || !may(this.store.state, 'admin') || connection !== 'open') return;
    if (!document.hidden)
      try {
        const virtual = (await this.call('virtual.get', {})) as VirtualBus;
        this.store.dispatch({ type: 'virtual', virtual });
      } catch {
        this.store.dispatch({ type: 'virtual', virtual: null }); // it has ended, or is a real one
      }
    clearTimeout(this.timer);
    this.timer = setTimeout(() => void this.look(), lookEvery);
  }

  private async send(line: string): Promise<void> {
    await this.call('virtual.run', { line });
  }
}

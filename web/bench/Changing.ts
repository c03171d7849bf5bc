// Changes of all channels in turn, each time to another value.
import type { Card, Channel } from '../src/api/Shapes.js';
import type { StandIn } from '../test/browser/StandIn.js';

export class Changing {
  private readonly channels: Channel[];
  private next = 0;

  constructor(
    private readonly hub: StandIn,
    cards: readonly Card[],
  ) {
    this.channels = cards.flatMap((card) => card.channels).filter(({ type }) => type !== 'code');
  }

  tell(count: number): void {
    const channels = Array.from({ length: count }, () => this.one());
    if (count > 0) this.hub.tell({ channels });
  }

  private one(): Channel {
    const place = this.next++ % this.channels.length;
    const before = this.channels[place] as Channel;
    const value =
      typeof before.value === 'boolean' ? !before.value : (Number(before.value) + 7) % 256;
    const since = new Date().toISOString();
    const channel = { ...before, value, raw: Number(value), since };
    this.channels[place] = channel;
    return channel;
  }
}

// Makes intents come true: asks the hub, and puts into the store what it answers.
import { request } from '../api/Http.js';
import { Live } from '../api/Live.js';
import { Refusal } from '../api/Refusal.js';
import type { Arrangement, Card, CardSettings, Channel, Who } from '../api/Shapes.js';
import { offValues, type Values, valuesBefore } from './allOff.js';
import type { Intent } from './Intent.js';
import { Latest } from './Latest.js';
import { may, presentCards } from './select.js';
import type { State } from './State.js';
import type { Store } from './Store.js';

const undoTime = 10_000; // ms
const noticeTime = 12_000; // ms

export class Performer {
  private readonly live: Live;
  private readonly latest = new Latest();
  private lastNotice = 0;

  constructor(
    private readonly store: Store,
    url: string,
  ) {
    this.live = new Live(url, {
      connection: (state, nextTry) => {
        this.store.dispatch({ type: 'connection', state, nextTry, now: Date.now() });
        if (state === 'lost') void this.askWho();
      },
      snapshot: (snapshot) => {
        this.store.dispatch({ type: 'snapshot', snapshot, now: Date.now() });
        void this.readArrangement();
      },
      changes: (changes) => {
        this.store.dispatch({ type: 'changes', changes, now: Date.now() });
      },
    });
  }

  start(): void {
    this.live.start();
    void this.askWho();
  }

  wake(): void {
    if (this.state.who?.role !== null) this.live.wake();
  }

  perform(intent: Intent): void {
    this.run(intent).catch((reason: unknown) => {
      this.refuse(reason);
    });
  }

  private get state(): State {
    return this.store.state;
  }

  private async run(intent: Intent): Promise<void> {
    switch (intent.do) {
      case 'set':
        return this.set(intent);
      case 'write': {
        const { address, row, column, text } = intent;
        return this.ask('lcd.write', { address, row, column, text });
      }
      case 'control':
        return this.ask('lcd.control', { address: intent.address, do: intent.what });
      case 'infrared':
        return this.ask('ir.send', { address: intent.address, bytes: intent.bytes });
      case 'rename-card':
        return this.ask('names.merge', { cards: { [intent.address]: intent.name } });
      case 'rename-channel':
        return this.ask('names.merge', { channels: { [intent.id]: intent.name } });
      case 'rename-bus':
        return this.ask('names.merge', { bus: intent.name });
      case 'arrange':
        return this.arrange(intent.arrangement);
      case 'all-off':
        return this.allOff();
      case 'undo-all-off':
        return this.undoAllOff();
      case 'log-in':
        return this.logIn(intent.account, intent.password);
      case 'log-out':
        return this.logOut();
      case 'try-now':
        this.wake();
        return;
      case 'dismiss':
        this.store.dispatch({ type: 'noticed', id: intent.notice });
    }
  }

  private async ask(method: string, params: object): Promise<void> {
    await this.live.call(method, params);
  }

  private set({ id, value }: Intent & { do: 'set' }): Promise<void> {
    return this.latest.run(id, async () => {
      try {
        const channel = (await this.live.call('channels.set', { id, value })) as Channel;
        this.store.dispatch({ type: 'channel', channel, now: Date.now() });
      } catch (reason) {
        this.refuse(reason);
      }
    });
  }

  private async arrange(arrangement: Arrangement): Promise<void> {
    await this.ask('page.set', { page: arrangement });
    this.store.dispatch({ type: 'arrangement', arrangement });
  }

  private async readArrangement(): Promise<void> {
    try {
      const arrangement = (await this.live.call('page.get', {})) as Arrangement;
      this.store.dispatch({ type: 'arrangement', arrangement });
    } catch (reason) {
      this.refuse(reason);
    }
  }

  private async allOff(): Promise<void> {
    const before: Record<string, Values> = {};
    const sending: Promise<void>[] = [];
    for (const card of presentCards(this.state)) {
      const off = offValues(card, await this.silentRanges(card));
      if (Object.keys(off).length === 0) continue;
      before[card.address] = valuesBefore(card, off);
      sending.push(this.ask('cards.set', { address: card.address, values: off }));
    }
    const allOff = { until: Date.now() + undoTime, before };
    this.store.dispatch({ type: 'all-off', allOff });
    setTimeout(() => {
      if (this.state.allOff === allOff) this.store.dispatch({ type: 'all-off', allOff: null });
    }, undoTime);
    await Promise.all(sending);
  }

  private async silentRanges(card: Card): Promise<readonly (number | null)[]> {
    if (card.kind !== 'motor') return [];
    const address = card.address;
    const settings = (await this.live.call('card.settings.get', { address })) as CardSettings;
    return settings.silent_range ?? [];
  }

  private async undoAllOff(): Promise<void> {
    const before = this.state.allOff?.before ?? {};
    this.store.dispatch({ type: 'all-off', allOff: null });
    const sending = Object.entries(before)
      .filter(([, values]) => Object.keys(values).length > 0)
      .map(([address, values]) => this.ask('cards.set', { address, values }));
    await Promise.all(sending);
  }

  private async askWho(): Promise<void> {
    try {
      this.takeWho((await request('GET', '/api/session')) as Who);
    } catch {
      // The connection says so already, and tries again.
    }
  }

  private async logIn(account: string, password: string): Promise<void> {
    this.takeWho((await request('POST', '/api/session', { account, password })) as Who);
    this.live.start();
  }

  private async logOut(): Promise<void> {
    this.takeWho((await request('DELETE', '/api/session')) as Who);
  }

  private takeWho(who: Who): void {
    this.store.dispatch({ type: 'who', who });
    if (!may(this.state, 'view')) this.live.stop();
  }

  private refuse(reason: unknown): void {
    if (!(reason instanceof Refusal)) throw reason;
    const id = ++this.lastNotice;
    this.store.dispatch({ type: 'refused', id, problem: reason.problem });
    setTimeout(() => {
      this.store.dispatch({ type: 'noticed', id });
    }, noticeTime);
  }
}

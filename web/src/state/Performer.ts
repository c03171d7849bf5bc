// Makes intents come true: asks the hub, and puts into the store what it answers. What each intent
// does stands in the tables of deeds/.
import { Live } from '../api/Live.js';
import { Refusal } from '../api/Refusal.js';
import type { Action } from './Actions.js';
import { benchDeeds } from './deeds/bench.js';
import { boardDeeds } from './deeds/boards.js';
import { consoleDeeds } from './deeds/console.js';
import type { Deeds, Hub } from './deeds/Deeds.js';
import { keepName, keptPlots } from './deeds/kept.js';
import { journalDeeds } from './deeds/journal.js';
import { plotDeeds } from './deeds/plots.js';
import { askWho, sessionDeeds, wake } from './deeds/session.js';
import { settingsDeeds } from './deeds/settings.js';
import type { Intent, Refused } from './Intent.js';
import { Latest } from './Latest.js';
import type { State } from './State.js';
import type { Store } from './Store.js';
import { VirtualHands } from './VirtualHands.js';

const noticeTime = 12_000; // ms
const askEvery = 600_000; // a clock that was put right is noticed
const countTime = 12_000; // within which a daemon that is up has found its cards

const deeds: Deeds<Intent> = {
  ...benchDeeds,
  ...boardDeeds,
  ...sessionDeeds,
  ...plotDeeds,
  ...consoleDeeds,
  ...journalDeeds,
  ...settingsDeeds,
};

export class Performer implements Hub {
  readonly live: Live;
  readonly latest = new Latest();
  readonly hands: VirtualHands;
  private lastNotice = 0;
  private counting: ReturnType<typeof setTimeout> | undefined;

  constructor(
    private readonly store: Store,
    url: string,
  ) {
    this.live = new Live(url, {
      connection: (state, nextTry, heard) => {
        this.dispatch({ type: 'connection', state, nextTry, heard, now: Date.now() });
        if (state === 'open') void this.hands.look();
        if (state !== 'connecting') void askWho(this); // the role may be another since
      },
      snapshot: (snapshot) => {
        this.dispatch({ type: 'snapshot', snapshot });
        keepName(snapshot.bus.name);
        this.endCounting();
      },
      changes: (changes) => {
        this.dispatch({ type: 'changes', changes, now: Date.now() });
        if (changes.bus) this.endCounting();
      },
    });
    this.hands = new VirtualHands(store, (method, params) => this.live.call(method, params));
  }

  get state(): State {
    return this.store.state;
  }

  start(): void {
    this.dispatch({ type: 'view', part: { plots: keptPlots() } });
    this.live.start();
    void askWho(this);
    setInterval(() => {
      if (this.state.who?.role !== null) void askWho(this);
    }, askEvery);
  }

  wake(): void {
    wake(this);
  }

  perform(intent: Intent, refused?: Refused): void {
    const deed = deeds[intent.do] as (hub: Hub, intent: Intent) => Promise<unknown> | undefined;
    deed(this, intent)?.catch((reason: unknown) => {
      if (refused && reason instanceof Refusal) refused(reason.problem);
      else this.refuse(reason);
    });
  }

  dispatch(action: Action): void {
    this.store.dispatch(action);
  }

  ask(method: string, params: object): Promise<unknown> {
    return this.live.call(method, params);
  }

  refuse(reason: unknown): void {
    if (!(reason instanceof Refusal)) throw reason;
    const id = ++this.lastNotice;
    this.dispatch({ type: 'refused', id, problem: reason.problem });
    setTimeout(() => {
      this.dispatch({ type: 'noticed', id });
    }, noticeTime);
  }

  // Where no card is left, none is told of.
  private endCounting(): void {
    clearTimeout(this.counting);
    if (!this.state.isCounting || this.state.bus?.daemon.state !== 'up') return;
    this.counting = setTimeout(() => {
      this.dispatch({ type: 'counted' });
    }, countTime);
  }
}

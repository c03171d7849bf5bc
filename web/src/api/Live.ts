// The connection to the hub's /api/live, for as long as the page is open: connects, subscribes,
// comes back after a loss and asks for what was missed.
//
// A message that does not follow the one before it (its "after" is not our sequence number) means
// that something was missed: it subscribes again.
import { text } from '../text/text.js';
import { Backoff } from './Backoff.js';
import { unreached } from './Refusal.js';
import { Rpc } from './Rpc.js';
import type { Changes, Snapshot } from './Shapes.js';

export type Connection = 'connecting' | 'open' | 'lost';

export interface Hearer {
  // In how many ms is the next try, and when (ms) was the hub heard last: null, where not at all.
  connection(state: Connection, nextTry: number | null, heard: number | null): void;
  snapshot(snapshot: Snapshot): void;
  changes(changes: Changes): void;
}

// A socket can be dead unnoticed, after a sleep or a pulled cable: whoever is silent is asked.
const lookEvery = 15_000;
const answerWithin = 5000;
const openWithin = 10_000; // a handshake can stay without an answer for minutes

export class Live {
  private socket: WebSocket | null = null;
  private rpc: Rpc | null = null;
  private readonly backoff = new Backoff();
  private retry: ReturnType<typeof setTimeout> | undefined;
  private look: ReturnType<typeof setInterval> | undefined;
  private giveUp: ReturnType<typeof setTimeout> | undefined; // while it opens
  private sequence: number | null = null; // of the last message
  private isSubscribed = false;
  private heard = 0;

  constructor(
    private readonly url: string,
    private readonly hearer: Hearer,
  ) {}

  start(): void {
    this.stop();
    this.tell('connecting', null);
    const socket = new WebSocket(this.url);
    this.rpc = new Rpc(
      (text) => {
        socket.send(text);
      },
      (_method, params) => {
        this.takeChanges(params as Changes);
      },
    );
    this.socket = socket;
    socket.onopen = () => {
      clearTimeout(this.giveUp);
      void this.subscribe();
    };
    socket.onmessage = (event: MessageEvent<string>) => {
      this.heard = Date.now();
      this.rpc?.take(event.data);
    };
    socket.onclose = () => {
      this.lose();
    };
    this.giveUp = setTimeout(() => {
      this.lose();
    }, openWithin);
    this.look = setInterval(() => {
      this.probe(lookEvery);
    }, lookEvery);
  }

  stop(): void {
    clearTimeout(this.retry);
    clearInterval(this.look);
    clearTimeout(this.giveUp);
    this.isSubscribed = false;
    const socket = this.socket;
    this.socket = null;
    if (socket) socket.onopen = socket.onmessage = socket.onclose = null;
    socket?.close();
    this.rpc?.end(text.reach.lost);
    this.rpc = null;
  }

  // When the tab or the network comes back: no waiting for the next look or try, nor for a
  // handshake that began in the network of before.
  wake(): void {
    if (this.socket?.readyState === WebSocket.OPEN) {
      this.probe(0);
      return;
    }
    this.backoff.reset();
    this.start();
  }

  call(method: string, params: object): Promise<unknown> {
    if (this.rpc && this.socket?.readyState === WebSocket.OPEN)
      return this.rpc.call(method, params);
    return Promise.reject(unreached(text.reach.noConnection));
  }

  private async subscribe(): Promise<void> {
    this.isSubscribed = false;
    const after = this.sequence === null ? {} : { after: this.sequence };
    try {
      const snapshot = (await this.rpc?.call('live.subscribe', after)) as Snapshot;
      this.sequence = snapshot.seq;
      this.isSubscribed = true;
      this.backoff.reset();
      this.hearer.snapshot(snapshot);
      this.tell('open', null);
    } catch {
      this.lose();
    }
  }

  private tell(state: Connection, nextTry: number | null): void {
    this.hearer.connection(state, nextTry, this.heard || null);
  }

  private takeChanges(changes: Changes): void {
    if (!this.isSubscribed) return; // the answer that is under way holds them
    if (changes.after !== this.sequence) {
      void this.subscribe();
      return;
    }
    this.sequence = changes.seq;
    this.hearer.changes(changes);
  }

  private probe(silence: number): void {
    const socket = this.socket;
    if (socket?.readyState !== WebSocket.OPEN || Date.now() - this.heard < silence) return;
    const asked = Date.now();
    this.call('session.who', {}).catch(() => undefined);
    setTimeout(() => {
      if (this.socket === socket && this.heard < asked) this.lose();
    }, answerWithin);
  }

  private lose(): void {
    if (!this.socket) return; // an answer that failed because it was lost
    this.stop();
    const wait = this.backoff.next();
    this.tell('lost', wait);
    this.retry = setTimeout(() => {
      this.start();
    }, wait);
  }
}

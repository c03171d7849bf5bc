// The connection, with sockets that do what a test wants.
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { Live } from '../../src/api/Live.js';

class Socket {
  static readonly OPEN = 1;
  static all: Socket[] = [];
  readyState = 0;
  onopen: (() => void) | null = null;
  onclose: (() => void) | null = null;
  isClosed = false;

  constructor() {
    Socket.all.push(this);
  }

  send(): void {
    this.readyState = 1;
  }

  close(): void {
    this.isClosed = true;
  }
}

// Timers go off when a test says so.
let timers: { after: number; act: () => void }[] = [];

function elapse(after: number): void {
  for (const timer of timers.filter((each) => each.after === after)) timer.act();
}

Object.assign(globalThis, {
  WebSocket: Socket,
  setInterval: () => 0,
  clearInterval: () => undefined,
  setTimeout: (act: () => void, after: number) => {
    const timer = { after, act };
    timers.push(timer);
    return timer;
  },
  clearTimeout: (timer: unknown) => {
    timers = timers.filter((each) => each !== timer);
  },
});

let said: string[] = [];
const hearer = {
  connection: (state: string) => {
    said.push(state);
  },
  snapshot: () => undefined,
  changes: () => undefined,
};

beforeEach(() => {
  Socket.all = [];
  timers = [];
  said = [];
});

test('a handshake that nobody answers is given up after 10 s', () => {
  const live = new Live('ws://127.0.0.1', hearer);
  live.start();
  elapse(10_000);
  assert.deepEqual(said, ['connecting', 'lost']);
  assert.equal(Socket.all[0]?.isClosed, true);
});

test('a connection that is open is not given up', () => {
  const live = new Live('ws://127.0.0.1', hearer);
  live.start();
  Socket.all[0]?.onopen?.();
  elapse(10_000);
  assert.deepEqual(said, ['connecting']);
});

test('what wakes the page begins another handshake', () => {
  const live = new Live('ws://127.0.0.1', hearer);
  live.start();
  live.wake();
  assert.deepEqual(
    Socket.all.map(({ isClosed }) => isClosed),
    [true, false],
  );
});

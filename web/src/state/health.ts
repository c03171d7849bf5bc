// How the daemon, the adapter, the broker and this connection are, a row each. Pure.
import { text } from '../text/text.js';
import type { State } from './State.js';

export type Sign = 'good' | 'busy' | 'wrong' | 'none';
export type Part = 'page' | 'daemon' | 'adapter' | 'broker';

export type Word =
  | 'open'
  | 'connecting'
  | 'lost'
  | 'up'
  | 'down'
  | 'waiting'
  | 'absent'
  | 'refused'
  | 'unknown';

export interface Health {
  part: Part;
  sign: Sign;
  word: Word;
  detail: string | null; // where, and why
}

const signs: Record<Word, Sign> = {
  open: 'good',
  up: 'good',
  connecting: 'busy',
  waiting: 'busy',
  lost: 'wrong',
  absent: 'wrong',
  down: 'wrong',
  refused: 'wrong',
  unknown: 'none',
};

export function healthOf({ connection, bus }: Pick<State, 'connection' | 'bus'>): Health[] {
  const row = (
    part: Part,
    word: Word,
    ...details: (string | false | null | undefined)[]
  ): Health => ({
    part,
    word,
    sign: signs[word],
    detail: details.filter((detail) => detail).join(', ') || null,
  });
  // What the hub said last is not news while it is not there.
  const now = connection === 'open' ? bus : null;
  const isBlind = now?.daemon.state === 'up' && now.adapter.state === 'unknown';
  const rows = [
    row('daemon', now?.daemon.state ?? 'unknown'),
    row(
      'adapter',
      now?.adapter.state ?? 'unknown',
      now?.adapter.device,
      isBlind && text.wait.adapterUnknown,
    ),
  ];
  const broker = bus?.broker;
  if (broker) rows.push(row('broker', now ? broker.state : 'unknown', broker.host, broker.detail));
  return [...rows, row('page', connection)];
}

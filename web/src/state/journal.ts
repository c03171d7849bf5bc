// The journal as far as it was read: the newest entries, and what is known to be missing. Pure.
import type { Journal, JournalEntry } from '../api/Past.js';

export interface JournalLog {
  entries: readonly JournalEntry[]; // oldest first
  asked: number; // how many entries were asked for
  gone: number; // older ones that the hub no longer keeps
  lost: number; // that passed while this page was not listening
  isRead: boolean;
}

export const page = 100; // entries
export const mostEntries = 1000; // the hub gives no more at once

export const emptyJournal: JournalLog = {
  entries: [],
  asked: page,
  gone: 0,
  lost: 0,
  isRead: false,
};

export function wholeJournal(log: JournalLog, { entries, lost }: Journal): JournalLog {
  return { ...log, entries, gone: lost, lost: 0, isRead: true };
}

export function journalAfter(log: JournalLog, { entries, lost }: Journal): JournalLog {
  const last = log.entries.at(-1)?.seq ?? 0;
  const fresh = entries.filter(({ seq }) => seq > last);
  const [first] = fresh;
  if (!first && lost === 0) return log;
  // Numbers come one by one: what lies between was too much for one answer.
  const between = first ? Math.max(0, first.seq - last - 1) : 0;
  const kept = [...log.entries, ...fresh].slice(-mostEntries);
  return { ...log, entries: kept, lost: log.lost + Math.max(lost, between) };
}

export function hasOlder({ entries, asked }: JournalLog): boolean {
  return (entries[0]?.seq ?? 1) > 1 && asked < mostEntries;
}

export function kindsIn({ entries }: JournalLog): string[] {
  return [...new Set(entries.map(({ kind }) => kind))].sort();
}

export interface Filter {
  kind: string; // '': all
  words: string;
}

// Newest first.
export function filtered(
  entries: readonly JournalEntry[],
  { kind, words }: Filter,
): JournalEntry[] {
  const wanted = words.toLowerCase().split(/\s+/);
  const holds = ({ text, by }: JournalEntry) => {
    const whole = `${text} ${by ?? ''}`.toLowerCase();
    return wanted.every((word) => whole.includes(word));
  };
  return entries.filter((entry) => (kind === '' || entry.kind === kind) && holds(entry)).reverse();
}

// What the hub has kept: curves and the journal.
export type Point = [time: number, mean: number, least: number, most: number]; // time in ms

export interface History {
  channel: string;
  unit: string | null;
  step_ms: number; // 0: values as they came
  points: Point[];
}

export interface JournalEntry {
  seq: number; // one by one
  time: string;
  kind: string;
  text: string;
  by: string | null;
}

export interface Journal {
  entries: JournalEntry[]; // oldest first
  lost: number; // behind the number that was asked for, and no longer kept
}

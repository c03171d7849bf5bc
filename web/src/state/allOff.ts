// What "all outputs off" sends, and what undoes it. Pure.
//
// Lines go off and motors stand still. Servos and displays stay: a position is not "on".
import type { Card, Channel, Value } from '../api/Shapes.js';
import { numberOf } from './select.js';

export type Values = Record<string, Value>; // by the number of the channel

const middle = 0x80; // where a drive with a silent range stands; less is backward
const drives = 3; // the fourth channel of a motor is its control byte

// null: how a drive stands still is not known before the card has told its silent ranges.
export function offValues(card: Card, silentRanges: readonly (number | null)[]): Values | null {
  if (card.kind === 'digital-output') return valuesOf(card.channels, () => false);
  if (card.kind !== 'motor') return {};
  const own = card.channels.slice(0, drives);
  const values = valuesOf(own, (drive) => standstill(drive, silentRanges[numberOf(drive)] ?? null));
  return Object.values(values).includes(null) ? null : values;
}

// Signed drives are those that somebody has said to have a silent range.
function standstill({ min }: Channel, silentRange: number | null): number | null {
  const isSigned = min !== null && min < 0;
  if (silentRange === 0) return isSigned ? min : 0;
  if (isSigned) return 0;
  return silentRange === null ? null : middle;
}

// What is not known cannot be put back.
export function valuesBefore(card: Card, off: Values): Values {
  const known = card.channels.filter(
    (channel) => channel.known && off[String(numberOf(channel))] !== undefined,
  );
  return valuesOf(known, (channel) => channel.value);
}

function valuesOf(channels: readonly Channel[], value: (channel: Channel) => Value): Values {
  return Object.fromEntries(channels.map((channel) => [numberOf(channel), value(channel)]));
}

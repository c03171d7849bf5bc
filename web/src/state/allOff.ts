// What "all outputs off" sends, and what undoes it. Pure.
//
// Lines go off and motors stand still. Servos and displays stay: a position is not "on".
import type { Card, Channel, Value } from '../api/Shapes.js';
import { numberOf } from './select.js';

export type Values = Record<string, Value>; // by the number of the channel

const middle = 0x80; // where a motor with a silent range stands
const drives = 3; // the fourth channel of a motor is its control byte

export function offValues(card: Card, silentRanges: readonly (number | null)[]): Values {
  if (card.kind === 'digital-output') return valuesOf(card.channels, () => false);
  if (card.kind !== 'motor') return {};
  return valuesOf(card.channels.slice(0, drives), (channel) => {
    const isSigned = channel.min !== null && channel.min < 0;
    return !isSigned && (silentRanges[numberOf(channel)] ?? 0) > 0 ? middle : 0;
  });
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

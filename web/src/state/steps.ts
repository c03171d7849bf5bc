// Where a channel stands on its scale, in steps of its byte from the least value. Pure.
//
// A value is rounded to its decimals, and the ends of its range come in their order: only the byte
// says where it stands, and the two together on which end 0 is.
import type { Channel } from '../api/Shapes.js';

export const mostSteps = 255;

type Scale = Pick<Channel, 'value' | 'raw' | 'min' | 'max'>;

export function isReversed({ value, raw, min, max }: Scale): boolean {
  if (typeof value !== 'number' || raw === null || min === null || max === null) return false;
  const way = (raw / mostSteps) * (max - min);
  return Math.abs(max - way - value) < Math.abs(min + way - value);
}

export function stepsOf(channel: Scale): number | null {
  const { raw } = channel;
  return raw !== null && isReversed(channel) ? mostSteps - raw : raw;
}

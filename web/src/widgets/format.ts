// Numbers, times and names as people read them. Pure.
import type { Channel } from '../api/Shapes.js';
import { text } from '../text/text.js';

// With as many decimals as are said, else with up to two.
export function formatNumber(value: number, decimals: number | null = null): string {
  const written = decimals === null ? String(Number(value.toFixed(2))) : value.toFixed(decimals);
  return written.replace(/^-(?=[0.]*[1-9])/, '\u2212').replace('-', '');
}

export function formatLevel(value: number, { decimals }: Pick<Channel, 'decimals'>): string {
  return formatNumber(value, decimals ?? null);
}

export function formatValue(channel: Channel): string {
  const { value, known } = channel;
  if (!known || value === null) return text.unknownValue;
  if (typeof value === 'boolean') return value ? text.on : text.off;
  return typeof value === 'number' ? formatLevel(value, channel) : value;
}

export function formatDate(time: Date): string {
  return time.toLocaleDateString(text.locale, { day: 'numeric', month: 'short', year: 'numeric' });
}

export function formatMoment(time: number | string): string {
  const at = new Date(time);
  return `${formatDate(at)}, ${at.toLocaleTimeString(text.locale)}`;
}

export function formatTime(time: number): string {
  return new Date(time).toLocaleTimeString(text.locale);
}

// As the person's calendar has it, for the names of files: "2026-11-21".
export function formatDay(time: Date): string {
  const two = (number: number) => String(number).padStart(2, '0');
  return `${time.getFullYear()}-${two(time.getMonth() + 1)}-${two(time.getDate())}`;
}

// A channel without a name is called by its kind and number.
export function nameOf(channel: Channel): string {
  return channel.name ?? numberedName(channel);
}

const drives = 3; // the fourth channel of a motor card is its control byte

export function numberedName({ id, type }: Channel): string {
  const number = Number(id.slice(2));
  return type === 'drive' && number === drives ? text.controlByte : text.channels[type](number);
}

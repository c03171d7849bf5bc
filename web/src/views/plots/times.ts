// A moment as exactly as the window shows it. Pure.
import type { Span } from '../../state/plots.js';
import { text } from '../../text/text.js';
import { formatDate } from '../../widgets/format.js';

const second = 1000;
const day = 86_400_000;

export function momentText(time: number, { from, to }: Span): string {
  const whole = to - from;
  const at = new Date(time);
  const hours = at.toLocaleTimeString(text.locale);
  if (whole <= 120 * second) return `${hours}.${String(Math.floor(at.getMilliseconds() / 100))}`;
  if (whole < day / 2) return hours;
  return `${formatDate(at)}, ${hours.slice(0, 5)}`;
}

// The day is said once where the window lies in one.
export function windowText({ from, to }: Span): string {
  const [begin, end] = [new Date(from), new Date(to)];
  const day = formatDate(begin) === formatDate(end) ? '' : `${formatDate(end)}, `;
  const hours = (at: Date) => at.toLocaleTimeString(text.locale).slice(0, 5);
  return text.plots.window(`${formatDate(begin)}, ${hours(begin)}`, `${day}${hours(end)}`);
}

// How a curve is drawn: uPlot's options, the ranges and marks of its axes.
import uPlot from 'uplot';

import type { Point } from '../../api/Past.js';
import type { Channel } from '../../api/Shapes.js';
import type { Span } from '../../state/plots.js';
import { formatLevel } from '../../widgets/format.js';
import { text } from '../../text/text.js';

export interface Inks {
  curve: string;
  fill: string; // under what is on
  band: string; // from the least to the most value of a step
  grid: string;
  mark: string;
  face: string;
}

export interface Sheet {
  channel: Channel;
  hasTimes: boolean; // the lowest one shows the marks of time
  window: () => Span;
  inks: Inks;
}

export const sideWidth = 48; // px, for the marks of values
const footHeight = 24; // px
const markWidth = 40; // px, of most marks of time
const minute = 60;
const day = 86_400;

export function isSwitched({ type }: Channel): boolean {
  return type === 'switch' || type === 'contact';
}

export function rangeOf(channel: Channel): [number, number] {
  return isSwitched(channel) ? [0, 1] : [channel.min ?? 0, channel.max ?? 255];
}

// The values that are marked beside a curve. Bytes have no halves.
export function marksOf(channel: Channel): number[] {
  const [least, most] = rangeOf(channel);
  if (isSwitched(channel)) return [least, most];
  const middle = (least + most) / 2;
  return [least, channel.unit === null ? Math.round(middle) : middle, most];
}

function markText(channel: Channel, value: number): string {
  if (isSwitched(channel)) return value === 1 ? text.on : text.off;
  return formatLevel(value, channel);
}

// Times in seconds, the mean, the least, the most.
export function tableOf(points: readonly Point[]): uPlot.AlignedData {
  const column = (place: 1 | 2 | 3) => points.map((point) => point[place]);
  return [points.map(([time]) => time / 1000), column(1), column(2), column(3)];
}

// A mark of the time axis, as fine as the marks are apart (s).
export function timeMark(time: number, apart: number): string {
  const at = new Date(time * 1000);
  const form = (options: Intl.DateTimeFormatOptions) => at.toLocaleString(text.locale, options);
  if (apart >= 27 * day) return form({ month: 'short', year: 'numeric' });
  const isMidnight = at.getHours() === 0 && at.getMinutes() === 0 && at.getSeconds() === 0;
  if (apart >= day || isMidnight) return form({ day: 'numeric', month: 'short' });
  if (apart >= minute) return form({ hour: '2-digit', minute: '2-digit' });
  return form({ hour: '2-digit', minute: '2-digit', second: '2-digit' });
}

// A mark at the right end would be cut off.
function fits(chart: uPlot, time: number): boolean {
  return chart.valToPos(time, 'x') < chart.width - sideWidth - markWidth / 2;
}

export function chartOptions(sheet: Sheet, width: number, height: number): uPlot.Options {
  const { channel, hasTimes, inks } = sheet;
  const [least, most] = rangeOf(channel);
  const room = (most - least) * (isSwitched(channel) ? 0.25 : 0.06);
  const stepped = uPlot.paths.stepped?.({ align: 1 });
  const paths = stepped ? { paths: stepped } : {};
  const hidden = { ...paths, stroke: 'transparent', width: 0, points: { show: false } };
  const font = `11px ${inks.face}`;
  const grid = { stroke: inks.grid, width: 1 };
  return {
    width,
    height,
    legend: { show: false },
    cursor: { show: false },
    padding: [4, 0, hasTimes ? 0 : 4, 0],
    scales: {
      x: {
        time: true,
        range: () => {
          const { from, to } = sheet.window();
          return [from / 1000, to / 1000];
        },
      },
      y: { range: [least - room, most + room] },
    },
    axes: [
      {
        size: hasTimes ? footHeight : 0,
        stroke: inks.mark,
        font,
        grid,
        gap: 4,
        space: 80,
        ticks: { show: false },
        values: (chart, times, _axis, _space, apart) =>
          times.map((time) => (hasTimes && fits(chart, time) ? timeMark(time, apart) : '')),
      },
      {
        size: sideWidth,
        stroke: inks.mark,
        font,
        grid,
        gap: 6,
        ticks: { show: false },
        splits: () => marksOf(channel),
        values: (_chart, values) => values.map((value) => markText(channel, value)),
      },
    ],
    series: [
      {},
      {
        ...paths,
        stroke: inks.curve,
        width: 1.5,
        points: { show: false },
        ...(isSwitched(channel) ? { fill: inks.fill, fillTo: 0 } : {}),
      },
      hidden,
      hidden,
    ],
    bands: isSwitched(channel) ? [] : [{ series: [3, 2], fill: inks.band }],
  };
}

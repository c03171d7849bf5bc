// A knob that somebody turns elsewhere, and the way it went.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { TrailPoint } from '../state/State.js';
import { angleOf, arc, round, ticks, turnedBy } from './geometry.js';

export const knobBox = '-50 -48 100 84';
export const sparkBox = '0 0 100 24';

const scale = ticks(round, 10, 39, 45);
const grip = ticks({ from: 0, to: 345 }, 23, 26, 29);
const track = arc(round.from, round.to, 34);

export function drawKnob(value: number | null, min: number, max: number): SVGTemplateResult {
  const angle = value === null ? 0 : angleOf(value, min, max, round);
  const pointer =
    value === null
      ? null
      : svg`<path class="way" d=${arc(round.from, angle, 34)}></path>
        <g class="turned" .style=${turnedBy(angle)}><path class="grip" d=${grip}></path>
          <path class="pointer" d="M0-12V-28"></path></g>`;
  return svg`<g class="knob ${value === null ? 'unknown' : ''}">
    <path class="scale" d=${scale}></path><path class="track" d=${track}></path>
    <circle class="cap" r="29"></circle><circle class="top" r="22"></circle>${pointer}</g>`;
}

// The `span` ms up to `till` as a line of 100 x 24, as far as anything is known of them.
export function sparkPath(
  points: readonly TrailPoint[],
  min: number,
  max: number,
  span: number,
  till: number,
): string {
  if (points.length === 0) return '';
  const x = (time: number) =>
    Math.round(Math.min(100, Math.max(0, 100 - ((till - time) / span) * 100)) * 10) / 10;
  const y = (value: number) =>
    Math.round((22.5 - ((value - min) / (max - min || 1)) * 21) * 10) / 10;
  return points
    .map(({ time, value }, at) => `${at === 0 ? `M${x(time)} ` : `H${x(time)}V`}${y(value)}`)
    .concat('H100')
    .join('');
}

export const knobStyle = css`
  .knob .scale {
    stroke: var(--faint);
    stroke-width: 1;
  }
  .knob .track,
  .knob .way {
    fill: none;
    stroke: var(--line);
    stroke-width: 2;
  }
  .knob .way {
    stroke: var(--ink);
  }
  .knob .cap {
    fill: var(--part);
    stroke: var(--edge);
  }
  .knob .top {
    fill: var(--part-high);
    stroke: var(--line);
  }
  .knob .grip {
    stroke: var(--line);
  }
  .knob .turned {
    transform: rotate(var(--turn));
    transition: --turn var(--move);
  }
  .knob .pointer {
    stroke: var(--ink);
    stroke-width: 3;
  }
  .knob.unknown .cap {
    stroke-dasharray: 3 2;
  }
  .spark {
    fill: none;
    stroke: var(--faint);
    stroke-width: 1.25;
    vector-effect: non-scaling-stroke;
  }
`;

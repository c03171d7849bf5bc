// A motor's dial: the needle is the drive, and the arc from standstill glows as long as it turns.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';
import { angleOf, arc, round, ticks } from './geometry.js';

export const motorBox = '-50 -50 100 88';

const scale = arc(round.from, round.to, 45);
const coarse = ticks(round, 10, 38, 45);
const fine = ticks(round, 50, 42, 45);

// Standstill: the middle of a drive with two directions, else nothing at all.
export function standstill(min: number): number {
  return min < 0 ? 0 : min;
}

export function drawMotor(
  value: number | null,
  min: number,
  max: number,
  certainty: Certainty,
): SVGTemplateResult {
  const dial = svg`<path class="scale" d=${scale}></path><path class="fine" d=${fine}></path>
    <path class="coarse" d=${coarse}></path>`;
  if (value === null)
    return svg`<g class="motor unknown">${dial}<circle class="hub" r="6"></circle></g>`;
  const rest = standstill(min);
  const angle = angleOf(value, min, max, round);
  const turning =
    value === rest
      ? null
      : svg`<path class="turning" d=${arc(angleOf(rest, min, max, round), angle, 33)}></path>`;
  return svg`<g class="motor ${certainty}">${dial}${turning}
    <g class="needle" transform="rotate(${angle})"><path d="M-1.6 8L-.6-40h1.2L1.6 8z"></path></g>
    <circle class="hub" r="6"></circle></g>`;
}

export const motorStyle = css`
  .motor .scale,
  .motor .fine {
    fill: none;
    stroke: var(--line);
    stroke-width: 0.75;
  }
  .motor .coarse {
    stroke: var(--faint);
    stroke-width: 1;
  }
  .motor .turning {
    fill: none;
    stroke: var(--on);
    stroke-width: 5;
  }
  .motor .needle {
    fill: var(--ink);
    transition: transform var(--move);
  }
  .motor .hub {
    fill: var(--part);
    stroke: var(--edge);
  }
  .motor.assumed .needle,
  .motor.pending .needle {
    fill: var(--plate);
    stroke: var(--ink);
    stroke-width: 0.75;
    stroke-dasharray: 3 2;
  }
  .motor.pending .needle {
    stroke-dasharray: 1 3;
  }
  .motor.unknown .hub {
    stroke-dasharray: 3 2;
  }
`;

// A motor's dial: the needle is the drive, and the arc from standstill glows as long as it turns.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';
import { dialScale } from './dialScale.js';
import { angleOf, arc, round, turnedBy } from './geometry.js';

export const motorBox = '-50 -50 100 88';

const scale = dialScale(round, 50, 10);

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
  if (value === null)
    return svg`<g class="motor unknown">${scale}<circle class="hub" r="6"></circle></g>`;
  const rest = standstill(min);
  const angle = angleOf(value, min, max, round);
  const turning =
    value === rest
      ? null
      : svg`<path class="turning" d=${arc(angleOf(rest, min, max, round), angle, 33)}></path>`;
  return svg`<g class="motor ${certainty}">${scale}${turning}
    <g class="hand" .style=${turnedBy(angle)}>
      <path class="needle" d="M-1.6 8L-.6-40h1.2L1.6 8z"></path>
    </g>
    <circle class="hub" r="6"></circle></g>`;
}

export const motorStyle = css`
  .turning {
    fill: none;
    stroke: var(--on);
    stroke-width: 5;
  }
`;

// A servo from the front: its scale, and the horn that turns to where it is told.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';
import { angleOf, arc, horn, ticks } from './geometry.js';

export const servoBox = '-50 -50 100 66';

const scale = arc(horn.from, horn.to, 45);
const fine = ticks(horn, 32, 42, 45);
const coarse = ticks(horn, 4, 38, 45);
const arm = 'M-6.5-3L-3.2-36a3.2 3.2 0 0 1 6.4 0L6.5-3z';

export function drawServo(
  value: number | null,
  min: number,
  max: number,
  certainty: Certainty,
): SVGTemplateResult {
  const dial = svg`<path class="scale" d=${scale}></path><path class="fine" d=${fine}></path>
    <path class="coarse" d=${coarse}></path>`;
  const body = svg`<path class="body" d="M-17-9h34v22h-34z"></path>`;
  if (value === null)
    return svg`<g class="servo unknown">${dial}${body}<circle class="hub" r="9"></circle></g>`;
  const angle = angleOf(value, min, max, horn);
  return svg`<g class="servo ${certainty}">${dial}${body}
    <g class="horn" transform="rotate(${angle})">
      <path class="arm" d=${arm}></path>
      <circle class="hole" cy="-34" r="1.5"></circle><circle class="hole" cy="-27" r="1.5"></circle>
      <circle class="hole" cy="-20" r="1.5"></circle>
      <path class="tip" d="M0-38v-7"></path>
    </g>
    <circle class="hub" r="8"></circle><path class="slot" d="M-3 0h6M0-3v6"></path></g>`;
}

export const servoStyle = css`
  .servo .scale,
  .servo .fine {
    fill: none;
    stroke: var(--line);
    stroke-width: 0.75;
  }
  .servo .coarse {
    stroke: var(--faint);
    stroke-width: 1;
  }
  .servo .body {
    fill: var(--well);
    stroke: var(--line);
  }
  .servo .horn {
    transition: transform var(--move);
  }
  .servo .arm {
    fill: var(--metal);
  }
  .servo .hole {
    fill: var(--plate);
  }
  .servo .tip {
    stroke: var(--ink);
    stroke-width: 1.5;
  }
  .servo .hub {
    fill: var(--part);
    stroke: var(--edge);
  }
  .servo .slot {
    stroke: var(--faint);
  }
  .servo.assumed .arm,
  .servo.pending .arm {
    fill: var(--plate);
    stroke: var(--metal);
    stroke-dasharray: 3 2;
  }
  .servo.pending .arm {
    stroke-dasharray: 1 3;
  }
  .servo.unknown .hub {
    stroke-dasharray: 3 2;
  }
`;

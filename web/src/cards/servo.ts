// A servo from the front: its scale, and the horn that turns to where it is told.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';
import { dialScale } from './dialScale.js';
import { angleOf, horn, turnedBy } from './geometry.js';

export const servoBox = '-50 -50 100 66';

const scale = dialScale(horn, 32, 4);
const body = svg`<path class="body" d="M-17-9h34v22h-34z"></path>`;
const arm = 'M-6.5-3L-3.2-36a3.2 3.2 0 0 1 6.4 0L6.5-3z';

export function drawServo(
  value: number | null,
  min: number,
  max: number,
  certainty: Certainty,
): SVGTemplateResult {
  if (value === null)
    return svg`<g class="servo unknown">${scale}${body}<circle class="hub" r="9"></circle></g>`;
  const angle = angleOf(value, min, max, horn);
  return svg`<g class="servo ${certainty}">${scale}${body}
    <g class="hand" .style=${turnedBy(angle)}>
      <path class="needle arm" d=${arm}></path>
      <circle class="hole" cy="-34" r="1.5"></circle><circle class="hole" cy="-27" r="1.5"></circle>
      <circle class="hole" cy="-20" r="1.5"></circle>
      <path class="tip" d="M0-38v-7"></path>
    </g>
    <circle class="hub" r="8"></circle><path class="slot" d="M-3 0h6M0-3v6"></path></g>`;
}

export const servoStyle = css`
  .body {
    fill: var(--well);
    stroke: var(--line);
  }
  .arm {
    fill: var(--metal);
  }
  .hole {
    fill: var(--plate);
  }
  .tip {
    stroke: var(--ink);
    stroke-width: 1.5;
  }
  .slot {
    stroke: var(--faint);
  }
`;

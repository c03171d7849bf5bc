// A lamp: how it is drawn says whether it is on, and how sure that is.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';

// Its parts are always there and the style shows those that are meant: a lamp that goes on is
// painted anew, and nothing is laid out.
export function drawLamp(isOn: boolean, certainty: Certainty): SVGTemplateResult {
  const look = certainty === 'unknown' ? certainty : `${certainty} ${isOn ? 'on' : 'off'}`;
  return svg`<g class="lamp ${look}">
    <circle class="halo" r="11"></circle><circle class="halo" r="8.5"></circle>
    <circle class="ring" r="9.5"></circle><circle class="lens" r="6"></circle>
    <circle class="core" cy="-1.5" r="2.5"></circle>
    <path class="slash" d="M-3.4 3.4L3.4-3.4"></path>
  </g>`;
}

export const lampStyle = css`
  .lamp {
    fill: none;
  }
  .lamp .lens {
    fill: var(--well);
    stroke: var(--edge);
    stroke-width: 1.25;
  }
  .lamp.on .lens {
    fill: var(--on);
    stroke: var(--on);
  }
  .lamp.on .halo {
    fill: var(--halo);
    fill-opacity: 0.5;
  }
  .lamp.on .core {
    fill: var(--on-core);
  }
  .lamp.assumed .ring {
    stroke: var(--ink);
    stroke-width: 1;
    stroke-dasharray: 2 2;
  }
  .lamp.pending .ring {
    stroke: var(--ink);
    stroke-width: 2;
    stroke-dasharray: 15 45;
  }
  .lamp.unknown .lens {
    fill: none;
    stroke-dasharray: 2 1.77;
  }
  .lamp.unknown .slash {
    stroke: var(--edge);
    stroke-width: 1.25;
  }
`;

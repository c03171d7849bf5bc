// A lamp: how it is drawn says whether it is on, and how sure that is.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Certainty } from '../state/select.js';

export function drawLamp(isOn: boolean, certainty: Certainty): SVGTemplateResult {
  const lens = svg`<circle class="lens" r="6"></circle>`;
  if (certainty === 'unknown')
    return svg`<g class="lamp unknown">${lens}<path d="M-3.4 3.4L3.4-3.4"></path></g>`;
  const halo = isOn
    ? svg`<circle class="halo" r="11"></circle><circle class="halo" r="8.5"></circle>`
    : null;
  const ring = certainty === 'known' ? null : svg`<circle class="ring" r="9.5"></circle>`;
  const core = isOn ? svg`<circle class="core" cy="-1.5" r="2.5"></circle>` : null;
  return svg`<g class="lamp ${certainty} ${isOn ? 'on' : 'off'}">${halo}${ring}${lens}${core}</g>`;
}

export const lampStyle = css`
  .lamp .lens {
    fill: var(--well);
    stroke: var(--edge);
    stroke-width: 1.25;
    transition: fill var(--move);
  }
  .lamp.on .lens {
    fill: var(--on);
    stroke: var(--on);
  }
  .lamp .halo {
    fill: var(--halo);
    opacity: 0.5;
  }
  .lamp .core {
    fill: var(--on-core);
  }
  .lamp .ring {
    fill: none;
    stroke: var(--ink);
    stroke-width: 1;
  }
  .lamp.assumed .ring {
    stroke-dasharray: 2 2;
  }
  .lamp.pending .ring {
    stroke-width: 2;
    stroke-dasharray: 15 45;
  }
  .lamp.unknown .lens {
    fill: none;
    stroke-dasharray: 2 1.77;
  }
  .lamp.unknown path {
    stroke: var(--edge);
    stroke-width: 1.25;
  }
`;

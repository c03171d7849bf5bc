// The infrared transmitter: a dark lens, and its rays while a code goes out.
import { css, svg, type SVGTemplateResult } from 'lit';

import { arc } from './geometry.js';

export const eyeBox = '-50 -44 100 60';

const rays = [26, 33, 40].map((radius) => arc(-46, 46, radius));

export function drawEye(): SVGTemplateResult {
  return svg`<g class="eye">${rays.map((ray) => svg`<path class="ray" d=${ray}></path>`)}
    <path class="lens" d="M-16 8V-2a16 16 0 0 1 32 0V8z"></path>
    <path class="glint" d="M-10-2a10 10 0 0 1 10-10"></path>
    <path class="foot" d="M-22 8h44v6h-44z"></path></g>`;
}

// "434F0D" as "43 4F 0D".
export function spaced(bytes: string): string {
  return bytes.replace(/(..)(?=.)/g, '$1 ');
}

export const eyeStyle = css`
  .eye .lens {
    fill: var(--well);
    stroke: var(--edge);
  }
  .eye .glint {
    fill: none;
    stroke: var(--faint);
  }
  .eye .foot {
    fill: var(--part);
    stroke: var(--edge);
  }
  .eye .ray {
    fill: none;
    stroke: var(--line);
    stroke-width: 1.5;
  }
  .sending .eye .ray {
    stroke: var(--on);
  }
`;

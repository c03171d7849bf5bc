// The printed scale around a dial: its arc, fine marks and coarse ones, and how hands look that are
// not simply known.
import { css, svg, type SVGTemplateResult } from 'lit';

import { arc, type Dial, ticks } from './geometry.js';

const rim = 45;

// What it draws does not change: made once a kind.
export function dialScale(dial: Dial, fine: number, coarse: number): SVGTemplateResult {
  return svg`<path class="scale" d=${arc(dial.from, dial.to, rim)}></path>
    <path class="scale" d=${ticks(dial, fine, 42, rim)}></path>
    <path class="coarse" d=${ticks(dial, coarse, 38, rim)}></path>`;
}

export const dialScaleStyle = css`
  .scale {
    fill: none;
    stroke: var(--line);
    stroke-width: 0.75;
  }
  .coarse {
    stroke: var(--faint);
    stroke-width: 1;
  }
  .hub {
    fill: var(--part);
    stroke: var(--edge);
  }
  .unknown .hub {
    stroke-dasharray: 3 2;
  }
  .hand {
    transform: rotate(var(--turn));
    transition: --turn var(--move);
  }
  .needle {
    fill: var(--ink);
  }
  .assumed .needle,
  .pending .needle {
    fill: var(--plate);
    stroke: var(--ink);
    stroke-width: 0.75;
    stroke-dasharray: 3 2;
  }
  .pending .needle {
    stroke-dasharray: 1 3;
  }
`;

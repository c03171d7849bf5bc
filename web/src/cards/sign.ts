// The sign before a state: its shape says what its colour says too.
import { css, svg, type SVGTemplateResult } from 'lit';

import type { Sign } from '../state/health.js';

export function drawSign(sign: Sign): SVGTemplateResult {
  const shapes: Record<Sign, SVGTemplateResult> = {
    good: svg`<circle r="5"></circle>`,
    busy: svg`<circle r="4.5"></circle><path d="M0-4.5A4.5 4.5 0 0 1 0 4.5z"></path>`,
    wrong: svg`<path d="M-4.5-4.5L4.5 4.5M-4.5 4.5L4.5-4.5"></path>`,
    none: svg`<path d="M-4.5 0h9"></path>`,
  };
  return svg`<g class="sign ${sign}">${shapes[sign]}</g>`;
}

export const signStyle = css`
  .sign {
    fill: none;
    stroke: var(--faint);
    stroke-width: 1.5;
  }
  .sign.good {
    fill: var(--ink);
    stroke: none;
  }
  .sign.busy path {
    fill: var(--faint);
  }
  .sign.wrong {
    stroke: var(--wrong);
    stroke-width: 2;
  }
`;

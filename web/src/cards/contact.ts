// A contact that is only heard: its lever lies on both terminals, or stands off.
import { css, svg, type SVGTemplateResult } from 'lit';

export function drawContact(isOn: boolean, isKnown: boolean): SVGTemplateResult {
  const lever = isOn ? 'M8 12H28' : 'M8 12L26 4';
  return svg`<g class="contact ${isOn ? 'on' : 'off'} ${isKnown ? '' : 'unknown'}">
    <path class="lead" d="M0 12H6M30 12H36"></path>
    <path class="lever" d=${isKnown ? lever : 'M8 12L27 8'}></path>
    <circle cx="8" cy="12" r="2"></circle><circle cx="28" cy="12" r="2"></circle>
  </g>`;
}

export const contactStyle = css`
  .contact .lead {
    stroke: var(--edge);
  }
  .contact .lever {
    stroke: var(--metal);
    stroke-width: 1.75;
    stroke-linecap: round;
  }
  .contact.on .lever {
    stroke: var(--on);
    stroke-width: 2.5;
  }
  .contact circle {
    fill: var(--plate);
    stroke: var(--metal);
    stroke-width: 1.25;
  }
  .contact.unknown .lever {
    stroke: var(--edge);
    stroke-dasharray: 2 3;
  }
`;

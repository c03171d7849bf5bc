// A rocker switch, lying: "O" on the left, "I" on the right. The pressed half is flat and dark, the
// other stands up.
import { css, svg, type SVGTemplateResult } from 'lit';

const frame = 'M1.5.5h33a1 1 0 0 1 1 1v17a1 1 0 0 1-1 1h-33a1 1 0 0 1-1-1v-17a1 1 0 0 1 1-1z';
// Seen from above, the raised end of the paddle is longer than the sunken one.
const halves = {
  on: { raised: 'M3 2.5H19V17.5H3z', sunk: 'M19 3.5H32.5V16.5H19z' },
  off: { raised: 'M17 2.5H33V17.5H17z', sunk: 'M3.5 3.5H17V16.5H3.5z' },
};

export function drawRocker(isOn: boolean, isKnown: boolean): SVGTemplateResult {
  if (!isKnown)
    return svg`<g class="rocker unknown"><path class="frame" d=${frame}></path>
      <path class="sunk" d="M3 3h30v14H3z"></path><path class="mark" d="M15 10h6"></path></g>`;
  const half = isOn ? halves.on : halves.off;
  return svg`<g class="rocker ${isOn ? 'on' : 'off'}">
    <path class="frame" d=${frame}></path>
    <path class="sunk" d=${half.sunk}></path>
    <path class="raised" d=${half.raised}></path>
    <circle class="mark o" cx="10" cy="10" r="2.75"></circle>
    <path class="mark i" d="M26 7v6"></path>
  </g>`;
}

export const rockerStyle = css`
  .rocker .frame {
    fill: var(--well);
    stroke: var(--edge);
  }
  .rocker .sunk {
    fill: var(--part);
  }
  .rocker .raised {
    fill: var(--part-high);
    stroke: var(--line);
  }
  .rocker .mark {
    fill: none;
    stroke: var(--faint);
    stroke-width: 1.5;
  }
  .rocker.on .i {
    stroke: var(--on);
    stroke-width: 2.5;
  }
  .rocker.unknown .frame {
    stroke-dasharray: 3 2;
  }
`;

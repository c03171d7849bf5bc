// An analogue input: where its knob stands, its value, and the last half minute. A hand at a virtual
// bus turns it.
import { css, html, type TemplateResult } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import { round } from '../cards/geometry.js';
import { drawKnob, knobBox, knobStyle, sparkBox, sparkPath } from '../cards/knob.js';
import { levelLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { trailSpan } from '../state/memory.js';
import type { TrailPoint } from '../state/State.js';
import { nameOf } from './format.js';
import { base } from '../theme/base.js';
import { DialPart, dialStyle } from './DialPart.js';

@customElement('qelm-level')
export class LevelKnob extends DialPart {
  static override styles = [
    base,
    dialStyle,
    knobStyle,
    css`
      .trail {
        width: 100%;
        height: var(--trail-height);
        border-bottom: var(--hair) solid var(--line);
      }
    `,
  ];

  @property({ attribute: false }) trail: readonly TrailPoint[] = [];
  protected override readonly dial = round;
  protected override readonly box = knobBox;

  protected override draw(value: number | null) {
    return drawKnob(value, this.min, this.max);
  }

  protected override renderBelow(): TemplateResult {
    return html`<svg
      class="trail"
      viewBox=${sparkBox}
      preserveAspectRatio="none"
      aria-hidden="true"
    >
      <title>${nameOf(this.channel)}</title>
      <path class="spark" d=${sparkPath(this.trail, this.min, this.max, trailSpan)}></path>
    </svg>`;
  }

  protected override set(value: number): void {
    want(this, { do: 'hand', line: levelLine(this.channel, value) });
  }
}

// An analogue input: where its knob stands, its value, and the last half minute. A hand at a virtual
// bus turns it.
import { css, html, type TemplateResult } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import { round } from '../cards/geometry.js';
import { drawKnob, knobBox, knobStyle, sparkBox, sparkPath } from '../cards/knob.js';
import { levelLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { trailSpan } from '../state/memory.js';
import { knownTill } from '../state/select.js';
import type { TrailPoint } from '../state/State.js';
import { store } from '../state/Store.js';
import { text } from '../text/text.js';
import { nameOf } from './format.js';
import { base } from '../theme/base.js';
import { DialPart, dialStyle } from './DialPart.js';
import { Ticking } from './Ticking.js';

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

  constructor() {
    super();
    new Ticking(this, () => this.isMoving);
  }

  // The last step is seen, or has just gone.
  private get isMoving(): boolean {
    const last = this.trail.at(-1)?.time ?? -Infinity;
    return knownTill(store.state) - last < trailSpan + 2000;
  }

  protected override draw(value: number | null) {
    return drawKnob(value, this.min, this.max);
  }

  protected override renderBelow(): TemplateResult {
    const { trail, min, max } = this;
    return html`<svg
      class="trail"
      viewBox=${sparkBox}
      preserveAspectRatio="none"
      aria-hidden="true"
    >
      <title>${text.trail(nameOf(this.channel))}</title>
      <path class="spark" d=${sparkPath(trail, min, max, trailSpan, knownTill(store.state))}></path>
    </svg>`;
  }

  protected override set(value: number): void {
    want(this, { do: 'hand', line: levelLine(this.channel, value) });
  }
}

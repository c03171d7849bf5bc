// An analogue input: where its knob stands, its value, and the last half minute.
import { css, html, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import { drawKnob, knobBox, knobStyle, sparkBox, sparkPath } from '../cards/knob.js';
import { trailSpan } from '../state/memory.js';
import type { TrailPoint } from '../state/State.js';
import { formatValue, nameOf } from './format.js';
import { base } from '../theme/base.js';
import { ChannelPart } from './ChannelPart.js';
import { dialStyle } from './DialPart.js';

@customElement('qelm-level')
export class LevelKnob extends ChannelPart {
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

  override render() {
    const { value, unit, min, max } = this.channel;
    const [least, most] = [min ?? 0, max ?? 255];
    const shown = formatValue(this.channel);
    const number = typeof value === 'number' ? value : null;
    return html`<div class="dial" role="img" aria-label="${this.label}: ${shown} ${unit ?? ''}">
        <svg viewBox=${knobBox} aria-hidden="true">${drawKnob(number, least, most)}</svg>
      </div>
      <div class="value">
        ${shown}${unit ? html`<span class="unit">${unit}</span>` : nothing}${this.renderDoubt()}
      </div>
      <svg class="trail" viewBox=${sparkBox} preserveAspectRatio="none" aria-hidden="true">
        <title>${nameOf(this.channel)}</title>
        <path class="spark" d=${sparkPath(this.trail, least, most, trailSpan)}></path>
      </svg>
      ${this.renderName()}`;
  }
}

// The control byte of a motor card, bit by bit; 0 to 2 turn the drives backward.
import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';

import { drawLamp, lampStyle } from '../cards/lamp.js';
import { formatValue, nameOf } from './format.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { ChannelPart } from './ChannelPart.js';

const bits = [7, 6, 5, 4, 3, 2, 1, 0];

@customElement('qelm-control-byte')
export class ControlByte extends ChannelPart {
  static override styles = [
    base,
    lampStyle,
    css`
      :host {
        display: grid;
        grid-template-columns: minmax(0, 1fr) auto;
        gap: 0 0.5rem;
        align-items: center;
        border-top: var(--hair) solid var(--line);
        padding-top: 0.5rem;
      }
      .bits {
        grid-column: 1 / -1;
        display: grid;
        grid-template-columns: repeat(8, minmax(0, 1fr));
      }
      @media (pointer: coarse) {
        .bits {
          grid-template-columns: repeat(4, minmax(0, 1fr));
        }
      }
      .bit {
        display: grid;
        justify-items: center;
        align-content: center;
        min-height: var(--touch);
        font-size: 0.6875rem;
        color: var(--faint);
      }
      .bit svg {
        width: 1.25rem;
        height: 1.25rem;
        overflow: visible;
      }
      qelm-name {
        font-size: 0.75rem;
      }
      .value {
        font-size: 0.8125rem;
      }
      /* Nothing around it is laid out when it changes. */
      .figure {
        display: inline-block;
        width: 3ch;
        height: 1.25em;
        contain: layout size;
        text-align: right;
        vertical-align: top;
      }
    `,
  ];

  override render() {
    return html`${this.renderName()}
      <span class="value"
        ><span class="figure">${formatValue(this.channel)}</span>${this.renderDoubt()}</span
      >
      <div class="bits">${bits.map((bit) => this.renderBit(bit))}</div>`;
  }

  private renderBit(bit: number) {
    const isOn = (this.byte & (1 << bit)) !== 0;
    const label = text.bit(nameOf(this.channel), bit);
    const drawing = html`<svg viewBox="-12 -12 24 24" aria-hidden="true">
        ${drawLamp(isOn, this.certainty)}
      </svg>
      <span aria-hidden="true">${bit}</span>`;
    if (!this.usable)
      return html`<div class="bit" role="img" aria-label="${label}: ${isOn ? text.on : text.off}">
        ${drawing}
      </div>`;
    return html`<button
      class="bit"
      role="switch"
      aria-checked=${isOn}
      aria-label=${label}
      @click=${() => {
        this.set(Number(this.wanted ?? 0) ^ (1 << bit));
      }}
    >
      ${drawing}
    </button>`;
  }

  private get byte(): number {
    return this.channel.raw ?? 0;
  }
}

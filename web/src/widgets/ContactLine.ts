// A line that is heard: a contact and its lamp.
import { html } from 'lit';
import { customElement } from 'lit/decorators.js';

import { contactStyle, drawContact } from '../cards/contact.js';
import { drawLamp, lampStyle } from '../cards/lamp.js';
import { formatValue } from './format.js';
import { base } from '../theme/base.js';
import { ChannelPart } from './ChannelPart.js';
import { lineStyle } from './lineStyle.js';

@customElement('qelm-contact')
export class ContactLine extends ChannelPart {
  static override styles = [base, lineStyle, lampStyle, contactStyle];

  override render() {
    const isKnown = this.certainty !== 'unknown';
    return html`<div
        class="part"
        role="img"
        aria-label="${this.label}: ${formatValue(this.channel)}"
      >
        <span class="number" aria-hidden="true">${this.number}</span>
        <svg class="drawing" viewBox="0 0 36 20" aria-hidden="true">
          ${drawContact(this.isOn, isKnown)}
        </svg>
        <svg class="bulb" viewBox="-12 -12 24 24" aria-hidden="true">
          ${drawLamp(this.isOn, this.certainty)}
        </svg>
      </div>
      ${this.renderName()}`;
  }
}

// A line that is heard: a contact and its lamp. A hand at a virtual bus closes and opens it.
import { html, type TemplateResult } from 'lit';
import { customElement } from 'lit/decorators.js';

import { contactStyle, drawContact } from '../cards/contact.js';
import { drawLamp, lampStyle } from '../cards/lamp.js';
import { contactLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { formatValue } from './format.js';
import { base } from '../theme/base.js';
import { ChannelPart } from './ChannelPart.js';
import { lineStyle } from './lineStyle.js';

@customElement('qelm-contact')
export class ContactLine extends ChannelPart {
  static override styles = [base, lineStyle, lampStyle, contactStyle];

  override render() {
    const drawing = this.draw();
    const part = this.usable
      ? html`<button
          class="part"
          role="switch"
          aria-checked=${this.isOn}
          aria-label=${this.label}
          @click=${this.flip}
        >
          ${drawing}
        </button>`
      : html`<div class="part" role="img" aria-label="${this.label}: ${formatValue(this.channel)}">
          ${drawing}
        </div>`;
    return html`${part}${this.renderName()}`;
  }

  private draw(): TemplateResult {
    const isKnown = this.certainty !== 'unknown';
    return html`<span class="number" aria-hidden="true">${this.number}</span>
      <svg class="drawing" viewBox="0 0 36 20" aria-hidden="true">
        ${drawContact(this.isOn, isKnown)}
      </svg>
      <svg class="bulb" viewBox="-12 -12 24 24" aria-hidden="true">
        ${drawLamp(this.isOn, this.certainty)}
      </svg>`;
  }

  private flip(): void {
    want(this, { do: 'hand', line: contactLine(this.channel) });
  }
}

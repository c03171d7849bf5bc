// A line that is switched: a rocker and its lamp.
import { html, type TemplateResult } from 'lit';
import { customElement } from 'lit/decorators.js';

import { drawLamp, lampStyle } from '../cards/lamp.js';
import { drawRocker, rockerStyle } from '../cards/rocker.js';
import { formatValue } from './format.js';
import { base } from '../theme/base.js';
import { ChannelPart } from './ChannelPart.js';
import { lineStyle } from './lineStyle.js';

@customElement('qelm-switch')
export class SwitchLine extends ChannelPart {
  static override styles = [base, lineStyle, lampStyle, rockerStyle];

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
    const rocker = drawRocker(this.isOn, this.certainty !== 'unknown');
    return html`<span class="number" aria-hidden="true">${this.number}</span>
      <svg class="drawing" viewBox="0 0 36 20" aria-hidden="true">${rocker}</svg>
      <svg class="bulb" viewBox="-12 -12 24 24" aria-hidden="true">
        ${drawLamp(this.isOn, this.certainty)}
      </svg>`;
  }

  private flip(): void {
    this.set(!this.isOn);
  }
}

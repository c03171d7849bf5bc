// A line of a digital card: its number, its drawing, its lamp, its name.
import { html, type SVGTemplateResult, type TemplateResult } from 'lit';

import { drawLamp } from '../cards/lamp.js';
import { formatValue } from './format.js';
import { ChannelPart } from './ChannelPart.js';

export abstract class LinePart extends ChannelPart {
  protected abstract draw(isOn: boolean, isKnown: boolean): SVGTemplateResult;
  protected abstract flip(): void;

  protected get isOn(): boolean {
    return this.channel.value === true;
  }

  override render() {
    const part = this.usable
      ? html`<button
          class="part"
          role="switch"
          aria-checked=${this.isOn}
          aria-label=${this.label}
          @click=${this.flip}
        >
          ${this.renderDrawing()}
        </button>`
      : html`<div class="part" role="img" aria-label="${this.label}: ${formatValue(this.channel)}">
          ${this.renderDrawing()}
        </div>`;
    return html`${part}${this.renderName()}`;
  }

  private renderDrawing(): TemplateResult {
    return html`<span class="number" aria-hidden="true">${this.number}</span>
      <span class="drawing"
        ><svg viewBox="0 0 36 20" aria-hidden="true">
          ${this.draw(this.isOn, this.certainty !== 'unknown')}
        </svg></span
      >
      <svg class="bulb" viewBox="-12 -12 24 24" aria-hidden="true">
        ${drawLamp(this.isOn, this.certainty)}
      </svg>`;
  }
}

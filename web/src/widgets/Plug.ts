// Pulls a card of a virtual bus out of its slot, and plugs it in again.
import { css, html, LitElement } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import { cardLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

@customElement('qelm-plug')
export class Plug extends LitElement {
  static override styles = [
    base,
    css`
      button {
        display: grid;
        place-items: center;
        width: var(--touch);
        height: var(--touch);
        margin-right: -0.375rem;
      }
      svg {
        width: 1rem;
        height: 1rem;
        fill: none;
        stroke: var(--faint);
        stroke-width: 1.25;
      }
      button:hover svg {
        stroke: var(--ink);
      }
    `,
  ];

  @property() address = '';
  @property({ type: Boolean }) isPulled = false;

  override render() {
    const { plugCard, pullCard } = text.hands;
    const label = this.isPulled ? plugCard(this.address) : pullCard(this.address);
    const arrow = this.isPulled ? 'M8 1v8M5 6l3 3 3-3' : 'M8 9V1M5 4l3-3 3 3';
    return html`<button aria-label=${label} title=${label} @click=${this.flip}>
      <svg viewBox="0 0 16 16" aria-hidden="true"><path d="${arrow}M2 10v4h12v-4"></path></svg>
    </button>`;
  }

  private flip(): void {
    const verb = this.isPulled ? 'plug' : 'pull';
    want(this, { do: 'hand', line: cardLine(this.address, verb) });
  }
}

// All outputs off: held for a second, and undone for ten.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import { want } from '../state/Intent.js';
import type { AllOff } from '../state/State.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { secondsTill, Ticking } from './Ticking.js';

@customElement('qelm-all-off')
export class AllOffButton extends LitElement {
  static override styles = [
    base,
    css`
      div {
        display: flex;
        align-items: center;
        gap: 0.75rem;
        font-size: 0.8125rem;
      }
      svg {
        width: 1rem;
        height: 1rem;
        fill: none;
        stroke: var(--wrong);
        stroke-width: 1.5;
      }
    `,
  ];

  @property({ attribute: false }) allOff: AllOff | null = null;

  constructor() {
    super();
    new Ticking(this);
  }

  override render() {
    const undo = this.allOff
      ? html`<span>${text.allOff.stages[this.allOff.stage]}</span> ${this.renderUndo(
            this.allOff.until,
          )}`
      : html`<qelm-hold
          .hint=${text.allOff.hint}
          @held=${() => {
            want(this, { do: 'all-off' });
          }}
          ><svg viewBox="0 0 16 16" aria-hidden="true">
            <path d="M8 1.5v6M4.6 3.6a5.75 5.75 0 1 0 6.8 0"></path></svg
          ><span>${text.allOff.hold}</span></qelm-hold
        >`;
    return html`<div role="status">${undo}</div>`;
  }

  private renderUndo(until: number | null) {
    if (until === null) return nothing;
    return html`<button
      class="key"
      @click=${() => {
        want(this, { do: 'undo-all-off' });
      }}
    >
      ${text.allOff.undo(secondsTill(until))}
    </button>`;
  }
}

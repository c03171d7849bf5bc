// All outputs off: held for a second, and undone for ten. What has become of it is said in a slip
// beside it, and the keyboard goes there and back.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import { want } from '../state/Intent.js';
import type { AllOff } from '../state/State.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { secondsTill, Ticking } from './Ticking.js';

const hintTime = 5000; // ms

@customElement('qelm-all-off')
export class AllOffButton extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        position: relative;
      }
      svg {
        width: 1rem;
        height: 1rem;
        fill: none;
        stroke: var(--wrong);
        stroke-width: 1.5;
      }
      .short {
        display: none;
      }
      .slip {
        position: absolute;
        right: 0;
        top: calc(100% + 0.5rem);
        display: flex;
        align-items: center;
        gap: 0.75rem;
        width: max-content;
        max-width: min(26rem, calc(100vw - 1rem));
        padding: 0.5rem 0.5rem 0.5rem 0.75rem;
        border: var(--hair) solid var(--edge);
        border-radius: 2px;
        background: var(--plate);
        font-size: 0.875rem;
      }
      .seconds {
        color: var(--faint);
      }
      @media (max-width: 639px) {
        qelm-hold,
        qelm-hold::part(button) {
          width: 100%;
          height: 100%;
        }
        qelm-hold::part(button) {
          flex-direction: column;
          gap: 0.125rem;
          padding: 0;
          border: 0;
          font-size: 0.6875rem;
        }
        svg {
          width: 1.25rem;
          height: 1.25rem;
        }
        .long {
          position: absolute;
          clip-path: inset(50%);
        }
        .short {
          display: inline;
        }
        .slip {
          top: auto;
          right: 0.5rem;
          bottom: calc(100% + 0.5rem);
        }
      }
    `,
  ];

  @property({ attribute: false }) allOff: AllOff | null = null;
  @state() private isHinted = false; // what a press that was too short does not know
  private timer: ReturnType<typeof setTimeout> | undefined;
  private hadUndo = false; // and the keyboard was there

  constructor() {
    super();
    new Ticking(this);
  }

  override willUpdate(): void {
    this.hadUndo = this.shadowRoot?.activeElement?.matches('.undo') ?? false;
  }

  override render() {
    const { allOff } = this;
    return html`<qelm-hold
        .hint=${text.allOff.hint}
        @held=${() => {
          this.hint(false);
          want(this, { do: 'all-off' });
        }}
        @short=${() => {
          this.hint(true);
        }}
        ><svg viewBox="0 0 16 16" aria-hidden="true">
          <path d="M8 1.5v6M4.6 3.6a5.75 5.75 0 1 0 6.8 0"></path></svg
        ><span class="long">${text.allOff.hold}</span
        ><span class="short" aria-hidden="true">${text.allOff.short}</span></qelm-hold
      >
      <div class=${allOff || this.isHinted ? 'slip' : ''}>
        <span role="status">${this.said}</span>
        ${this.renderUndo()}
      </div>`;
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    clearTimeout(this.timer);
  }

  private get said() {
    if (this.allOff) return text.allOff.stages[this.allOff.stage];
    return this.isHinted ? text.allOff.hint : nothing;
  }

  private hint(isHinted: boolean): void {
    this.isHinted = isHinted;
    clearTimeout(this.timer);
    if (isHinted)
      this.timer = setTimeout(() => {
        this.hint(false);
      }, hintTime);
  }

  override updated(): void {
    const undo = this.renderRoot.querySelector<HTMLElement>('.undo');
    if (this.hadUndo && !undo) this.renderRoot.querySelector<HTMLElement>('qelm-hold')?.focus();
    if (undo && !this.hadUndo && this.shadowRoot?.activeElement) undo.focus();
  }

  // The key that held the other button is still down: its repetitions are not meant for this one.
  private renderUndo() {
    const until = this.allOff?.until ?? null;
    if (until === null) return nothing;
    return html`<button
      class="key undo"
      @keydown=${(event: KeyboardEvent) => {
        if (event.repeat) event.preventDefault();
      }}
      @click=${() => {
        want(this, { do: 'undo-all-off' });
      }}
    >
      ${text.allOff.undo}
      <span class="seconds" aria-hidden="true">${text.allOff.seconds(secondsTill(until))}</span>
    </button>`;
  }
}

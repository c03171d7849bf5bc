// A button that has to be held for a second, by mouse, finger or key. Emits `held`, or `short` where
// it was let go before.
import { css, html, LitElement } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import { base } from '../theme/base.js';

const holdTime = 1000; // ms

@customElement('qelm-hold')
export class HoldButton extends LitElement {
  static override shadowRootOptions = { ...LitElement.shadowRootOptions, delegatesFocus: true };
  static override styles = [
    base,
    css`
      :host {
        display: inline-block;
      }
      button {
        position: relative;
        overflow: hidden;
        user-select: none;
        -webkit-user-select: none;
        touch-action: none;
      }
      .way {
        position: absolute;
        inset: auto 0 0;
        height: 3px;
        background: var(--wrong);
        transform: scaleX(0);
        transform-origin: left;
      }
      .holding .way {
        transform: scaleX(1);
        transition: transform 1000ms linear;
      }
    `,
  ];

  @property() label = '';
  @property() hint = '';
  @state() private isHolding = false;
  private timer: ReturnType<typeof setTimeout> | undefined;

  override render() {
    return html`<button
      part="button"
      class="key ${this.isHolding ? 'holding' : ''}"
      aria-description=${this.hint}
      title=${this.hint}
      @pointerdown=${this.begin}
      @pointerup=${this.letGo}
      @pointerleave=${this.end}
      @pointercancel=${this.end}
      @keydown=${this.onKey}
      @keyup=${this.letGo}
      @blur=${this.end}
      @contextmenu=${(event: Event) => {
        event.preventDefault();
      }}
    >
      <slot>${this.label}</slot><span class="way"></span>
    </button>`;
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    this.end();
  }

  private begin(): void {
    this.isHolding = true;
    clearTimeout(this.timer);
    this.timer = setTimeout(() => {
      this.isHolding = false;
      this.dispatchEvent(new Event('held'));
    }, holdTime);
  }

  private end(): void {
    clearTimeout(this.timer);
    this.isHolding = false;
  }

  private letGo(): void {
    if (this.isHolding) this.dispatchEvent(new Event('short'));
    this.end();
  }

  private onKey(event: KeyboardEvent): void {
    if (event.key !== ' ' && event.key !== 'Enter') return;
    event.preventDefault();
    if (!event.repeat) this.begin();
  }
}

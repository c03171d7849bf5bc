// A key card: the key that is held, the encoder as far as it was turned, and what came last.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import type { Card, KeyEvent } from '../api/Shapes.js';
import {
  drawEncoder,
  drawPad,
  encoderBox,
  hex,
  keypadStyle,
  narrow,
  neighbour,
  padBox,
  wide,
} from '../cards/keypad.js';
import { keyLine, turnLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { formatTime } from './format.js';
import { type Entry, entriesOf } from '../cards/turns.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { EncoderGrip } from './EncoderGrip.js';

const shown = 5; // of the last events
const codeBits = 0x3f;
const byFinger = window.matchMedia('(pointer: coarse), (max-width: 639px)');
const isPress = ({ key }: KeyboardEvent) => key === ' ' || key === 'Enter';

@customElement('qelm-keypad')
export class KeyPad extends LitElement {
  static override styles = [
    base,
    keypadStyle,
    css`
      :host {
        display: grid;
        grid-template-columns: minmax(0, 1fr) 4.5rem;
        gap: 0.5rem 0.75rem;
        align-items: center;
      }
      /* Blocks of their own: what changes in them is laid out without the page around them. */
      .pad,
      .pad svg {
        width: 100%;
      }
      .held {
        justify-self: stretch;
      }
      .held span {
        display: block;
        height: 1.25rem;
        contain: layout size;
      }
      .encoder-drawing {
        width: 4.5rem;
        overflow: visible;
      }
      .held {
        grid-column: 1 / -1;
        font-size: 1.0625rem;
        line-height: 1.25rem;
      }
      .grip {
        cursor: grab;
        touch-action: none;
      }
      .encoder-drawing,
      .held {
        text-align: center;
      }
      ol {
        grid-column: 1 / -1;
        border-top: var(--hair) solid var(--line);
        padding-top: 0.25rem;
        min-height: 6.5rem;
        font-size: 0.75rem;
        line-height: 1.25rem;
      }
      ol.none {
        border-color: transparent;
      }
      li {
        display: flex;
        gap: 0.5rem;
      }
      .count {
        color: var(--faint);
      }
      time {
        margin-left: auto;
        color: var(--faint);
      }
      @media (max-width: 639px) {
        ol {
          min-height: 0;
        }
        :host([usable]) {
          grid-template-columns: minmax(0, 1fr);
          justify-items: center;
        }
        :host([usable]) ol {
          justify-self: stretch;
        }
      }
      @container (max-width: 13rem) {
        :host {
          grid-template-columns: minmax(0, 1fr);
          justify-items: center;
        }
        ol {
          justify-self: stretch;
          min-height: 4rem;
        }
      }
    `,
  ];

  @property({ attribute: false }) card!: Card;
  @property({ attribute: false }) events: readonly KeyEvent[] = [];
  @property({ type: Number }) turns = 0;
  @property({ type: Boolean, reflect: true }) usable = false;
  @state() private reached = 1; // the key that the keyboard is at
  private readonly grip = new EncoderGrip((steps) => {
    want(this, { do: 'hand', line: turnLine(this.card.address, steps) });
  });

  override render() {
    const raw = this.card.channels[0]?.raw ?? null;
    const held = raw === null ? 0 : raw & codeBits;
    const last = entriesOf(this.events).slice(0, shown);
    const recent = last.flatMap(({ event }) => event.code ?? []);
    const { columns } = this;
    const key = held === 0 ? text.keys.none : text.keys.held(hex(held));
    const value = raw === null ? text.unknownValue : key;
    return html`<div class="pad">
        <svg
          viewBox=${padBox(columns)}
          role=${this.usable ? 'group' : 'img'}
          aria-label="${text.keys.pad}: ${value}"
          @pointerdown=${this.onPress}
          @pointerup=${this.onRelease}
          @pointercancel=${this.onRelease}
          @keydown=${this.onKeyDown}
          @keyup=${this.onKeyUp}
        >
          ${drawPad(held, recent, this.usable ? this.reached : null, columns)}
        </svg>
      </div>
      ${this.usable ? this.renderGrip(raw) : html`<div>${this.renderEncoder(raw)}</div>`}
      <div class="held" aria-hidden="true"><span>${value}</span></div>
      <ol class=${last.length === 0 ? 'none' : ''} aria-label=${text.keys.recent}>
        ${last.map((entry) => this.renderEntry(entry))}
      </ol>`;
  }

  private get columns(): number {
    return this.usable && byFinger.matches ? narrow : wide;
  }

  private renderEncoder(raw: number | null) {
    return html`<svg
      class="encoder-drawing"
      viewBox=${encoderBox}
      role="img"
      aria-label=${text.keys.encoder}
    >
      ${drawEncoder(this.turns, raw === null ? null : raw >> 6)}
    </svg>`;
  }

  private renderGrip(raw: number | null) {
    return html`<div
      class="grip"
      role="spinbutton"
      tabindex="0"
      aria-label=${text.hands.encoder}
      aria-valuenow=${this.turns}
      @pointerdown=${this.grip.down}
      @pointermove=${this.grip.move}
      @pointerup=${this.grip.up}
      @pointercancel=${this.grip.up}
      @keydown=${this.grip.key}
    >
      ${this.renderEncoder(raw)}
    </div>`;
  }

  private codeAt(event: Event): number | null {
    const key = this.usable ? (event.target as Element).closest('[data-code]') : null;
    return key ? Number(key.getAttribute('data-code')) : null;
  }

  private hand(code: number | null): void {
    want(this, { do: 'hand', line: keyLine(this.card.address, code) });
  }

  private onPress(event: PointerEvent): void {
    const code = this.codeAt(event);
    if (code === null || event.button !== 0) return;
    (event.currentTarget as Element).setPointerCapture(event.pointerId);
    this.reached = code;
    this.hand(code);
  }

  private onRelease(): void {
    if (this.usable) this.hand(null);
  }

  private onKeyDown(event: KeyboardEvent): void {
    const code = this.codeAt(event);
    if (code === null || event.repeat) return;
    if (isPress(event)) this.hand(code);
    const next = neighbour(code, event.key, this.columns);
    if (next === code && !isPress(event)) return;
    event.preventDefault();
    this.reached = next;
    this.renderRoot.querySelector<SVGElement>(`[data-code="${next}"]`)?.focus();
  }

  private onKeyUp(event: KeyboardEvent): void {
    if (isPress(event)) this.onRelease();
  }

  private renderEntry({ event: { event_type: type, code, time }, count }: Entry) {
    return html`<li>
      <span>${text.keys[type]}</span>${code === null ? nothing : html`<b>${hex(code)}</b>`}
      ${count > 1 ? html`<span class="count">× ${count}</span>` : nothing}
      <time datetime=${time}>${formatTime(Date.parse(time))}</time>
    </li>`;
  }
}

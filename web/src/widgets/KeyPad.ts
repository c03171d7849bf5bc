// A key card: the key that is held, the encoder as far as it was turned, and what came last.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import type { Card, KeyEvent } from '../api/Shapes.js';
import { drawEncoder, drawPad, encoderBox, hex, keypadStyle, padBox } from '../cards/keypad.js';
import { formatTime } from './format.js';
import { type Entry, entriesOf } from '../cards/turns.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

const shown = 5; // of the last events
const codeBits = 0x3f;

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
      .pad {
        width: 100%;
      }
      .encoder-drawing {
        width: 100%;
        overflow: visible;
      }
      .held {
        grid-column: 1 / -1;
        font-size: 1.0625rem;
        line-height: 1.25rem;
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
      @container (max-width: 13rem) {
        :host {
          grid-template-columns: minmax(0, 1fr);
          justify-items: center;
        }
        .encoder-drawing {
          width: 4rem;
        }
        ol {
          justify-self: stretch;
        }
      }
    `,
  ];

  @property({ attribute: false }) card!: Card;
  @property({ attribute: false }) events: readonly KeyEvent[] = [];
  @property({ type: Number }) turns = 0;

  override render() {
    const raw = this.card.channels[0]?.raw ?? null;
    const held = raw === null ? 0 : raw & codeBits;
    const last = entriesOf(this.events).slice(0, shown);
    const recent = last.flatMap(({ event }) => event.code ?? []);
    const key = held === 0 ? text.keys.none : text.keys.held(hex(held));
    const value = raw === null ? text.unknownValue : key;
    return html`<svg
        class="pad"
        viewBox=${padBox}
        role="img"
        aria-label="${text.keys.pad}: ${value}"
      >
        ${drawPad(held, recent)}
      </svg>
      <svg class="encoder-drawing" viewBox=${encoderBox} role="img" aria-label=${text.keys.encoder}>
        ${drawEncoder(this.turns, raw === null ? null : raw >> 6)}
      </svg>
      <div class="held" aria-hidden="true">${value}</div>
      <ol aria-label=${text.keys.recent}>
        ${last.map((entry) => this.renderEntry(entry))}
      </ol>`;
  }

  private renderEntry({ event: { event_type: type, code, time }, count }: Entry) {
    return html`<li>
      <span>${text.keys[type]}</span>${code === null ? nothing : html`<b>${hex(code)}</b>`}
      ${count > 1 ? html`<span class="count">× ${count}</span>` : nothing}
      <time datetime=${time}>${formatTime(Date.parse(time))}</time>
    </li>`;
  }
}

// The infrared transmitter: its eye, the codes that went out last, and a line for another.
import { css, html, LitElement, nothing, type PropertyValues } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import type { Card } from '../api/Shapes.js';
import { drawEye, eyeBox, eyeStyle, spaced } from '../cards/eye.js';
import { want } from '../state/Intent.js';
import { namedCodes } from '../state/select.js';
import type { SentCode } from '../state/State.js';
import { formatTime } from './format.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import type { RenamedEvent } from './Name.js';

const rayTime = 600; // ms
const longest = 35 * 3 - 1; // bytes, each two digits and a blank between

@customElement('qelm-infrared')
export class InfraredEye extends LitElement {
  static override styles = [
    base,
    eyeStyle,
    css`
      :host {
        display: grid;
        grid-template-columns: minmax(0, 1fr);
        gap: 0.5rem;
      }
      svg {
        width: 100%;
        max-height: 5.5rem;
      }
      ol,
      .none {
        min-height: 6.25rem;
        border-top: var(--hair) solid var(--line);
        padding-top: 0.25rem;
        font-size: 0.75rem;
        line-height: 1.25rem;
      }
      .none {
        color: var(--faint);
      }
      li {
        display: flex;
        align-items: baseline;
        gap: 0.5rem;
      }
      code {
        font-family: var(--mono);
        overflow: hidden;
        text-overflow: ellipsis;
        white-space: nowrap;
      }
      time {
        margin-left: auto;
        color: var(--faint);
      }
      qelm-name {
        flex: 1;
      }
      .named {
        display: flex;
        flex-wrap: wrap;
        gap: 0.25rem;
      }
      @media (max-width: 639px) {
        ol,
        .none {
          min-height: 0;
        }
      }
      form {
        display: flex;
        flex-wrap: wrap;
        gap: 0.25rem;
      }
      .field {
        flex: 1 1 4rem;
        width: 4rem;
        font-family: var(--mono);
        text-transform: uppercase;
      }
    `,
  ];

  @property({ attribute: false }) card!: Card;
  @property({ attribute: false }) codes: readonly SentCode[] = [];
  @property({ type: Boolean }) usable = false;
  @property({ type: Boolean }) renamable = false;
  @state() private isSending = false;

  override updated(changed: PropertyValues<this>): void {
    const before = changed.get('codes');
    if (!before || this.codes.length === 0 || this.codes[0] === before[0]) return;
    this.isSending = true;
    setTimeout(() => {
      this.isSending = false;
    }, rayTime);
  }

  override render() {
    const list = this.codes.map(
      ({ time, bytes }) => html`<li>${this.renderCode(bytes)}<time>${formatTime(time)}</time></li>`,
    );
    return html`<svg
        class=${this.isSending ? 'sending' : ''}
        viewBox=${eyeBox}
        role="img"
        aria-label=${text.infrared.label}
      >
        ${drawEye()}
      </svg>
      ${list.length === 0
        ? html`<p class="none">${text.infrared.none}</p>`
        : html`<ol aria-label=${text.infrared.recent}>
            ${list}
          </ol>`}
      ${this.usable ? [this.renderNamed(), this.renderForm()] : nothing}`;
  }

  // A code that gets a name here is a button from then on.
  private renderCode(bytes: string) {
    const name = this.card.codes?.[bytes] ?? null;
    if (!this.renamable && name === null)
      return html`<code title=${spaced(bytes)}>${spaced(bytes)}</code>`;
    return html`<qelm-name
      .name=${name}
      .fallback=${spaced(bytes)}
      .editable=${this.renamable}
      @renamed=${(event: RenamedEvent) => {
        want(this, { do: 'rename-code', bytes, name: event.name }, event.refused);
      }}
    ></qelm-name>`;
  }

  private renderNamed() {
    const named = namedCodes(this.card);
    if (named.length === 0) return nothing;
    return html`<div class="named" role="group" aria-label=${text.infrared.named}>
      ${named.map(
        ({ bytes, name }) =>
          html`<button
            class="key"
            title=${spaced(bytes)}
            @click=${() => {
              want(this, { do: 'infrared', address: this.card.address, bytes });
            }}
          >
            ${name}
          </button>`,
      )}
    </div>`;
  }

  private renderForm() {
    return html`<form @submit=${this.send}>
      <input
        class="field"
        aria-label=${text.infrared.bytes}
        placeholder="434F"
        required
        pattern="([0-9A-Fa-f]{2} ?)+"
        maxlength=${longest}
        spellcheck="false"
        autocomplete="off"
      />
      <button class="key">${text.infrared.send}</button>
    </form>`;
  }

  private send(event: SubmitEvent): void {
    event.preventDefault();
    const field = this.renderRoot.querySelector('input');
    const bytes = field?.value.replaceAll(' ', '').toUpperCase() ?? '';
    want(this, { do: 'infrared', address: this.card.address, bytes });
  }
}

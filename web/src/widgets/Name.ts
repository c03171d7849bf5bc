// A name that is edited where it stands. Emits `renamed` with the new one, null for none. What is
// refused stays to be mended, with the reason; Escape brings back what holds.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import type { Refused } from '../state/Intent.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

export class RenamedEvent extends Event {
  static readonly type = 'renamed';

  constructor(
    readonly name: string | null,
    readonly refused: Refused,
  ) {
    super(RenamedEvent.type);
  }
}

const longest = 64;

@customElement('qelm-name')
export class Name extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        display: block;
        min-width: 0;
      }
      span,
      button {
        display: -webkit-box;
        -webkit-box-orient: vertical;
        -webkit-line-clamp: 2;
        max-width: 100%;
        overflow: hidden;
        overflow-wrap: anywhere;
        line-height: 1.15;
      }
      button {
        width: 100%;
        min-height: inherit;
        -webkit-box-pack: center;
        cursor: text;
      }
      @media (pointer: coarse) {
        button {
          min-height: var(--touch);
          margin-block: var(--name-overlap, 0);
        }
      }
      button:hover,
      button:focus-visible {
        text-decoration: underline dotted;
        text-underline-offset: 0.2em;
      }
      :focus-visible {
        outline-offset: 0;
      }
      .nameless {
        color: var(--faint);
      }
      input {
        width: 100%;
        min-height: inherit;
        padding: 0 0.25rem;
        margin-inline: -0.25rem;
        border: var(--hair) solid var(--ink);
        border-radius: 2px;
        background: var(--well);
      }
      [aria-invalid] {
        border-color: var(--wrong);
      }
      p {
        padding: 0.125rem 0;
        color: var(--wrong);
        font-size: 0.75rem;
        font-weight: 400;
        line-height: 1rem;
        text-align: start;
        overflow-wrap: anywhere;
      }
    `,
  ];

  @property() name: string | null = null;
  @property() fallback = '';
  @property({ type: Boolean }) editable = false;
  @state() private isEdited = false;
  @state() private wrong: { typed: string; why: string } | null = null;

  override render() {
    const shown = this.name ?? this.fallback;
    const look = this.name === null ? 'nameless' : '';
    if (this.isEdited) return this.renderField(shown);
    if (!this.editable) return html`<span class=${look} title=${shown}>${shown || nothing}</span>`;
    return html`<button
      class=${look}
      title=${shown}
      aria-label=${text.rename(shown)}
      @click=${this.edit}
    >
      ${shown}
    </button>`;
  }

  private renderField(shown: string) {
    const { wrong } = this;
    return html`<input
        aria-label=${text.newName(shown)}
        aria-invalid=${wrong ? 'true' : nothing}
        aria-describedby=${wrong ? 'why' : nothing}
        maxlength=${longest}
        .value=${wrong?.typed ?? this.name ?? ''}
        placeholder=${this.fallback}
        @keydown=${this.onKey}
        @blur=${this.onBlur}
      />
      ${wrong ? html`<p id="why" role="alert">${text.refused(wrong.why, shown)}</p>` : nothing}`;
  }

  private async edit(): Promise<void> {
    this.isEdited = true;
    await this.updateComplete;
    this.renderRoot.querySelector('input')?.select();
  }

  private onKey(event: KeyboardEvent): void {
    if (event.key !== 'Enter' && event.key !== 'Escape') return;
    event.preventDefault(); // the button, which has the focus next, is not pressed
    if (event.key === 'Enter') this.keep(event);
    this.isEdited = false;
    this.wrong = null;
    void this.leave();
  }

  private onBlur(event: Event): void {
    const typed = (event.target as HTMLInputElement).value;
    if (this.isEdited && typed !== this.wrong?.typed) this.keep(event);
  }

  private keep(event: Event): void {
    const typed = (event.target as HTMLInputElement).value;
    this.isEdited = false;
    this.wrong = null;
    const name = typed.trim() || null;
    if (name === this.name) return;
    this.dispatchEvent(
      new RenamedEvent(name, ({ detail }) => {
        void this.mend(typed, detail);
      }),
    );
  }

  private async mend(typed: string, why: string): Promise<void> {
    const wasHere = Boolean(this.shadowRoot?.activeElement);
    this.wrong = { typed, why };
    this.isEdited = true;
    await this.updateComplete;
    if (wasHere) this.renderRoot.querySelector('input')?.focus();
  }

  private async leave(): Promise<void> {
    await this.updateComplete;
    this.renderRoot.querySelector('button')?.focus();
  }
}

// A name that is edited where it stands. Emits `renamed` with the new one, null for none.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';

import { text } from '../text/text.js';
import { base } from '../theme/base.js';

export class RenamedEvent extends Event {
  static readonly type = 'renamed';

  constructor(readonly name: string | null) {
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
    `,
  ];

  @property() name: string | null = null;
  @property() fallback = '';
  @property({ type: Boolean }) editable = false;
  @state() private isEdited = false;

  override render() {
    const shown = this.name ?? this.fallback;
    const look = this.name === null ? 'nameless' : '';
    if (this.isEdited)
      return html`<input
        aria-label=${text.newName(shown)}
        maxlength=${longest}
        .value=${this.name ?? ''}
        placeholder=${this.fallback}
        @keydown=${this.onKey}
        @blur=${this.keep}
      />`;
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

  private async edit(): Promise<void> {
    this.isEdited = true;
    await this.updateComplete;
    this.renderRoot.querySelector('input')?.select();
  }

  private onKey(event: KeyboardEvent): void {
    if (event.key !== 'Enter' && event.key !== 'Escape') return;
    if (event.key === 'Enter') this.keep(event);
    this.isEdited = false;
    void this.leave();
  }

  private keep(event: Event): void {
    if (!this.isEdited) return;
    this.isEdited = false;
    const name = (event.target as HTMLInputElement).value.trim() || null;
    if (name !== this.name) this.dispatchEvent(new RenamedEvent(name));
  }

  private async leave(): Promise<void> {
    await this.updateComplete;
    this.renderRoot.querySelector('button')?.focus();
  }
}

// The bar above every view: whose bench it is, how all parts of the way to it are, who is here.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { drawSign, signStyle } from '../cards/sign.js';
import { type Health, healthOf } from '../state/health.js';
import { want } from '../state/Intent.js';
import { may } from '../state/select.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import type { RenamedEvent } from '../widgets/Name.js';
import { stateBarStyle } from './stateBarStyle.js';

@customElement('qelm-state-bar')
export class StateBar extends LitElement {
  static override styles = [base, signStyle, stateBarStyle];

  private readonly bus = new Reads(this, (known) => known.bus);
  private readonly connection = new Reads(this, (known) => known.connection);
  private readonly who = new Reads(this, (known) => known.who);
  private readonly canName = new Reads(this, (known) => may(known, 'admin'));
  private readonly missed = new Reads(this, (known) => known.missed);

  @state() private open: Health['part'] | null = null;

  override render() {
    const bus = this.bus.value;
    const health = healthOf({ connection: this.connection.value, bus });
    return html`<div class="name">
        <qelm-name
          .name=${bus?.name ?? null}
          .fallback=${text.page}
          .editable=${this.canName.value && bus !== null}
          @renamed=${(event: RenamedEvent) => {
            want(this, { do: 'rename-bus', name: event.name }, event.refused);
          }}
        ></qelm-name>
        ${bus?.virtual ? html`<span class="virtual">${text.state.virtual}</span>` : nothing}
      </div>
      <slot></slot>
      <ul class="states" aria-label=${text.state.label}>
        ${health.map((part) => this.renderPart(part))}
      </ul>
      ${this.renderMissed()} ${this.renderWho()}<slot name="end"></slot>${this.renderOpen(health)}`;
  }

  private renderPart({ part, sign, word, detail }: Health) {
    const said = html`<svg viewBox="-7 -7 14 14" aria-hidden="true">${drawSign(sign)}</svg>
      <span class="part">${text.state.parts[part]}</span>
      <span class="word">${text.state.words[word]}</span>`;
    if (detail === null) return html`<li class=${sign}>${said}</li>`;
    return html`<li class=${sign}>
      <button
        title=${detail}
        aria-expanded=${this.open === part}
        @click=${() => {
          this.open = this.open === part ? null : part;
        }}
        @keydown=${({ key }: KeyboardEvent) => {
          if (key === 'Escape') this.open = null;
        }}
      >
        ${said}
      </button>
    </li>`;
  }

  // Where and why, for those who have no pointer to rest on it.
  private renderOpen(health: readonly Health[]) {
    const detail = health.find(({ part }) => part === this.open)?.detail;
    return html`<p class=${detail ? 'why' : 'unseen'} role="status">${detail ?? nothing}</p>`;
  }

  // It is said till somebody has read it.
  private renderMissed() {
    const missed = this.missed.value;
    if (missed === 0) return html`<div class="unseen" role="status"></div>`;
    return html`<div class="missed" role="status">
      ${text.state.missed(missed)}
      <button
        class="key"
        @click=${() => {
          want(this, { do: 'missed-seen' });
        }}
      >
        ${text.dismiss}
      </button>
    </div>`;
  }

  private renderWho() {
    const account = this.who.value?.account;
    if (!account) return nothing;
    return html`<div class="who">
      <span>${account}</span>
      <button
        class="key"
        @click=${() => {
          want(this, { do: 'log-out' });
        }}
      >
        ${text.logIn.out}
      </button>
    </div>`;
  }
}

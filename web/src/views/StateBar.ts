// The bar above every view: whose bench it is, how all parts of the way to it are, who is here.
import { html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';

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

  private readonly bus = new Reads(this, (state) => state.bus);
  private readonly connection = new Reads(this, (state) => state.connection);
  private readonly who = new Reads(this, (state) => state.who);
  private readonly canName = new Reads(this, (state) => may(state, 'admin'));
  private readonly missed = new Reads(this, (state) => state.missed);

  override render() {
    const bus = this.bus.value;
    const health = healthOf({ connection: this.connection.value, bus });
    return html`<div class="name">
        <qelm-name
          .name=${bus?.name ?? null}
          .fallback=${text.page}
          .editable=${this.canName.value && bus !== null}
          @renamed=${(event: RenamedEvent) => {
            want(this, { do: 'rename-bus', name: event.name });
          }}
        ></qelm-name>
        ${bus?.virtual ? html`<span class="virtual">${text.state.virtual}</span>` : nothing}
      </div>
      <slot></slot>
      <ul class="states" aria-label=${text.state.label}>
        ${health.map((part) => this.renderPart(part))}
      </ul>
      ${this.missed.value > 0
        ? html`<span class="missed">${text.state.missed(this.missed.value)}</span>`
        : nothing}
      ${this.renderWho()}<slot name="end"></slot>`;
  }

  private renderPart({ part, sign, word, detail }: Health) {
    return html`<li class=${sign} title=${detail ?? nothing}>
      <svg viewBox="-7 -7 14 14" aria-hidden="true">${drawSign(sign)}</svg>
      <span class="part">${text.state.parts[part]}</span>
      <span class="word">${text.state.words[word]}</span>
    </li>`;
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

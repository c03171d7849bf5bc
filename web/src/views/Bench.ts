// The bench: rails with the cards in their slots, as they stand in front of you.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { hasHands, isStale, may, presentCards } from '../state/select.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { arrange, type Slot } from './arrange.js';
import { benchStyle } from './benchStyle.js';
import { railStyle } from './railStyle.js';
import { renderEmptySlot, renderRails } from './rails.js';

@customElement('qelm-bench')
export class Bench extends LitElement {
  static override styles = [base, railStyle, benchStyle];

  private readonly cards = new Reads(this, (known) => known.cards);
  private readonly arrangement = new Reads(this, (known) => known.arrangement);
  private readonly stale = new Reads(this, isStale);
  private readonly isFast = new Reads(this, ({ pace }) => pace.isFast);
  private readonly canArrange = new Reads(this, (known) => may(known, 'admin'));
  private readonly isEmpty = new Reads(this, (known) => presentCards(known).length === 0);
  private readonly hasHands = new Reads(this, hasHands);
  @state() private isArranging = false;

  override render() {
    if (this.isArranging && this.canArrange.value) return this.renderArranger();
    const rails = arrange(this.cards.value, this.arrangement.value, this.hasHands.value);
    const isEmpty = this.isEmpty.value;
    const begin = html`<qelm-first-run></qelm-first-run>`;
    // Missing cards are shown as such; slots of a virtual bus wait for a hand.
    if (isEmpty && !this.hasHands.value && Object.keys(this.cards.value).length === 0) return begin;
    return html`${isEmpty ? begin : html`<h1 class="unseen">${text.nav.bench}</h1>`}
      ${renderRails(rails, this.look, (slot) => this.renderSlot(slot))} ${this.renderVirtual()}
      <footer>
        <qelm-legend></qelm-legend>
        ${this.canArrange.value ? this.renderArrange() : nothing}
      </footer>`;
  }

  private get look(): string {
    return `${this.stale.value ? 'stale' : ''} ${this.isFast.value ? 'fast' : ''}`;
  }

  // Its file comes only where there is a virtual bus.
  private renderVirtual() {
    if (!this.hasHands.value) return nothing;
    void import('./VirtualBench.js');
    return html`<qelm-virtual-bench></qelm-virtual-bench>`;
  }

  private renderArrange() {
    const hidden = this.arrangement.value.hidden?.length ?? 0;
    return html`<button
      class="key"
      @click=${() => {
        this.isArranging = true;
        window.scrollTo(0, 0); // the button is below all cards
      }}
    >
      ${text.arranging.begin(hidden)}
    </button>`;
  }

  private renderArranger() {
    void import('./arranging/Arranger.js');
    return html`<qelm-arranger
      @done=${() => {
        this.isArranging = false;
      }}
    ></qelm-arranger>`;
  }

  private renderSlot({ address, card }: Slot) {
    if (!card && this.hasHands.value)
      return html`<qelm-free-slot class="slot empty" .address=${address}></qelm-free-slot>`;
    if (!card) return renderEmptySlot(address);
    return html`<qelm-plate class="slot ${card.kind}" .card=${card}></qelm-plate>`;
  }
}

// The cards as a table, on paper only: what was where, and how sure that is.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import type { Card, Channel } from '../api/Shapes.js';
import { certainty, inOrder, isStale } from '../state/select.js';
import { Reads, store } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { formatMoment, formatValue, nameOf } from '../widgets/format.js';

@customElement('qelm-card-table')
export class CardTable extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        display: none;
        color: #000;
        font-size: 9pt;
      }
      @media print {
        :host {
          display: block;
        }
      }
      h1 {
        padding-bottom: 0.5rem;
        font-size: 12pt;
      }
      table {
        width: 100%;
        border-collapse: collapse;
      }
      th,
      td {
        padding: 0.125rem 0.5rem 0.125rem 0;
        border-bottom: 0.5pt solid #999;
        text-align: left;
        vertical-align: top;
        white-space: pre;
      }
      tbody {
        break-inside: avoid;
      }
    `,
  ];

  private readonly stale = new Reads(this, isStale);
  private readonly cards = new Reads(this, (known) => known.cards);
  private readonly print = window.matchMedia('print');
  @state() private isPrinting = false;

  override connectedCallback(): void {
    super.connectedCallback();
    this.print.addEventListener('change', this.onPrint);
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    this.print.removeEventListener('change', this.onPrint);
  }

  override render() {
    if (!this.isPrinting) return nothing;
    const { card, channel, name, value, doubt, since, at } = text.table;
    const heads = [card, channel, name, value, doubt, since];
    return html`<h1>${at(store.state.bus?.name ?? text.page, formatMoment(Date.now()))}</h1>
      ${this.stale.value ? html`<p>${text.table.stale}</p>` : nothing}
      <table>
        <thead>
          <tr>
            ${heads.map((head) => html`<th scope="col">${head}</th>`)}
          </tr>
        </thead>
        ${inOrder(this.cards.value).map((each) => this.renderCard(each))}
      </table>`;
  }

  private renderCard(card: Card) {
    const state = card.state === 'present' ? '' : `\n${text.states[card.state]}`;
    const title = `${card.address} ${card.name ?? text.kinds[card.kind]}${state}`;
    const rows = card.glass?.rows.map(
      (row, place) =>
        html`<tr>
          <td>${place === 0 ? title : ''}</td>
          <td>${text.glass.row(place)}</td>
          <td></td>
          <td colspan="3">${row}</td>
        </tr>`,
    );
    const channels = card.channels.map((channel, place) =>
      this.renderChannel(place === 0 ? title : '', channel),
    );
    return html`<tbody>
      ${(rows ?? channels).length > 0
        ? (rows ?? channels)
        : html`<tr>
            <td colspan="6">${title}</td>
          </tr>`}
    </tbody>`;
  }

  private renderChannel(title: string, channel: Channel) {
    return html`<tr>
      <td>${title}</td>
      <td>${channel.id}</td>
      <td>${nameOf(channel)}</td>
      <td>${formatValue(channel)} ${channel.unit ?? ''}</td>
      <td>${text.certainty[certainty(channel)]}</td>
      <td>${channel.since === null ? '' : formatMoment(channel.since)}</td>
    </tr>`;
  }

  private readonly onPrint = (event: MediaQueryListEvent): void => {
    this.isPrinting = event.matches;
    if (event.matches) this.performUpdate(); // the paper does not wait
  };
}

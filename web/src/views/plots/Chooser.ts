// Which channels are drawn: all that there are, by cards, to be ticked.
import { css, html, LitElement } from 'lit';
import { customElement } from 'lit/decorators.js';

import type { Card } from '../../api/Shapes.js';
import { want } from '../../state/Intent.js';
import { canPlot, mostPlots } from '../../state/plots.js';
import { presentCards } from '../../state/select.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { nameOf } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';

@customElement('qelm-plot-chooser')
export class Chooser extends LitElement {
  static override styles = [
    base,
    viewStyle,
    css`
      :host {
        padding: 0.75rem;
      }
      .cards {
        columns: 15rem auto;
        column-gap: 1.5rem;
      }
      fieldset {
        break-inside: avoid;
        padding-bottom: 0.75rem;
      }
      legend {
        display: flex;
        gap: 0.5rem;
        padding: 0 0 0.25rem;
        font-size: 0.8125rem;
        font-weight: 600;
      }
      .address {
        color: var(--faint);
        font-weight: 300;
      }
      ul {
        display: grid;
        grid-template-columns: repeat(2, minmax(0, 1fr));
        column-gap: 0.75rem;
      }
      label {
        min-height: var(--touch);
      }
      label span {
        overflow: hidden;
        text-overflow: ellipsis;
        white-space: nowrap;
      }
    `,
  ];

  private readonly cards = new Reads(this, (state) => state.cards);
  private readonly channels = new Reads(this, (state) => state.plots.channels);

  override render() {
    const cards = presentCards({ cards: this.cards.value }).filter(({ channels }) =>
      channels.some(canPlot),
    );
    if (cards.length === 0) return html`<p class="note">${text.plots.noCards}</p>`;
    return html`<div class="cards">${cards.map((card) => this.renderCard(card))}</div>`;
  }

  private renderCard(card: Card) {
    const shown = this.channels.value;
    const isFull = shown.length >= mostPlots;
    return html`<fieldset>
      <legend>
        <span class="address">${card.address}</span> ${card.name ?? text.kinds[card.kind]}
      </legend>
      <ul>
        ${card.channels.filter(canPlot).map(
          (channel) =>
            html`<li>
              <label class="row">
                <input
                  type="checkbox"
                  .checked=${shown.includes(channel.id)}
                  ?disabled=${isFull && !shown.includes(channel.id)}
                  @change=${() => {
                    this.turn(channel.id);
                  }}
                />
                <span title=${nameOf(channel)}>${nameOf(channel)}</span>
              </label>
            </li>`,
        )}
      </ul>
    </fieldset>`;
  }

  private turn(id: string): void {
    const shown = this.channels.value;
    const channels = shown.includes(id) ? shown.filter((each) => each !== id) : [...shown, id];
    want(this, { do: 'plot', channels });
  }
}

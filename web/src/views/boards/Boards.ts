// The other boards on the broker: which there are, and the bench of the one that is looked at. What is
// done there goes over the broker.
import { html, LitElement, nothing, type PropertyValues } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import type { BoardRow } from '../../api/Shapes.js';
import { drawSign, signStyle } from '../../cards/sign.js';
import { type FarIntent, type IntentEvent, want } from '../../state/Intent.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatMoment } from '../../widgets/format.js';
import { arrange, type Slot } from '../arrange.js';
import { renderEmptySlot, renderRails } from '../rails.js';
import { railStyle } from '../railStyle.js';
import { viewStyle } from '../viewStyle.js';
import { boardsStyle } from './boardsStyle.js';

const { boards: words } = text;

@customElement('qelm-boards')
export class BoardsView extends LitElement {
  static override styles = [base, viewStyle, railStyle, signStyle, boardsStyle];

  @property() board = ''; // its name on the broker; none: the first
  private readonly rows = new Reads(this, (known) => known.boards);
  private readonly cards = new Reads(this, (known) => known.boardCards);
  private readonly isOpen = new Reads(this, (known) => known.connection === 'open');
  private asked = ''; // the board whose cards were asked for on this connection

  override updated(changed: PropertyValues<this>): void {
    super.updated(changed);
    const board = this.isOpen.value ? (this.row?.board ?? '') : '';
    if (board !== '' && board !== this.asked) want(this, { do: 'board-read', board });
    this.asked = board;
  }

  override render() {
    const { row } = this;
    if (!row) return nothing;
    return html`<div class="head">
        <h1>${words.title}</h1>
        <ul class="boards">
          ${Object.values(this.rows.value).map((each) => this.renderLink(each, each === row))}
        </ul>
      </div>
      ${row.state === 'online'
        ? nothing
        : html`<p class="lost">${words.stale(formatMoment(row.since))}</p>`}
      ${this.renderCards(row)}`;
  }

  private get row(): BoardRow | undefined {
    const rows = Object.values(this.rows.value);
    return rows.find(({ board }) => board === this.board) ?? rows[0];
  }

  private renderLink({ board, name, state }: BoardRow, isCurrent: boolean) {
    return html`<li>
      <a class="key" href="#boards/${encodeURIComponent(board)}" aria-current=${isCurrent}>
        <svg viewBox="-7 -7 14 14" aria-hidden="true">
          ${drawSign(state === 'online' ? 'good' : 'wrong')}
        </svg>
        ${name ?? board}<span class="state"
          >${state === 'online' ? nothing : words.states[state]}</span
        >
      </a>
    </li>`;
  }

  // Its cards are this page's own only in their looks: intents are sent on, and the menu of a channel
  // would plot one of this bus.
  private renderCards(row: BoardRow) {
    const cards = this.cards.value[row.board];
    if (!cards) return html`<p class="note" role="status">${words.reading}</p>`;
    if (Object.keys(cards).length === 0) return html`<p class="note">${words.none}</p>`;
    const isStale = !this.isOpen.value || row.state !== 'online';
    return html`<div
      @qelm-intent=${(event: IntentEvent) => {
        this.sendOn(event, row.board);
      }}
      @contextmenu=${(event: Event) => {
        event.stopPropagation();
      }}
    >
      ${renderRails(arrange(cards, {}), isStale ? 'stale' : '', ({ address, card }: Slot) =>
        card
          ? html`<qelm-plate
              class="slot ${card.kind}"
              .card=${card}
              .board=${row.state}
            ></qelm-plate>`
          : renderEmptySlot(address),
      )}
    </div>`;
  }

  private sendOn(event: IntentEvent, board: string): void {
    event.stopPropagation();
    const intent = event.intent as FarIntent;
    switch (intent.do) {
      case 'set':
        want(this, { ...intent, do: 'board-set', board });
        break;
      case 'write':
        want(this, { ...intent, do: 'board-write', board });
        break;
      case 'control':
        want(this, { ...intent, do: 'board-control', board });
        break;
      case 'infrared':
        want(this, { ...intent, do: 'board-infrared', board });
    }
  }
}

// The other boards on the broker: which there are, and since when they are there or gone.
import { css, html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';

import type { BoardRow } from '../../api/Shapes.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatMoment } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';
import { sectionStyle } from './settingsStyle.js';

@customElement('qelm-set-boards')
export class Boards extends LitElement {
  static override styles = [
    base,
    viewStyle,
    sectionStyle,
    css`
      table {
        width: 100%;
        border-collapse: collapse;
        font-size: 0.8125rem;
        text-align: left;
      }
      th,
      td {
        padding: 0.375rem 0.5rem 0.375rem 0;
        border-bottom: var(--hair) solid var(--line);
        overflow-wrap: anywhere;
      }
      a {
        color: inherit;
      }
      th,
      .stale {
        color: var(--faint);
      }
    `,
  ];

  private readonly boards = new Reads(this, (state) => state.boards);

  override render() {
    const { boards } = text.settings;
    const rows = Object.values(this.boards.value);
    if (rows.length === 0) return html`<p>${boards.none}</p>`;
    return html`<table>
      <tr>
        ${[boards.name, boards.state, boards.since].map(
          (head) => html`<th scope="col">${head}</th>`,
        )}
      </tr>
      ${rows.map((row) => this.renderRow(row))}
    </table>`;
  }

  private renderRow(row: BoardRow) {
    const { boards } = text.settings;
    const name =
      row.name === null || row.name === row.board ? row.board : `${row.name} (${row.board})`;
    return html`<tr class=${row.state}>
      <td>
        <a href="#boards/${encodeURIComponent(row.board)}">${name}</a>
        ${row.ignored > 0
          ? html`<br />${boards.ignored(row.ignored, row.ignored_why ?? '')}`
          : nothing}
      </td>
      <td>${boards.states[row.state]}</td>
      <td>${formatMoment(row.since)}</td>
    </tr>`;
  }
}

// The infrared codes that have a name, and their names.
import { html, LitElement } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import type { Card } from '../../api/Shapes.js';
import { spaced } from '../../cards/eye.js';
import { want } from '../../state/Intent.js';
import { namedCodes } from '../../state/select.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import type { RenamedEvent } from '../../widgets/Name.js';
import { viewStyle } from '../viewStyle.js';
import { sectionStyle } from './settingsStyle.js';

const { setup: words } = text.settings;

@customElement('qelm-set-codes')
export class Codes extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  @property({ attribute: false }) card!: Card;
  @property({ type: Boolean }) usable = false;

  override render() {
    const named = namedCodes(this.card);
    if (named.length === 0) return html`<p class="note">${words.noCodes}</p>`;
    return html`<div class="wide" tabindex="0" role="group" aria-label=${words.codes}>
      <table>
        <thead>
          <tr>
            <th scope="col">${words.code}</th>
            <th scope="col">${words.name}</th>
          </tr>
        </thead>
        <tbody>
          ${named.map(({ bytes, name }) => this.renderCode(bytes, name))}
        </tbody>
      </table>
    </div>`;
  }

  private renderCode(bytes: string, name: string) {
    return html`<tr>
      <td>${spaced(bytes)}</td>
      <td class="name">
        <qelm-name
          .name=${name}
          .fallback=${spaced(bytes)}
          .editable=${this.usable}
          @renamed=${(event: RenamedEvent) => {
            want(this, { do: 'rename-code', bytes, name: event.name }, event.refused);
          }}
        ></qelm-name>
      </td>
    </tr>`;
  }
}

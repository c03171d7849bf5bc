// An empty slot of a virtual bus: a card of any kind is plugged in here, or the one that was pulled.
import { css, html, LitElement } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import type { Kind } from '../api/Shapes.js';
import { cardLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { isPulled } from '../state/select.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

const kinds: readonly Kind[] = [
  'digital-output',
  'digital-input',
  'servo',
  'motor',
  'analogue-input',
  'keys',
  'lcd',
  'ir',
];

@customElement('qelm-free-slot')
export class FreeSlot extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        position: relative;
      }
      div {
        display: grid;
        justify-items: center;
        gap: 0.25rem;
      }
      .plus {
        font-size: 1rem;
        line-height: 1;
      }
      /* The whole slot opens the list. */
      select {
        position: absolute;
        inset: 0;
        width: 100%;
        height: 100%;
        opacity: 0;
        cursor: pointer;
      }
      select:focus-visible + div {
        outline: 2px solid var(--ink);
        outline-offset: 2px;
      }
    `,
  ];

  @property() address = '';
  private readonly isPulled = new Reads(this, (state) => isPulled(state, this.address));

  override render() {
    const { hands } = text;
    if (this.isPulled.value)
      return html`<div>
        <span aria-hidden="true">${this.address}</span>
        <qelm-plug .address=${this.address} .isPulled=${true}></qelm-plug>
      </div>`;
    return html`<select
        aria-label=${hands.newCard(this.address)}
        title=${hands.newCard(this.address)}
        @change=${this.plug}
      >
        <option value=""></option>
        ${kinds.map((kind) => html`<option value=${kind}>${text.kinds[kind]}</option>`)}
      </select>
      <div aria-hidden="true"><span>${this.address}</span><span class="plus">+</span></div>`;
  }

  private plug(event: Event): void {
    const list = event.target as HTMLSelectElement;
    if (list.value === '') return;
    want(this, { do: 'hand', line: cardLine(this.address, 'plug', list.value) });
    list.value = '';
  }
}

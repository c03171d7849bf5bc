// What a card keeps of itself. Asking and setting cost the bus a second a value.
import { html, LitElement, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';

import type { Bytes, CardSettings } from '../../api/Settled.js';
import type { Card } from '../../api/Shapes.js';
import { type Intent, want } from '../../state/Intent.js';
import { askedValues, isStored } from '../../state/settings.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { nameOf } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';
import { renderChoice, renderField, renderTick } from './controls.js';
import { withAt } from './fields.js';
import { sectionStyle } from './settingsStyle.js';
import { Tries } from './Tries.js';

type ListKey = 'end_a' | 'end_b' | 'silent_range';
type FlagKey = 'self_test' | 'init_light';

const { kept: words, setup } = text.settings;
const titles = { end_a: words.endA, end_b: words.endB, silent_range: words.range };
const inputs = 6; // of an analogue card

// The card was asked for some of it.
function isKnown(settings: CardSettings): boolean {
  return Object.values(settings)
    .flat()
    .some((value) => value !== null);
}

@customElement('qelm-kept-in-card')
export class KeptInCard extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  @property({ attribute: false }) card!: Card;
  @property({ type: Boolean }) usable = false;
  private readonly kept = new Reads(this, (state) => state.settings.cards);
  private readonly tries = new Tries(this);
  private asked = ''; // the card whose values were asked for

  override updated(): void {
    const { address, kind } = this.card;
    if (this.asked === address || askedValues[kind] === undefined) return;
    this.asked = address;
    want(this, { do: 'card-ask', address, ask: false });
  }

  override render() {
    const { address, kind } = this.card;
    const count = askedValues[kind];
    if (count === undefined) return nothing;
    const { settings = {}, doing = null } = this.kept.value[address] ?? {};
    return html`<hr />
      <h3>${words.title}</h3>
      ${this.usable ? this.renderAsk(count, doing !== null) : nothing}
      <p class="note ${doing ? 'busy' : ''}" role="status">${doing ? words[doing] : nothing}</p>
      ${this.usable || isKnown(settings)
        ? this.renderValues(settings, doing !== null)
        : html`<p class="note">${words.notAsked}</p>`}
      ${this.usable && isStored(kind) ? this.renderStore(doing !== null) : nothing}`;
  }

  private renderAsk(count: number, isBusy: boolean) {
    if (count === 0) return html`<p class="note">${words.selfStored}</p>`;
    return html`<div class="tools">
        <button
          class="key"
          ?disabled=${isBusy}
          @click=${() => {
            want(this, { do: 'card-ask', address: this.card.address, ask: true });
          }}
        >
          ${words.ask(count)}
        </button>
      </div>
      <p class="note">${words.cost(count)} ${words.costSet}</p>`;
  }

  private renderStore(isBusy: boolean) {
    return html`<div class="tools">
        <button
          class="key"
          ?disabled=${isBusy}
          @click=${() => {
            want(this, { do: 'card-store', address: this.card.address });
          }}
        >
          ${words.store}
        </button>
      </div>
      <p class="note">${words.storeNote}</p>`;
  }

  private renderValues(settings: CardSettings, isBusy: boolean) {
    switch (this.card.kind) {
      case 'servo':
        return this.renderLists(6, ['end_a', 'end_b'], settings, isBusy);
      case 'motor':
        return html`${this.renderLists(3, ['silent_range'], settings, isBusy)}
          <p class="note">${words.rangeNote}</p>`;
      case 'analogue-input':
        return this.renderMask(settings.mask ?? null, isBusy);
      default:
        return html`<div class="ticks">
          ${this.renderFlag('self_test', words.selfTest, settings, isBusy)}
          ${this.renderFlag('init_light', words.initLight, settings, isBusy)}
        </div>`;
    }
  }

  private changed(settings: CardSettings): Intent {
    return { do: 'card-set', address: this.card.address, settings };
  }

  // A row a channel, a column a list.
  private renderLists(
    count: number,
    keys: readonly ListKey[],
    settings: CardSettings,
    isBusy: boolean,
  ) {
    const rows = Array.from({ length: count }, (_, place) => {
      const channel = this.card.channels[place];
      const name = channel ? nameOf(channel) : String(place);
      return html`<tr>
        <td>${name}</td>
        ${keys.map((key) => html`<td>${this.renderByte(key, place, name, settings, isBusy)}</td>`)}
      </tr>`;
    });
    return html`<table>
      <thead>
        <tr>
          <th scope="col">${setup.channel}</th>
          ${keys.map((key) => html`<th scope="col">${titles[key]}</th>`)}
        </tr>
      </thead>
      <tbody>
        ${rows}
      </tbody>
    </table>`;
  }

  // Only what is changed is sent: null leaves a value as it is.
  private renderByte(
    key: ListKey,
    place: number,
    name: string,
    settings: CardSettings,
    isBusy: boolean,
  ) {
    const value = settings[key]?.[place] ?? null;
    const none: Bytes = Array.from({ length: key === 'silent_range' ? 3 : 6 }, () => null);
    const field = `${key}-${place}`;
    return renderField({
      field,
      tries: this.tries,
      label: setup.of(titles[key], name),
      usable: this.usable,
      isBusy,
      value: value === null ? '' : String(value),
      usual: words.unknown,
      longest: 3,
      keep: (content) => {
        const changed = (byte: number | null) => this.changed({ [key]: withAt(none, place, byte) });
        if (content === '') this.tries.refuse(field, text.settings.noNumber);
        else this.tries.wantNumber(field, content, changed);
      },
    });
  }

  private renderMask(mask: number | null, isBusy: boolean) {
    return html`<fieldset class="ticks">
      <legend class="note">
        ${words.mask}${mask === null ? html` (${words.unknown})` : nothing}
      </legend>
      ${Array.from({ length: inputs }, (_, bit) => {
        const channel = this.card.channels[bit];
        return renderTick({
          field: `mask-${bit}`,
          tries: this.tries,
          label: channel ? nameOf(channel) : String(bit),
          usable: this.usable,
          isBusy,
          isOn: mask === null ? null : (mask & (1 << bit)) !== 0,
          keep: () => {
            this.tries.want(`mask-${bit}`, this.changed({ mask: (mask ?? 0) ^ (1 << bit) }));
          },
        });
      })}
    </fieldset>`;
  }

  private renderFlag(key: FlagKey, label: string, settings: CardSettings, isBusy: boolean) {
    const value = settings[key] ?? null;
    const choice = renderChoice({
      field: key,
      tries: this.tries,
      label,
      usable: this.usable,
      isBusy,
      options: [
        ['yes', words.yes],
        ['no', words.no],
      ],
      chosen: value === null ? null : value ? 'yes' : 'no',
      keep: (chosen) => {
        this.tries.want(key, this.changed({ [key]: chosen === 'yes' }));
      },
    });
    return html`<label class="labelled">${label}${choice}</label>`;
  }
}

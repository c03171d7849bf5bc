// Names, units and directions of a card's channels, and what the card keeps of itself.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { keyed } from 'lit/directives/keyed.js';

import type { CardSetup, ChannelSetup } from '../../api/Settled.js';
import type { Card, Channel } from '../../api/Shapes.js';
import type { Intent } from '../../state/Intent.js';
import { may, presentCards } from '../../state/select.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { nameOf, numberedName } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';
import './Codes.js';
import { type Field, renderChoice, renderField, renderTick } from './controls.js';
import './KeptInCard.js';
import { purposeHead, renderPurpose } from './purpose.js';
import { sectionStyle } from './settingsStyle.js';
import { Tries } from './Tries.js';

type NumberKey = 'min' | 'max' | 'decimals' | 'hysteresis';

const { setup: words } = text.settings;
const numbersOf: Partial<Record<Channel['type'], readonly NumberKey[]>> = {
  level: ['min', 'max', 'decimals', 'hysteresis'],
  position: ['min', 'max', 'decimals'],
};

@customElement('qelm-set-cards')
export class Cards extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  private readonly cards = new Reads(this, (known) => known.cards);
  private readonly setup = new Reads(this, (known) => known.settings.setup);
  private readonly isAdmin = new Reads(this, (known) => may(known, 'admin'));
  @state() private address = '';
  private readonly tries = new Tries(this);

  override render() {
    const cards = presentCards({ cards: this.cards.value });
    const card = cards.find(({ address }) => address === this.address) ?? cards[0];
    if (!card) return html`<p class="note">${text.settings.noCards}</p>`;
    return html`${this.isAdmin.value
        ? nothing
        : html`<p class="note">${text.settings.readOnly}</p>`}
      <div class="form">
        <label class="labelled">
          ${words.choose}
          <select
            class="field"
            @change=${(event: Event) => {
              this.address = (event.target as HTMLSelectElement).value;
              this.tries.forgetAll();
            }}
          >
            ${cards.map(
              (each) =>
                html`<option value=${each.address} .selected=${each === card}>
                  ${each.address} ${each.name ?? text.kinds[each.kind]}
                </option>`,
            )}
          </select>
        </label>
        ${keyed(card.address, [this.renderCardName(card), this.renderCard(card)])}
      </div>
      ${keyed(card.address, this.renderRest(card))}`;
  }

  // What was typed for one card is not left in the fields of the next.
  private renderRest(card: Card) {
    const usable = this.isAdmin.value;
    return html`${card.channels.length > 0 ? this.renderChannels(card) : nothing}
      ${card.kind === 'ir'
        ? html`<qelm-set-codes .card=${card} .usable=${usable}></qelm-set-codes>`
        : nothing} <qelm-kept-in-card .card=${card} .usable=${usable}></qelm-kept-in-card>`;
  }

  private renderCardName({ address, name, kind }: Card) {
    return this.renderLabelled('card-name', words.name, {
      value: name ?? '',
      usual: text.kinds[kind],
      longest: 64,
      keep: (content) => {
        this.tries.want('card-name', { do: 'rename-card', address, name: content || null });
      },
    });
  }

  private renderCard({ address, kind }: Card) {
    const own = this.setup.value?.cards[address] ?? {};
    const { tries } = this;
    const changed = (setup: CardSetup): Intent => ({ do: 'setup-card', address, setup });
    const tick = (key: 'keep' | 'signed', label: string, usual: boolean) =>
      renderTick({
        field: key,
        tries,
        label,
        usable: this.isAdmin.value,
        isOn: own[key] ?? usual,
        keep: (isOn) => {
          tries.want(key, changed({ [key]: isOn }));
        },
      });
    const size = (key: 'rows' | 'columns', usual: number) =>
      this.renderLabelled(key, words[key], {
        value: String(own[key] ?? ''),
        usual: String(usual),
        longest: 3,
        keep: (content) => {
          tries.wantNumber(key, content, (value) => changed({ [key]: value }));
        },
      });
    if (kind === 'lcd') return html`${size('rows', 4)}${size('columns', 20)}`;
    if (kind === 'motor')
      return html`${tick('signed', words.signed, false)}${tick('keep', words.keepMotor, false)}`;
    if (kind === 'digital-output' || kind === 'servo') return tick('keep', words.keep, true);
    return nothing;
  }

  private renderChannels(card: Card) {
    const [first] = card.channels;
    const numbers = (first && numbersOf[first.type]) ?? [];
    const isLine = first?.type === 'switch' || first?.type === 'contact';
    const heads = [words.channel, words.name];
    if (numbers.length > 0) heads.push(words.unit, ...numbers.map((key) => words[key]));
    if (isLine) heads.push(words.active);
    const purpose = purposeHead(first?.type);
    if (purpose !== null) heads.push(purpose);
    return html`<div class="wide" tabindex="0" role="group" aria-label=${text.settings.cards}>
      <table>
        <thead>
          <tr>
            ${heads.map((head) => html`<th scope="col">${head}</th>`)}
          </tr>
        </thead>
        <tbody>
          ${card.channels.map((channel) => this.renderChannel(channel, numbers, isLine))}
        </tbody>
      </table>
    </div>`;
  }

  private renderChannel(channel: Channel, numbers: readonly NumberKey[], isLine: boolean) {
    const { id } = channel;
    const own = this.setup.value?.channels[id] ?? {};
    const { tries } = this;
    const usable = this.isAdmin.value;
    const common = (key: 'name' | 'unit' | NumberKey) => {
      const label = words.of(words[key], nameOf(channel));
      return { field: `${key}-${id}`, tries, label, usable };
    };
    const changed = (setup: ChannelSetup): Intent => ({ do: 'setup-channel', id, setup });
    const usual = { min: '0', max: '255', decimals: '0', hysteresis: '0' };
    const name = renderField({
      ...common('name'),
      value: channel.name ?? '',
      usual: numberedName(channel),
      longest: 64,
      keep: (content) => {
        tries.want(`name-${id}`, { do: 'rename-channel', id, name: content || null });
      },
    });
    const unit = () =>
      renderField({
        ...common('unit'),
        value: own.unit ?? '',
        usual: '',
        longest: 16,
        keep: (content) => {
          tries.want(`unit-${id}`, changed({ unit: content || null }));
        },
      });
    const number = (key: NumberKey) =>
      renderField({
        ...common(key),
        value: String(own[key] ?? ''),
        usual: usual[key],
        longest: 12,
        keep: (content) => {
          tries.wantNumber(`${key}-${id}`, content, (value) => changed({ [key]: value }));
        },
      });
    return html`<tr>
      <td>${id}</td>
      <td class="name">${name}</td>
      ${numbers.length > 0 ? html`<td>${unit()}</td>` : nothing}
      ${numbers.map((key) => html`<td>${number(key)}</td>`)}
      ${isLine ? html`<td>${this.renderLevel(channel, own)}</td>` : nothing}
      ${purposeHead(channel.type) === null
        ? nothing
        : html`<td>${renderPurpose(channel, own, usable, tries)}</td>`}
    </tr>`;
  }

  private renderLevel(channel: Channel, own: ChannelSetup) {
    const { id } = channel;
    const field = `active-${id}`;
    const usual = channel.type === 'switch' ? 'low' : 'high';
    const level = own.active ?? usual;
    const titled = (each: 'high' | 'low') =>
      [each, each === usual ? words.usual(words[each]) : words[each]] as const;
    return renderChoice({
      field,
      tries: this.tries,
      label: words.of(words.active, nameOf(channel)),
      usable: this.isAdmin.value,
      options: [titled('high'), titled('low')],
      chosen: level,
      keep: (chosen) => {
        const setup = { active: chosen === usual ? null : chosen };
        this.tries.want(field, { do: 'setup-channel', id, setup });
      },
    });
  }

  private renderLabelled(
    field: string,
    label: string,
    control: Omit<Field, 'field' | 'tries' | 'label' | 'usable'>,
  ) {
    const common = { field, tries: this.tries, label, usable: this.isAdmin.value };
    return html`<label class="labelled">${label}${renderField({ ...control, ...common })}</label>`;
  }
}

// The front plate of one card: its address, name and kind, and its drawn parts.
import { html, LitElement, nothing, type TemplateResult } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import type { BoardRow, Card, Channel, Kind } from '../api/Shapes.js';
import { want } from '../state/Intent.js';
import { codesAfter } from '../state/memory.js';
import { hasHands, isPulled, may } from '../state/select.js';
import type { SentCode } from '../state/State.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import type { RenamedEvent } from '../widgets/Name.js';
import { plateStyle } from './plateStyle.js';
import { turn } from './turn.js';

const drives = 3; // the fourth channel of a motor is its control byte

@customElement('qelm-plate')
export class Plate extends LitElement {
  static override styles = [base, plateStyle];

  @property({ attribute: false }) card!: Card;
  @property({ attribute: false }) board: BoardRow['state'] | null = null; // null: on this bus
  private readonly canUse = new Reads(this, (state) => may(state, 'use'));
  private readonly canName = new Reads(this, (state) => this.isOwn && may(state, 'admin'));
  private readonly hasHands = new Reads(this, (state) => this.isOwn && hasHands(state));
  private readonly isPulled = new Reads(this, (state) => isPulled(state, this.address));
  private readonly keys = new Reads(this, (state) =>
    this.isOwn ? state.keys[this.address] : undefined,
  );
  private readonly turns = new Reads(this, (state) =>
    this.isOwn ? (state.turns[this.address] ?? 0) : 0,
  );
  private readonly codes = new Reads(this, (state) =>
    this.isOwn ? state.codes[this.codeId] : undefined,
  );
  private readonly trails = new Reads(this, (state) =>
    this.isOwn && this.kind === 'analogue-input' ? state.trails : undefined,
  );

  protected override async scheduleUpdate(): Promise<void> {
    if (!this.hasUpdated) await turn();
    await super.scheduleUpdate();
  }

  override render() {
    const { address, kind, name, state } = this.card;
    const slot = text.slot(address);
    const isHere = state === 'present';
    return html`<section
      class="plate ${kind} ${state}"
      aria-label="${slot}: ${name ?? text.kinds[kind]}"
    >
      <header>
        <span class="address" aria-hidden="true">${address}</span>
        <div class="title">
          <h2>
            <qelm-name
              .name=${name}
              .fallback=${text.kinds[kind]}
              .editable=${this.canName.value}
              @renamed=${(event: RenamedEvent) => {
                want(this, { do: 'rename-card', address, name: event.name }, event.refused);
              }}
            ></qelm-name>
          </h2>
          ${name === null ? nothing : html`<p class="kind">${text.kinds[kind]}</p>`}
        </div>
        ${state === 'present' ? nothing : html`<span class="state">${text.states[state]}</span>`}
        ${this.hasHands.value
          ? html`<qelm-plug .address=${address} .isPulled=${this.isPulled.value}></qelm-plug>`
          : nothing}
      </header>
      ${isHere ? nothing : html`<p class="why">${text.why[state]}</p>`}
      <div class="parts">${this.renderParts(kind)}</div>
    </section>`;
  }

  private get address(): string {
    return (this.card as Card | undefined)?.address ?? '';
  }

  private get codeId(): string {
    return `${this.address}.0`;
  }

  private get kind(): Kind | undefined {
    return (this.card as Card | undefined)?.kind;
  }

  // Nothing of another board is renamed, pulled or remembered here.
  private get isOwn(): boolean {
    return this.board === null;
  }

  // Infrared: of another board only the last code is known.
  private get sent(): readonly SentCode[] {
    const codes = this.isOwn ? this.codes.value : codesAfter({}, this.card.channels)[this.codeId];
    return codes ?? [];
  }

  private get usable(): boolean {
    const isReached = this.isOwn || this.board === 'online';
    return this.canUse.value && isReached && this.card.state !== 'absent';
  }

  private get touchable(): boolean {
    return this.hasHands.value && !this.isPulled.value && this.card.state !== 'absent';
  }

  private renderParts(kind: Kind): TemplateResult {
    switch (kind) {
      case 'digital-output':
        return this.renderAll('lines', (channel) => this.renderSwitch(channel));
      case 'digital-input':
        return this.renderAll('lines', (channel) => this.renderContact(channel));
      case 'servo':
        return this.renderAll('dials', (channel) => this.renderServo(channel));
      case 'motor':
        return this.renderMotor();
      case 'analogue-input':
        return this.renderAll('dials', (channel) => this.renderLevel(channel));
      case 'keys':
        return html`<qelm-keypad
          .card=${this.card}
          .events=${this.keys.value ?? []}
          .turns=${this.turns.value}
          .usable=${this.touchable}
        ></qelm-keypad>`;
      case 'lcd':
        return html`<qelm-glass
          .card=${this.card}
          .usable=${this.usable}
          .isFar=${!this.isOwn}
        ></qelm-glass>`;
      case 'ir':
        return html`<qelm-infrared
          .card=${this.card}
          .codes=${this.sent}
          .usable=${this.usable}
          .renamable=${this.canName.value}
        ></qelm-infrared>`;
      case 'silent':
        return html`<p class="why">${text.why.silentKind}</p>`;
      case 'unknown':
        return html`<p class="why">${text.why.unknownKind}</p>`;
    }
  }

  private renderAll(
    look: string,
    render: (channel: Channel) => TemplateResult,
    channels = this.card.channels,
  ): TemplateResult {
    return html`<div class=${look}>${repeat(channels, ({ id }) => id, render)}</div>`;
  }

  private renderSwitch(channel: Channel): TemplateResult {
    return html`<qelm-switch
      .channel=${channel}
      .usable=${this.usable}
      .renamable=${this.canName.value}
    ></qelm-switch>`;
  }

  private renderContact(channel: Channel): TemplateResult {
    return html`<qelm-contact
      .channel=${channel}
      .usable=${this.touchable}
      .renamable=${this.canName.value}
    ></qelm-contact>`;
  }

  private renderServo(channel: Channel): TemplateResult {
    return html`<qelm-servo
      .channel=${channel}
      .usable=${this.usable}
      .renamable=${this.canName.value}
    ></qelm-servo>`;
  }

  private renderMotor(): TemplateResult {
    const control = this.card.channels[drives];
    const dial = (channel: Channel) =>
      html`<qelm-motor
        .channel=${channel}
        .usable=${this.usable}
        .renamable=${this.canName.value}
      ></qelm-motor>`;
    return html`${this.renderAll('dials', dial, this.card.channels.slice(0, drives))}
    ${control
      ? html`<qelm-control-byte
          .channel=${control}
          .usable=${this.usable}
          .renamable=${this.canName.value}
        ></qelm-control-byte>`
      : nothing}`;
  }

  private renderLevel(channel: Channel): TemplateResult {
    return html`<qelm-level
      .channel=${channel}
      .trail=${this.trails.value?.[channel.id] ?? []}
      .usable=${this.touchable}
      .renamable=${this.canName.value}
    ></qelm-level>`;
  }
}

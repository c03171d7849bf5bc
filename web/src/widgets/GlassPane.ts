// A display: its glass dot by dot, a line to write in each row, its light, cursor and blinking.
import { html, LitElement, nothing, svg } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';
import { guard } from 'lit/directives/guard.js';

import type { Card, Glass } from '../api/Shapes.js';
import { allDots, dotsOfRow, drawBlink, drawCursor, glassBox, glassStyle } from '../cards/glass.js';
import { want } from '../state/Intent.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { paneStyle } from './paneStyle.js';

const switches = ['light', 'cursor', 'blink'] as const;

@customElement('qelm-glass')
export class GlassPane extends LitElement {
  static override styles = [base, glassStyle, paneStyle];

  @property({ attribute: false }) card!: Card;
  @property({ type: Boolean }) usable = false;
  @property({ attribute: false }) isFar = false; // of another board: its light is all that is reached
  @state() private row = 0;

  override render() {
    const glass = this.card.glass;
    if (!glass) return nothing;
    return html`${this.renderGlass(glass)}
    ${glass.known ? nothing : html`<p class="hint">${text.glass.unknown}</p>`}
    ${this.usable ? this.renderControls(glass) : nothing}`;
  }

  private renderGlass(glass: Glass) {
    const columns = glass.rows[0]?.length ?? 0;
    const label = glass.rows.map((row) => row.trimEnd()).join('\n');
    return html`<svg
      class="glass ${glass.light === true ? 'lit' : ''} ${glass.light === null ? 'unsure' : ''}"
      viewBox=${glassBox(glass.rows.length, columns)}
      role="img"
      aria-label="${text.glass.label}: ${label}"
    >
      <rect class="pane" x="-3" y="-3" width="100%" height="100%"></rect>
      <path class="dots" d=${allDots(glass.rows.length, columns)}></path>
      ${glass.rows.map(
        (line, row) =>
          svg`<path class="ink" d=${dotsOfRow(line, row)}></path>
            <rect class="row" x="-3" y=${row * 9} width="100%" height="8"
              @click=${() => void this.begin(row)}></rect>`,
      )}
      ${glass.at && glass.cursor ? drawCursor(glass.at) : nothing}
      ${glass.at && glass.blink ? drawBlink(glass.at) : nothing}
    </svg>`;
  }

  // What comes from elsewhere is not written over what somebody is typing.
  private renderControls(glass: Glass) {
    const line = glass.rows[this.row] ?? '';
    return html`<form @submit=${this.write}>
        <div class="rows" role="group" aria-label=${text.glass.label}>
          ${glass.rows.map(
            (_, row) =>
              html`<button
                type="button"
                class="key"
                aria-pressed=${row === this.row}
                aria-label=${text.glass.row(row)}
                @click=${() => void this.begin(row)}
              >
                ${row + 1}
              </button>`,
          )}
        </div>
        <input
          class="field"
          aria-label=${text.glass.text(this.row)}
          maxlength=${line.length}
          spellcheck="false"
          autocomplete="off"
          pattern="[ -~]*"
          .value=${guard([this.row], () => line.trimEnd())}
        />
        <button class="key">${text.glass.write}</button>
      </form>
      <div class="switches">
        ${(this.isFar ? switches.slice(0, 1) : switches).map((what) =>
          this.renderSwitch(what, glass[what]),
        )}
        ${this.isFar
          ? nothing
          : html`<button class="key" @click=${this.control('clear')}>${text.glass.clear}</button>`}
      </div>`;
  }

  private renderSwitch(what: (typeof switches)[number], isOn: boolean | null) {
    const sign = isOn === null ? html`<span aria-hidden="true">?</span>` : nothing;
    return html`<button
      class="key"
      aria-pressed=${isOn === true}
      @click=${this.control(`${what}-${isOn ? 'off' : 'on'}`)}
    >
      ${text.glass[what]}${sign}
    </button>`;
  }

  private async begin(row: number): Promise<void> {
    if (!this.usable) return;
    this.row = row;
    await this.updateComplete;
    const field = this.renderRoot.querySelector('input');
    if (field) field.value = this.card.glass?.rows[row]?.trimEnd() ?? '';
    field?.select();
  }

  // Blanks behind the text wipe what stood there.
  private write(event: SubmitEvent): void {
    event.preventDefault();
    const columns = this.card.glass?.rows[this.row]?.length ?? 0;
    const line = this.renderRoot.querySelector('input')?.value.padEnd(columns) ?? '';
    want(this, { do: 'write', address: this.card.address, row: this.row, column: 0, text: line });
  }

  private control(what: string) {
    return () => {
      want(this, { do: 'control', address: this.card.address, what });
    };
  }
}

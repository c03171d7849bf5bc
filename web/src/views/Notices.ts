// What is wrong, said where nobody overlooks it: a strip for what lasts, slips for what was refused.
import { css, html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import { hubTime } from '../state/clock.js';
import { want } from '../state/Intent.js';
import { Reads, store } from '../state/Store.js';
import { formatTime } from '../widgets/format.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { secondsTill, Ticking } from '../widgets/Ticking.js';

@customElement('qelm-notices')
export class Notices extends LitElement {
  static override styles = [
    base,
    css`
      .strip {
        display: flex;
        flex-wrap: wrap;
        align-items: center;
        gap: 0.25rem 1rem;
        min-height: 2.75rem;
        padding: 0.375rem 1rem;
        border-bottom: var(--hair) solid var(--wrong);
        background: var(--well);
        font-size: 0.875rem;
      }
      .retry {
        color: var(--faint);
      }
      .slips {
        position: fixed;
        z-index: 2;
        right: 1rem;
        bottom: calc(1rem + var(--thumb, 0px));
        display: grid;
        gap: 0.5rem;
        width: min(26rem, calc(100vw - 2rem));
      }
      /* Beside the thumb, what is said of "all outputs off" comes first. */
      @media (max-width: 639px) {
        .slips.raised {
          bottom: calc(5rem + var(--thumb, 0px));
        }
      }
      .slip {
        display: flex;
        align-items: center;
        gap: 0.75rem;
        padding: 0.5rem 0.5rem 0.5rem 0.75rem;
        border: var(--hair) solid var(--wrong);
        border-left-width: 4px;
        border-radius: 2px;
        background: var(--plate);
        font-size: 0.875rem;
      }
      .slip span {
        flex: 1;
        overflow-wrap: anywhere;
      }
      .slip::first-letter {
        text-transform: uppercase;
      }
    `,
  ];

  private readonly notices = new Reads(this, (state) => state.notices);
  private readonly allOff = new Reads(this, (state) => state.allOff);
  private readonly connection = new Reads(this, (state) => state.connection);
  private readonly bus = new Reads(this, (state) => state.bus);

  constructor() {
    super();
    new Ticking(this);
  }

  override render() {
    return html`<div role="status">${this.renderStrip()}</div>
      <div class="slips ${this.allOff.value ? 'raised' : ''}" role="alert">
        ${repeat(
          this.notices.value,
          ({ id }) => id,
          ({ id, problem }) =>
            html`<div class="slip">
              <span>${problem.detail}</span>
              <button
                class="key"
                @click=${() => {
                  want(this, { do: 'dismiss', notice: id });
                }}
              >
                ${text.dismiss}
              </button>
            </div>`,
        )}
      </div>`;
  }

  private renderStrip() {
    const { lostSince, nextTry, who } = store.state;
    const bus = this.bus.value;
    if (!bus || who?.role === null) return nothing; // who has to log in first waits for nothing
    if (this.connection.value !== 'open' && lostSince !== null)
      return html`<div class="strip">
        ${text.state.lost(formatTime(hubTime(store.state, lostSince)))}
        ${nextTry === null
          ? nothing
          : html`<span class="retry" aria-hidden="true"
              >${text.state.retry(secondsTill(nextTry))}</span
            >`}
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'try-now' });
          }}
        >
          ${text.state.tryNow}
        </button>
      </div>`;
    const held = bus.daemon.waiting_for?.toUpperCase();
    if (bus.daemon.state !== 'up')
      return html`<div class="strip">${held ? text.daemonHeld(held) : text.daemonGone}</div>`;
    if (bus.adapter.state === 'down') return html`<div class="strip">${text.adapterGone}</div>`;
    return nothing;
  }
}

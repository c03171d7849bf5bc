// What a channel on the bench offers beside itself, where its context menu would be: by a right
// click, a long press or the menu key. It is in nobody's way otherwise.
import { css, html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import type { Channel } from '../api/Shapes.js';
import { want } from '../state/Intent.js';
import { canPlot, mostPlots } from '../state/plots.js';
import { store } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { nameOf } from '../widgets/format.js';

function channelAt(event: Event): Channel | null {
  for (const target of event.composedPath()) {
    if (target instanceof HTMLInputElement) return null; // its own menu pastes
    if (target instanceof HTMLElement && 'channel' in target) return target.channel as Channel;
  }
  return null;
}

@customElement('qelm-channel-menu')
export class ChannelMenu extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        display: contents;
      }
      .menu {
        position: fixed;
        z-index: 3;
        max-width: min(20rem, calc(100vw - 1rem));
        padding: 0.25rem;
        background: var(--plate);
        border: var(--hair) solid var(--edge);
        border-radius: 2px;
      }
      button {
        width: 100%;
        min-height: var(--touch);
        padding: 0 0.75rem;
        overflow: hidden;
        text-overflow: ellipsis;
        white-space: nowrap;
        font-size: 0.8125rem;
      }
      button:hover,
      button:focus-visible {
        background: var(--part);
        outline-offset: -2px;
      }
    `,
  ];

  @state() private channel: Channel | null = null;
  private at = { x: 0, y: 0 };
  private scrolled = 0; // px, when it was opened
  private from: HTMLElement | null = null;

  override connectedCallback(): void {
    super.connectedCallback();
    document.addEventListener('contextmenu', this.onMenu);
    document.addEventListener('pointerdown', this.onElsewhere);
    window.addEventListener('scroll', this.onScroll, { passive: true });
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    document.removeEventListener('contextmenu', this.onMenu);
    document.removeEventListener('pointerdown', this.onElsewhere);
    window.removeEventListener('scroll', this.onScroll);
  }

  override render() {
    if (!this.channel) return nothing;
    const name = nameOf(this.channel);
    return html`<div
      class="menu"
      role="menu"
      aria-label=${text.plots.menu(name)}
      @keydown=${this.onKey}
    >
      <button role="menuitem" aria-disabled=${this.isFull} @click=${this.plot}>
        ${text.plots.open(name)}${this.isFull
          ? html` (${text.plots.chosen(mostPlots, mostPlots)})`
          : nothing}
      </button>
    </div>`;
  }

  override updated(): void {
    const menu = this.renderRoot.querySelector<HTMLElement>('.menu');
    if (!menu) return;
    const { width, height } = menu.getBoundingClientRect();
    menu.style.left = `${Math.max(8, Math.min(this.at.x, innerWidth - width - 8))}px`;
    menu.style.top = `${Math.max(8, Math.min(this.at.y, innerHeight - height - 8))}px`;
    menu.querySelector('button')?.focus();
  }

  private readonly onMenu = (event: MouseEvent): void => {
    const channel = channelAt(event);
    if (!channel || !canPlot(channel)) return;
    event.preventDefault();
    this.at = { x: event.clientX, y: event.clientY };
    this.scrolled = window.scrollY;
    const focused = event.composedPath()[0];
    this.from = focused instanceof HTMLElement ? focused : null;
    this.channel = channel;
  };

  private readonly onElsewhere = (event: Event): void => {
    if (!event.composedPath().includes(this)) this.close();
  };

  private readonly close = (): void => {
    this.channel = null;
  };

  // What was scrolled before it was opened may be told of later.
  private readonly onScroll = (): void => {
    if (Math.abs(window.scrollY - this.scrolled) > 1) this.close();
  };

  private onKey(event: KeyboardEvent): void {
    if (event.key !== 'Escape' && event.key !== 'Tab') return;
    event.preventDefault();
    this.close();
    this.from?.focus();
  }

  private get isFull(): boolean {
    const { channels } = store.state.plots;
    return channels.length >= mostPlots && !channels.includes(this.channel?.id ?? '');
  }

  private plot(): void {
    if (!this.channel || this.isFull) return;
    want(this, { do: 'plot', channels: [...store.state.plots.channels, this.channel.id] });
    this.close();
    location.hash = '#plots';
  }
}

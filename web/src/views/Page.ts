// The page: state above, the view, and the way to the other views (at the thumb on a phone).
import { css, html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { may } from '../state/select.js';
import { Reads, store } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { turn } from './turn.js';
import { offeredTo, restOf, viewAt } from './Views.js';

@customElement('qelm-page')
export class Page extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        display: flex;
        flex-direction: column;
        min-height: 100vh;
        min-height: 100dvh;
      }
      header {
        position: sticky;
        z-index: 1;
        top: 0;
      }
      main {
        flex: 1;
        display: grid;
      }
      @media print {
        header,
        qelm-notices,
        main {
          display: none;
        }
      }
      nav {
        display: flex;
      }
      a {
        display: flex;
        align-items: center;
        gap: 0.5rem;
        min-height: var(--touch);
        padding: 0 0.75rem;
        color: var(--faint);
        text-decoration: none;
      }
      a[aria-current] {
        color: var(--ink);
        box-shadow: inset 0 -2px var(--ink);
      }
      a svg {
        width: 1.25rem;
        height: 1.25rem;
        fill: none;
        stroke: currentcolor;
        stroke-width: 1.5;
      }
      @media (min-width: 640px) and (max-width: 1279px) {
        a {
          padding: 0 0.5rem;
        }
        a svg {
          display: none;
        }
      }
      @media (max-width: 639px) {
        :host {
          --thumb: 3.5rem;
        }
        nav.many {
          position: fixed;
          z-index: 1;
          inset: auto 0 0;
          background: var(--plate);
          border-top: var(--hair) solid var(--line);
          padding-bottom: env(safe-area-inset-bottom);
        }
        nav.many a {
          flex: 1;
          flex-direction: column;
          justify-content: center;
          gap: 0.125rem;
          min-height: 3.5rem;
          padding: 0;
          font-size: 0.6875rem;
        }
        nav.many a[aria-current] {
          box-shadow: inset 0 2px var(--ink);
        }
        /* At the thumb, too; the views leave it its place. */
        qelm-all-off {
          position: fixed;
          z-index: 1;
          inset: auto 0 0 auto;
          width: 3.5rem;
          height: calc(var(--thumb) + env(safe-area-inset-bottom));
          padding-bottom: env(safe-area-inset-bottom);
          border-top: var(--hair) solid var(--line);
          border-left: var(--hair) solid var(--line);
          background: var(--plate);
        }
        nav.beside {
          right: 3.5rem;
        }
        main.above {
          padding-bottom: calc(var(--thumb) + env(safe-area-inset-bottom));
        }
      }
    `,
  ];

  private readonly ownRole = new Reads(this, (known) => known.who?.role);
  private readonly canUse = new Reads(this, (known) => may(known, 'use'));
  private readonly allOff = new Reads(this, (known) => known.allOff);
  private readonly busName = new Reads(this, (known) => known.bus?.name);
  @state() private hash = location.hash;

  constructor() {
    super();
    new Reads(this, (known) => offeredTo(known).length);
  }

  override connectedCallback(): void {
    super.connectedCallback();
    window.addEventListener('hashchange', this.onHash);
    this.onHash();
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    window.removeEventListener('hashchange', this.onHash);
  }

  protected override async scheduleUpdate(): Promise<void> {
    if (!this.hasUpdated) await turn();
    await super.scheduleUpdate();
  }

  override render() {
    const name = this.busName.value;
    document.title = name ? `${name} – ${text.page}` : text.page;
    if (this.ownRole.value === null)
      return html`<main><qelm-log-in></qelm-log-in></main>
        <qelm-notices></qelm-notices>`;
    const view = viewAt(this.hash, this.offered);
    void view.load();
    return html`<header>
        <qelm-state-bar>${this.renderNav()}${this.renderAllOff()}</qelm-state-bar>
      </header>
      <qelm-notices></qelm-notices>
      <main class=${this.offered.length > 1 ? 'above' : ''}>
        ${view.render(restOf(this.hash))}<qelm-channel-menu></qelm-channel-menu>
      </main>
      <qelm-card-table></qelm-card-table>`;
  }

  private get offered() {
    return offeredTo(store.state);
  }

  private renderNav() {
    const offered = this.offered;
    if (offered.length < 2) return nothing;
    const current = viewAt(this.hash, offered);
    return html`<nav class="many ${this.canUse.value ? 'beside' : ''}" aria-label=${text.nav.label}>
      ${offered.map(
        (view) =>
          html`<a href="#${view.name}" aria-current=${view === current ? 'page' : nothing}>
            <svg viewBox="0 0 24 24" aria-hidden="true"><path d=${view.icon}></path></svg>
            ${view.title}
          </a>`,
      )}
    </nav>`;
  }

  private renderAllOff() {
    if (!this.canUse.value) return nothing;
    return html`<qelm-all-off slot="end" .allOff=${this.allOff.value}></qelm-all-off>`;
  }

  private readonly onHash = (): void => {
    this.hash = location.hash;
  };
}

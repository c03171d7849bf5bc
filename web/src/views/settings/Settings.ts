// The settings: a section a concern. Whoever may not change one sees it, or does not see it at all.
import { html, LitElement, nothing, type TemplateResult } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import type { Role } from '../../api/Shapes.js';
import { want } from '../../state/Intent.js';
import { may } from '../../state/select.js';
import { Reads, store } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { viewStyle } from '../viewStyle.js';
import './About.js';
import './Accounts.js';
import './Appearance.js';
import './Backup.js';
import './Boards.js';
import './Cards.js';
import { settingsStyle } from './settingsStyle.js';
import './Tokens.js';

interface Section {
  title: string;
  role: Role;
  render: () => TemplateResult;
}

const { settings } = text;
const sections: readonly Section[] = [
  { title: settings.cards, role: 'view', render: () => html`<qelm-set-cards></qelm-set-cards>` },
  {
    title: settings.people,
    role: 'admin',
    render: () => html`<qelm-set-accounts></qelm-set-accounts>`,
  },
  {
    title: settings.tokens,
    role: 'admin',
    render: () => html`<qelm-set-tokens></qelm-set-tokens>`,
  },
  {
    title: settings.backup,
    role: 'admin',
    render: () => html`<qelm-set-backup></qelm-set-backup>`,
  },
  {
    title: settings.boards.title,
    role: 'view',
    render: () => html`<qelm-set-boards></qelm-set-boards>`,
  },
  {
    title: settings.appearance,
    role: 'view',
    render: () => html`<qelm-set-theme></qelm-set-theme>`,
  },
  { title: settings.about, role: 'view', render: () => html`<qelm-set-about></qelm-set-about>` },
];

@customElement('qelm-settings')
export class SettingsView extends LitElement {
  static override styles = [base, viewStyle, settingsStyle];

  private readonly isOpen = new Reads(this, (known) => known.connection === 'open');
  private readonly ownRole = new Reads(this, (known) => known.who?.role);
  @state() private section = settings.cards;
  private wasReady = false;

  override willUpdate(): void {
    const isReady = this.isOpen.value && this.ownRole.value !== undefined;
    if (isReady && !this.wasReady) want(this, { do: 'settings-read' });
    this.wasReady = isReady;
  }

  override render() {
    const offered = sections.filter(({ role }) => may(store.state, role));
    const current = offered.find(({ title }) => title === this.section) ?? offered[0];
    return html`<div class="head"><h1>${settings.title}</h1></div>
      <div class="pages">
        <div class="list" role="group" aria-label=${settings.sections}>
          ${offered.map(
            (section) =>
              html`<button
                aria-pressed=${section === current}
                @click=${() => {
                  this.section = section.title;
                }}
              >
                ${section.title}
              </button>`,
          )}
        </div>
        <section class="plate" aria-label=${current?.title ?? nothing}>
          <h2>${current?.title}</h2>
          ${current?.render()}
        </section>
      </div>`;
  }
}

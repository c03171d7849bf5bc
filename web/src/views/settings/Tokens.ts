// Tokens of programs. A new one's secret is shown once, till somebody says that he has it.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import type { Token } from '../../api/Settled.js';
import type { Role } from '../../api/Shapes.js';
import { want } from '../../state/Intent.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { viewStyle } from '../viewStyle.js';
import { textIn } from './fields.js';
import { roleField } from './roles.js';
import { sectionStyle } from './settingsStyle.js';

const { token: words, accounts } = text.settings;

@customElement('qelm-set-tokens')
export class Tokens extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  private readonly tokens = new Reads(this, (known) => known.settings.tokens);
  private readonly fresh = new Reads(this, (known) => known.settings.newToken);
  @state() private leaving: string | null = null; // to be removed
  private added: { form: HTMLFormElement; name: string } | null = null; // is asked for
  @state() private isCopied = false;

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    want(document, { do: 'token-seen' }); // nobody finds it here later
  }

  // What was typed stays till the hub has taken it.
  override updated(): void {
    if (!this.tokens.value?.some(({ name }) => name === this.added?.name)) return;
    this.added?.form.reset();
    this.added = null;
  }

  override render() {
    const tokens = this.tokens.value;
    if (!tokens) return nothing;
    return html`<p class="note">${words.about}</p>
      ${this.renderFresh()}
      ${tokens.length === 0
        ? html`<p class="note">${words.none}</p>`
        : html`<table>
            <thead>
              <tr>
                <th scope="col">${words.name}</th>
                <th scope="col">${accounts.role}</th>
                <td></td>
              </tr>
            </thead>
            <tbody>
              ${tokens.map((token) => this.renderToken(token))}
            </tbody>
          </table>`}
      ${this.renderLeaving()}
      <hr />
      <form @submit=${this.add}>
        <label class="labelled">
          ${words.name}
          <input class="field" name="name" required maxlength="64" autocomplete="off" />
        </label>
        ${roleField(accounts.role, 'view')}
        <button class="key">${words.add}</button>
      </form>`;
  }

  private renderFresh() {
    const fresh = this.fresh.value;
    if (!fresh) return nothing;
    return html`<div class="secret" role="status">
      <p>${words.once(fresh.name)}</p>
      <code>${fresh.token}</code>
      <div class="tools">
        ${window.isSecureContext
          ? html`<button class="key" @click=${() => this.copy(fresh.token)}>
              ${this.isCopied ? words.copied : words.copy}
            </button>`
          : nothing}
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'token-seen' });
          }}
        >
          ${words.seen}
        </button>
      </div>
    </div>`;
  }

  private renderToken({ name, role }: Token) {
    return html`<tr>
      <td>${name}</td>
      <td>${text.roles[role]}</td>
      <td class="end">
        <button
          class="key"
          aria-label=${accounts.remove(name)}
          @click=${() => {
            this.leaving = name;
          }}
        >
          ${accounts.confirm}
        </button>
      </td>
    </tr>`;
  }

  private renderLeaving() {
    const name = this.leaving;
    if (name === null) return nothing;
    const close = () => {
      this.leaving = null;
    };
    return html`<div class="secret">
      <p>${words.sure(name)}</p>
      <div class="tools">
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'token-remove', name });
            close();
          }}
        >
          ${accounts.remove(name)}
        </button>
        <button class="key" @click=${close}>${accounts.cancel}</button>
      </div>
    </div>`;
  }

  private async copy(token: string): Promise<void> {
    await navigator.clipboard.writeText(token);
    this.isCopied = true;
  }

  private add(event: SubmitEvent): void {
    event.preventDefault();
    const form = event.target as HTMLFormElement;
    const data = new FormData(form);
    this.isCopied = false;
    const role = textIn(data, 'role') as Role;
    const name = textIn(data, 'name');
    want(this, { do: 'token-add', name, role });
    this.added = { form, name };
  }
}

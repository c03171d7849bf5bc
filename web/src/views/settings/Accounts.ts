// Who may come in, and what each may do.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import type { Account } from '../../api/Settled.js';
import type { Role } from '../../api/Shapes.js';
import { want } from '../../state/Intent.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { viewStyle } from '../viewStyle.js';
import { renderChoice } from './controls.js';
import { textIn } from './fields.js';
import { roleField, roles } from './roles.js';
import { sectionStyle } from './settingsStyle.js';
import { Tries } from './Tries.js';

const { accounts: words } = text.settings;

@customElement('qelm-set-accounts')
export class Accounts extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  private readonly accounts = new Reads(this, (known) => known.settings.accounts);
  private readonly who = new Reads(this, (known) => known.who);
  private readonly tries = new Tries(this);
  private added: { form: HTMLFormElement; name: string } | null = null; // is asked for
  @state() private open: { account: string; to: 'password' | 'remove' } | null = null;

  // What was typed stays till the hub has taken it.
  override updated(): void {
    if (!this.accounts.value?.some(({ account }) => account === this.added?.name)) return;
    this.added?.form.reset();
    this.added = null;
  }

  override render() {
    const accounts = this.accounts.value;
    if (!accounts) return nothing;
    const isFirst = accounts.length === 0;
    return html`${isFirst
        ? html`<p class="note">${words.first}</p>`
        : html`<div class="wide">
            <table>
              <thead>
                <tr>
                  <th scope="col">${words.account}</th>
                  <th scope="col">${words.role}</th>
                  <td></td>
                </tr>
              </thead>
              <tbody>
                ${accounts.map((account) => this.renderAccount(account))}
              </tbody>
            </table>
          </div>`}
      ${this.renderOpen()}
      <hr />
      <form @submit=${this.add}>
        <label class="labelled">
          ${words.account}
          <input class="field" name="account" required maxlength="64" autocomplete="off" />
        </label>
        ${this.renderPassword(words.password)} ${isFirst ? nothing : roleField(words.role, 'use')}
        <button class="key">${words.add}</button>
      </form>
      <p class="note">${words.rule}</p>`;
  }

  private renderAccount({ account, role }: Account) {
    const isOwn = account === this.who.value?.account;
    const field = `role-${encodeURIComponent(account)}`;
    const open = (to: 'password' | 'remove') => () => {
      this.open = { account, to };
    };
    return html`<tr>
      <td>${account} ${isOwn ? html`<span class="note">(${words.you})</span>` : nothing}</td>
      <td>
        ${renderChoice({
          field,
          tries: this.tries,
          label: words.roleOf(account),
          usable: true,
          options: roles,
          chosen: role,
          keep: (chosen) => {
            this.tries.want(field, { do: 'account-change', account, role: chosen });
          },
        })}
      </td>
      <td class="end">
        <button class="key" aria-label=${words.passwordOf(account)} @click=${open('password')}>
          ${words.newPassword}
        </button>
        <button class="key" aria-label=${words.remove(account)} @click=${open('remove')}>
          ${words.confirm}
        </button>
      </td>
    </tr>`;
  }

  private renderOpen() {
    if (!this.open) return nothing;
    const { account, to } = this.open;
    const cancel = html`<button type="button" class="key" @click=${this.close}>
      ${words.cancel}
    </button>`;
    if (to === 'password')
      return html`<form class="secret" @submit=${this.change}>
        ${this.renderPassword(words.passwordOf(account))}
        <div class="tools"><button class="key">${words.change}</button>${cancel}</div>
      </form>`;
    return html`<div class="secret">
      <p>${words.sure(account)}</p>
      <div class="tools">
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'account-remove', account });
            this.close();
          }}
        >
          ${words.remove(account)}
        </button>
        ${cancel}
      </div>
    </div>`;
  }

  private renderPassword(label: string) {
    return html`<label class="labelled">
      ${label}
      <input
        class="field"
        name="password"
        type="password"
        required
        minlength="8"
        maxlength="1024"
        autocomplete="new-password"
      />
    </label>`;
  }

  private close(): void {
    this.open = null;
  }

  private add(event: SubmitEvent): void {
    event.preventDefault();
    const form = event.target as HTMLFormElement;
    const data = new FormData(form);
    const role = (textIn(data, 'role') || 'admin') as Role;
    const password = passwordIn(form);
    const account = textIn(data, 'account');
    want(this, { do: 'account-add', account, password, role });
    this.added = { form, name: account };
  }

  private change(event: SubmitEvent): void {
    event.preventDefault();
    const form = event.target as HTMLFormElement;
    const password = passwordIn(form);
    if (this.open) want(this, { do: 'account-change', account: this.open.account, password });
    this.close();
  }
}

// As it was typed: spaces count.
function passwordIn(form: HTMLFormElement): string {
  const value = new FormData(form).get('password');
  return typeof value === 'string' ? value : '';
}

// Whoever is not known logs in. Whose bench it is, only those know who were in before: others read
// where it is.
import { css, html, LitElement } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { keptName } from '../state/deeds/kept.js';
import { want } from '../state/Intent.js';
import type { State } from '../state/State.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

@customElement('qelm-log-in')
export class LogIn extends LitElement {
  static override styles = [
    base,
    css`
      :host {
        display: grid;
        place-content: start center;
        padding: 15vh 1rem 1rem;
      }
      form {
        display: grid;
        gap: 1rem;
        width: min(20rem, calc(100vw - 2rem));
        padding: 1.5rem;
        background: var(--plate);
        border: var(--hair) solid var(--line);
        border-radius: 2px;
      }
      h1 {
        font-size: 1.0625rem;
        font-weight: 600;
      }
      header p {
        padding-top: 0.25rem;
        color: var(--faint);
        font-size: 0.875rem;
        overflow-wrap: anywhere;
      }
      label {
        display: grid;
        gap: 0.25rem;
        font-size: 0.8125rem;
      }
      .field {
        font-size: 1rem;
      }
    `,
  ];

  private readonly notices = new Reads(this, (known) => known.notices);
  @state() private asked: State['notices'] | null = null; // a refusal is a notice more than then

  override render() {
    return html`<form @submit=${this.send}>
      <header>
        <h1>${text.logIn.title}</h1>
        <p>${keptName() ?? location.hostname}</p>
      </header>
      <label>
        ${text.logIn.account}
        <input class="field" name="account" autocomplete="username" required maxlength="64" />
      </label>
      <label>
        ${text.logIn.password}
        <input
          class="field"
          name="password"
          type="password"
          autocomplete="current-password"
          required
          maxlength="1024"
        />
      </label>
      <button class="key" ?disabled=${this.asked === this.notices.value}>
        ${this.asked === this.notices.value ? text.logIn.going : text.logIn.go}
      </button>
    </form>`;
  }

  private send(event: SubmitEvent): void {
    event.preventDefault();
    const data = new FormData(event.target as HTMLFormElement);
    const field = (name: string) => {
      const value = data.get(name);
      return typeof value === 'string' ? value : '';
    };
    if (this.asked === this.notices.value) return;
    this.asked = this.notices.value;
    want(this, { do: 'log-in', account: field('account'), password: field('password') });
  }
}

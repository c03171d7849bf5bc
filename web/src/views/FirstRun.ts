// An empty bench says what it waits for, and what to do.
import { css, html, LitElement } from 'lit';
import { customElement } from 'lit/decorators.js';

import { drawSign, signStyle } from '../cards/sign.js';
import { progressOf, type Progress, type Step } from '../state/firstRun.js';
import { hasHands } from '../state/select.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

@customElement('qelm-first-run')
export class FirstRun extends LitElement {
  static override styles = [
    base,
    signStyle,
    css`
      :host {
        display: grid;
        justify-content: center;
        padding: min(8vh, 4rem) 1rem 2rem;
      }
      section {
        max-width: 32rem;
        padding: 1.25rem 1.5rem;
        background: var(--plate);
        border: var(--hair) solid var(--line);
        border-radius: 2px;
      }
      h1 {
        padding-bottom: 0.75rem;
        font-size: 1.0625rem;
        font-weight: 600;
      }
      li {
        display: grid;
        grid-template-columns: 1rem minmax(4.5rem, auto) minmax(0, 1fr);
        gap: 0.25rem 0.5rem;
        align-items: center;
        padding: 0.25rem 0;
      }
      li svg {
        width: 0.875rem;
        height: 0.875rem;
      }
      h2 {
        font-size: 0.875rem;
        font-weight: 400;
      }
      li p,
      .later h2 {
        color: var(--faint);
        font-size: 0.875rem;
      }
      /* Only the step that is waited for has much to say. */
      .now h2 {
        font-weight: 600;
      }
      .now p,
      .unsure p {
        grid-column: 2 / -1;
      }
      .now p {
        padding-bottom: 0.25rem;
        color: var(--ink);
      }
      .trial {
        padding-top: 1rem;
        color: var(--faint);
        font-size: 0.8125rem;
      }
    `,
  ];

  private readonly bus = new Reads(this, (state) => state.bus);
  private readonly connection = new Reads(this, (state) => state.connection);
  private readonly hasHands = new Reads(this, hasHands);

  override render() {
    const progress = progressOf({ bus: this.bus.value, connection: this.connection.value });
    return html`<section>
      <h1>${text.wait.title}</h1>
      <ol role="list" aria-live="polite">
        ${progress.map((each) => this.renderStep(each))}
      </ol>
      <p class="trial">${this.hasHands.value ? text.wait.hands : text.wait.trial}</p>
    </section>`;
  }

  private renderStep({ step, state }: Progress) {
    const signs = { done: 'good', unsure: 'none', now: 'busy', later: 'none' } as const;
    const lines = {
      done: text.wait.done,
      unsure: text.wait.adapterUnknown,
      now: this.advice(step),
      later: text.wait.later,
    };
    return html`<li class=${state}>
      <svg viewBox="-7 -7 14 14" aria-hidden="true">${drawSign(signs[state])}</svg>
      <h2>${text.wait.steps[step]}</h2>
      <p>${lines[state]}</p>
    </li>`;
  }

  private advice(step: Step): string {
    const bus = this.bus.value;
    const port = bus?.daemon.waiting_for?.toUpperCase();
    const advices: Record<Step, string> = {
      hub: this.connection.value === 'lost' ? text.wait.hubLost : text.loading,
      daemon: port ? text.wait.daemonWaiting(port) : text.wait.daemonAbsent,
      adapter: text.wait.adapterDown,
      cards: text.wait.cardsNone,
    };
    return advices[step];
  }
}

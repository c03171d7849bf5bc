// The daemon's console: what was said, and a line to say more, with history and completion.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import {
  type Command,
  completed,
  completions,
  linesBefore,
  type Said,
} from '../../state/console.js';
import { want } from '../../state/Intent.js';
import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { viewStyle } from '../viewStyle.js';
import { consoleStyle } from './consoleStyle.js';

const mostCandidates = 6;

@customElement('qelm-console')
export class Console extends LitElement {
  static override styles = [base, viewStyle, consoleStyle];

  private readonly log = new Reads(this, (known) => known.console);
  private readonly isOpen = new Reads(this, (known) => known.connection === 'open');
  @state() private typed = '';
  private back = -1; // how many lines before; -1: the one that is being typed
  private draft = ''; // which comes back behind the lines from before
  private wasOpen = false;
  private isAtEnd = true;

  override willUpdate(): void {
    if (this.isOpen.value && !this.wasOpen) want(this, { do: 'console-help' });
    this.wasOpen = this.isOpen.value;
    if (!this.hasUpdated) return;
    const paper = this.renderRoot.querySelector('.paper');
    if (paper) this.isAtEnd = paper.scrollHeight - paper.scrollTop - paper.clientHeight < 8;
  }

  override firstUpdated(): void {
    this.field.focus({ preventScroll: true });
  }

  override updated(): void {
    const paper = this.renderRoot.querySelector('.paper');
    if (paper && this.isAtEnd) paper.scrollTop = paper.scrollHeight;
  }

  override render() {
    const { said } = this.log.value;
    return html`<div class="head">
        <h1>${text.console.title}</h1>
        <p class="note">${text.console.about}</p>
      </div>
      <div class="plate sheet">
        <div class="paper" role="log" aria-label=${text.console.said} tabindex="0">
          ${said.length === 0 ? html`<p class="none">${text.console.none}</p>` : nothing}
          ${repeat(
            said,
            ({ id }) => id,
            (each) => this.renderSaid(each),
          )}
        </div>
        ${this.renderCandidates()}
        <form @submit=${this.send}>
          <span class="prompt" aria-hidden="true">&gt;</span>
          <input
            class="field"
            aria-label=${text.console.line}
            aria-description=${text.console.keys}
            maxlength="200"
            autocomplete="off"
            autocapitalize="characters"
            spellcheck="false"
            .value=${this.typed}
            @input=${this.onInput}
            @keydown=${this.onKey}
          />
          <button class="key">${text.console.send}</button>
        </form>
      </div>
      <p class="note keys">${text.console.keys}</p>`;
  }

  private renderSaid({ line, answer, problem }: Said) {
    const isSilent = answer?.length === 0 && problem === null;
    return html`<div class="said">
      <p class="line">${line}</p>
      ${answer === null ? html`<p class="quiet">${text.console.waits}</p>` : nothing}
      ${isSilent ? html`<p class="quiet">${text.console.silence}</p>` : nothing}
      ${answer && answer.length > 0 ? html`<pre>${answer.join('\n')}</pre>` : nothing}
      ${problem === null ? nothing : html`<p class="problem">${problem}</p>`}
    </div>`;
  }

  private get candidates(): Command[] {
    return completions(this.log.value.commands ?? [], this.typed);
  }

  private renderCandidates() {
    const candidates = this.candidates.slice(0, mostCandidates);
    if (candidates.length === 0) return nothing;
    return html`<ul class="candidates" aria-label=${text.console.candidates}>
      ${candidates.map(
        (command) =>
          html`<li>
            <button
              @click=${() => {
                this.type(command.stem);
                this.field.focus();
              }}
            >
              <code>${command.form}</code><span>${command.what}</span>
            </button>
          </li>`,
      )}
    </ul>`;
  }

  private get field(): HTMLInputElement {
    return this.renderRoot.querySelector('input') as HTMLInputElement;
  }

  private type(line: string): void {
    this.typed = line;
    this.field.value = line;
    this.field.setSelectionRange(line.length, line.length);
  }

  private onInput(): void {
    this.typed = this.field.value;
    this.back = -1;
  }

  private onKey(event: KeyboardEvent): void {
    if (event.key === 'ArrowUp') this.leaf(event, 1);
    if (event.key === 'ArrowDown') this.leaf(event, -1);
    if (event.key === 'Escape') this.type('');
    if (event.key === 'Tab' && !event.shiftKey) this.complete(event);
  }

  private leaf(event: Event, by: number): void {
    event.preventDefault();
    const lines = linesBefore(this.log.value);
    if (this.back === -1) this.draft = this.typed;
    this.back = Math.min(lines.length - 1, Math.max(-1, this.back + by));
    this.type(lines[this.back] ?? this.draft);
  }

  // A Tab that completes nothing goes on as every Tab does.
  private complete(event: Event): void {
    const line = completed(this.candidates, this.typed);
    if (line === this.typed) return;
    event.preventDefault();
    this.type(line);
  }

  private send(event: Event): void {
    event.preventDefault();
    const line = this.typed.trim();
    if (line === '') return;
    this.isAtEnd = true;
    this.back = -1;
    want(this, { do: 'console-run', line });
    this.type('');
  }
}

// The journal: what happened, newest first, as it happens.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import type { JournalEntry } from '../../api/Past.js';
import { want } from '../../state/Intent.js';
import { filtered, hasOlder, type JournalLog, kindsIn, mostEntries } from '../../state/journal.js';
import { Reads, store } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { viewStyle } from '../viewStyle.js';
import { journalStyle } from './journalStyle.js';
import { saidOf } from './said.js';

const readEvery = 2000; // ms

@customElement('qelm-journal')
export class JournalView extends LitElement {
  static override styles = [base, viewStyle, journalStyle];

  private readonly log = new Reads(this, (known) => known.journal);
  private readonly isOpen = new Reads(this, (known) => known.connection === 'open');
  @state() private kind = '';
  @state() private words = '';
  private timer: ReturnType<typeof setInterval> | undefined;
  private wasOpen = false;

  override connectedCallback(): void {
    super.connectedCallback();
    this.timer = setInterval(this.read, readEvery);
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    clearInterval(this.timer);
  }

  override willUpdate(): void {
    if (this.isOpen.value && !this.wasOpen) this.read();
    this.wasOpen = this.isOpen.value;
  }

  override render() {
    const log = this.log.value;
    const said = log.entries.map((entry) => ({ ...entry, text: saidOf(entry, store.state.cards) }));
    const entries = filtered(said, { kind: this.kind, words: this.words });
    return html`<div class="head">
        <h1>${text.journal.title}</h1>
        <label class="row">
          ${text.journal.kind}
          <select
            class="field"
            @change=${(event: Event) => {
              this.kind = (event.target as HTMLSelectElement).value;
            }}
          >
            <option value="">${text.journal.all}</option>
            ${kindsIn(log).map((kind) => html`<option value=${kind}>${nameOf(kind)}</option>`)}
          </select>
        </label>
        <label class="row search">
          ${text.journal.words}
          <input
            class="field"
            type="search"
            maxlength="80"
            @input=${(event: Event) => {
              this.words = (event.target as HTMLInputElement).value;
            }}
          />
        </label>
        <span class="count" role="status"
          >${text.journal.shown(entries.length, log.entries.length)}</span
        >
      </div>
      ${log.lost > 0 ? html`<p class="lost">${text.journal.lost(log.lost)}</p>` : nothing}
      <div class="plate">${this.renderEntries(entries)}</div>
      ${this.renderFoot(log)}`;
  }

  private renderEntries(entries: readonly JournalEntry[]) {
    const { isRead, entries: all } = this.log.value;
    if (entries.length === 0) {
      const why = all.length > 0 ? text.journal.nothing : text.journal.empty;
      return html`<p class="none note">${isRead ? why : text.journal.reading}</p>`;
    }
    let day = '';
    return html`<ol aria-label=${text.journal.entries}>
      ${repeat(
        entries,
        ({ seq }) => seq,
        (entry) => {
          const own = dayOf(entry.time);
          const isNew = own !== day;
          day = own;
          return html`<li>
            ${isNew ? html`<h2>${own}</h2>` : nothing}
            <div class="entry">
              <time datetime=${entry.time}
                >${new Date(entry.time).toLocaleTimeString(text.locale)}</time
              >
              <span class="kind">${nameOf(entry.kind)}</span>
              <span class="what">${entry.text}</span>
              <span class="by">${entry.by ?? ''}</span>
            </div>
          </li>`;
        },
      )}
    </ol>`;
  }

  private renderFoot(log: JournalLog) {
    if (!log.isRead && log.entries.length === 0) return nothing;
    const isAtEnd = (log.entries[0]?.seq ?? 1) <= 1;
    const isFull = log.entries.length >= mostEntries && !isAtEnd;
    return html`<div class="foot">
      ${hasOlder(log) && !isFull
        ? html`<button
            class="key"
            @click=${() => {
              want(this, { do: 'journal-older' });
            }}
          >
            ${text.journal.older}
          </button>`
        : nothing}
      <p class="note">
        ${isAtEnd && log.entries.length > 0 ? text.journal.end : nothing}
        ${isFull ? text.journal.limit(mostEntries) : nothing}
        ${log.gone > 0 ? text.journal.gone(log.gone) : nothing}
      </p>
    </div>`;
  }

  private readonly read = (): void => {
    if (this.isOpen.value && !document.hidden) want(this, { do: 'journal-read' });
  };
}

function nameOf(kind: string): string {
  return text.journal.kinds[kind] ?? kind;
}

function dayOf(time: string): string {
  const form = { weekday: 'long', day: 'numeric', month: 'long', year: 'numeric' } as const;
  return new Date(time).toLocaleDateString(text.locale, form);
}

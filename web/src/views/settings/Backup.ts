// What people have settled, as a file.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { want } from '../../state/Intent.js';
import { Reads, store } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatDay, formatTime } from '../../widgets/format.js';
import { save } from '../save.js';
import { viewStyle } from '../viewStyle.js';
import { sectionStyle } from './settingsStyle.js';

interface Chosen {
  name: string;
  backup: object | null; // null: the file is none
}

@customElement('qelm-set-backup')
export class Backup extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  private readonly backup = new Reads(this, (known) => known.settings.backup);
  private readonly restored = new Reads(this, (known) => known.settings.restored);
  private saved = store.state.settings.backup;
  @state() private chosen: Chosen | null = null;

  override updated(): void {
    const backup = this.backup.value;
    if (backup === this.saved || !backup) return;
    this.saved = backup;
    const day = formatDay(new Date());
    const name = `${store.state.bus?.name ?? text.page}-${day}.json`;
    save(name, 'application/json', `${JSON.stringify(backup, null, 2)}\n`);
  }

  override render() {
    const { keep } = text.settings;
    const restored = this.restored.value;
    return html`<p class="note">${keep.about}</p>
      <div class="form">
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'backup-read' });
          }}
        >
          ${keep.save}
        </button>
      </div>
      <hr />
      <h3>${keep.choose}</h3>
      <input
        type="file"
        accept=".json,application/json"
        aria-label=${keep.file}
        @change=${this.choose}
      />
      ${this.renderChosen()}
      <p class="note" role="status">
        ${restored === null ? nothing : keep.done(formatTime(restored))}
      </p>`;
  }

  private renderChosen() {
    const { keep } = text.settings;
    const { chosen } = this;
    if (!chosen) return nothing;
    const { name, backup } = chosen;
    if (!backup) return html`<p class="lost" role="alert">${keep.noJson}</p>`;
    return html`<div class="secret">
      <p>${keep.sure(name)}</p>
      <div class="tools">
        <button
          class="key"
          @click=${() => {
            want(this, { do: 'backup-put', backup });
            this.forget();
          }}
        >
          ${keep.put}
        </button>
        <button class="key" @click=${this.forget}>${keep.cancel}</button>
      </div>
    </div>`;
  }

  private forget(): void {
    this.chosen = null;
    const field = this.renderRoot.querySelector('input');
    if (field) field.value = '';
  }

  private async choose(event: Event): Promise<void> {
    const file = (event.target as HTMLInputElement).files?.[0];
    this.chosen = file ? { name: file.name, backup: backupIn(await file.text()) } : null;
  }
}

function backupIn(content: string): object | null {
  try {
    const read: unknown = JSON.parse(content);
    return typeof read === 'object' && read !== null && 'names' in read ? read : null;
  } catch {
    return null;
  }
}

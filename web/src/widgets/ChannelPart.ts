// What all drawn channels have in common: the channel, and what the person may do with it.
import { html, LitElement, nothing, type TemplateResult } from 'lit';
import { property } from 'lit/decorators.js';

import type { Channel, Value } from '../api/Shapes.js';
import { Asked } from '../state/Asked.js';
import { want } from '../state/Intent.js';
import { type Certainty, certainty, numberOf } from '../state/select.js';
import { nameOf, numberedName } from './format.js';
import { text } from '../text/text.js';
import type { RenamedEvent } from './Name.js';

export abstract class ChannelPart extends LitElement {
  @property({ attribute: false }) channel!: Channel;
  @property({ type: Boolean }) usable = false; // the person may move it
  @property({ type: Boolean }) renamable = false;
  protected readonly asked = new Asked<Value>();

  protected get certainty(): Certainty {
    return certainty(this.channel);
  }

  // What a screen reader says: the name, and how sure the value is.
  protected get label(): string {
    const doubt = text.certainty[this.certainty];
    return doubt ? `${nameOf(this.channel)}, ${doubt}` : nameOf(this.channel);
  }

  protected get number(): string {
    return String(numberOf(this.channel)).padStart(2, '0');
  }

  protected renderName(): TemplateResult {
    return html`<qelm-name
      .name=${this.channel.name}
      .fallback=${numberedName(this.channel)}
      .editable=${this.renamable}
      @renamed=${(event: RenamedEvent) => {
        const { name, refused } = event;
        want(this, { do: 'rename-channel', id: this.channel.id, name }, refused);
      }}
    ></qelm-name>`;
  }

  // The mark of a value that is not simply known; the label says it in words.
  protected renderDoubt(): TemplateResult | typeof nothing {
    const marks = { known: '', assumed: '\u2248', pending: '\u2026', unknown: '' };
    const mark = marks[this.certainty];
    return mark
      ? html`<span class="doubt" aria-hidden="true" title=${text.certainty[this.certainty]}
          >${mark}</span
        >`
      : nothing;
  }

  // What the channel is, or will be as soon as the hub has done what was asked last.
  protected get wanted(): Value {
    return this.asked.or(this.channel.value);
  }

  protected set(value: boolean | number): void {
    this.asked.note(value);
    want(this, { do: 'set', id: this.channel.id, value });
  }
}

// A line that is heard: a contact and its lamp. A hand at a virtual bus closes and opens it.
import { customElement } from 'lit/decorators.js';

import { contactStyle, drawContact } from '../cards/contact.js';
import { lampStyle } from '../cards/lamp.js';
import { contactLine } from '../state/hands.js';
import { want } from '../state/Intent.js';
import { base } from '../theme/base.js';
import { LinePart } from './LinePart.js';
import { lineStyle } from './lineStyle.js';

@customElement('qelm-contact')
export class ContactLine extends LinePart {
  static override styles = [base, lineStyle, lampStyle, contactStyle];

  protected override readonly draw = drawContact;

  protected override flip(): void {
    const { raw, value } = this.channel;
    const isClosed = (raw === 1) === (this.wanted === value);
    want(this, { do: 'hand', line: contactLine(this.channel, isClosed) });
    this.asked.note(this.wanted !== true);
  }
}

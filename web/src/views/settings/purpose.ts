// What a line or a level is for, as Home Assistant shows it.
import { html, nothing, type TemplateResult } from 'lit';

import type { ChannelSetup, OutputForm } from '../../api/Settled.js';
import type { Channel } from '../../api/Shapes.js';
import { text } from '../../text/text.js';
import { nameOf } from '../../widgets/format.js';

const { setup: words } = text.settings;
const forms: readonly OutputForm[] = ['switch', 'light', 'fan'];
const longestClass = 32;

// The head of its column; none: the channels of this type have no such setting.
export function purposeHead(type: Channel['type'] | undefined): string | null {
  if (type === 'switch') return words.as;
  return type === 'contact' || type === 'level' ? words.deviceClass : null;
}

export function renderPurpose(
  channel: Channel,
  own: ChannelSetup,
  usable: boolean,
  keep: (setup: ChannelSetup) => void,
): TemplateResult | typeof nothing {
  const head = purposeHead(channel.type);
  if (head === null) return nothing;
  const label = words.of(head, nameOf(channel));
  if (channel.type !== 'switch')
    return html`<input
      class="field"
      aria-label=${label}
      maxlength=${longestClass}
      ?disabled=${!usable}
      .value=${own.device_class ?? ''}
      @change=${(event: Event) => {
        keep({ device_class: (event.target as HTMLInputElement).value.trim() || null });
      }}
    />`;
  return html`<select
    class="field"
    aria-label=${label}
    ?disabled=${!usable}
    @change=${(event: Event) => {
      const form = (event.target as HTMLSelectElement).value as OutputForm;
      keep({ as: form === 'switch' ? null : form });
    }}
  >
    ${forms.map(
      (form) =>
        html`<option value=${form} .selected=${form === (own.as ?? 'switch')}>
          ${words.forms[form]}
        </option>`,
    )}
  </select>`;
}

// What a line or a level is for, as Home Assistant shows it.
import { nothing, type TemplateResult } from 'lit';

import type { ChannelSetup, OutputForm } from '../../api/Settled.js';
import type { Channel } from '../../api/Shapes.js';
import { text } from '../../text/text.js';
import { nameOf } from '../../widgets/format.js';
import { renderChoice, renderField } from './controls.js';
import type { Tries } from './Tries.js';

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
  tries: Tries,
): TemplateResult | typeof nothing {
  const head = purposeHead(channel.type);
  if (head === null) return nothing;
  const { id } = channel;
  const field = `purpose-${id}`;
  const label = words.of(head, nameOf(channel));
  const keep = (setup: ChannelSetup) => {
    tries.want(field, { do: 'setup-channel', id, setup });
  };
  if (channel.type !== 'switch')
    return renderField({
      field,
      tries,
      label,
      usable,
      value: own.device_class ?? '',
      usual: '',
      longest: longestClass,
      keep: (content) => {
        keep({ device_class: content || null });
      },
    });
  return renderChoice({
    field,
    tries,
    label,
    usable,
    options: forms.map((form) => [form, words.forms[form]] as const),
    chosen: own.as ?? 'switch',
    keep: (form) => {
      keep({ as: form === 'switch' ? null : form });
    },
  });
}

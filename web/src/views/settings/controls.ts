// What is set is a field, a tick or a choice; whoever may only look reads it as text.
import { html, nothing, type TemplateResult } from 'lit';

import { text } from '../../text/text.js';

interface Control {
  label: string; // of what; '': it stands in a label
  usable: boolean; // the person may set it
  isBusy?: boolean; // not now
}

export interface Field extends Control {
  value: string; // empty: as usual
  usual: string;
  longest: number;
  keep(content: string): void;
}

interface Tick extends Control {
  isOn: boolean | null; // null: not known
  keep(isOn: boolean): void;
}

interface Choice<Value extends string> extends Control {
  options: readonly (readonly [value: Value, title: string])[];
  chosen: Value | null; // null: not known
  keep(value: Value): void;
}

const { yes, no, unknown } = text.settings.kept;

// An empty field is as usual, and shows what that is.
export function renderField(field: Field): TemplateResult {
  const { label, usable, isBusy = false, value, usual, longest, keep } = field;
  if (!usable) return html`<span class="set">${value || usual || text.unknownValue}</span>`;
  return html`<input
    class="field"
    aria-label=${label || nothing}
    maxlength=${longest}
    placeholder=${usual}
    ?disabled=${isBusy}
    .value=${value}
    @change=${(event: Event) => {
      keep((event.target as HTMLInputElement).value.trim());
    }}
  />`;
}

export function renderTick({ label, usable, isBusy = false, isOn, keep }: Tick): TemplateResult {
  const word = isOn === null ? unknown : isOn ? yes : no;
  if (!usable) return html`<span class="set row">${label}: ${word}</span>`;
  return html`<label class="row">
    <input
      type="checkbox"
      ?disabled=${isBusy || isOn === null}
      .checked=${isOn === true}
      @change=${(event: Event) => {
        keep((event.target as HTMLInputElement).checked);
      }}
    />
    ${label}
  </label>`;
}

export function renderChoice<Value extends string>(choice: Choice<Value>): TemplateResult {
  const { label, usable, isBusy = false, options, chosen, keep } = choice;
  if (!usable) {
    const title = options.find(([value]) => value === chosen)?.[1];
    return html`<span class="set">${title ?? unknown}</span>`;
  }
  return html`<select
    class="field"
    aria-label=${label || nothing}
    ?disabled=${isBusy}
    @change=${(event: Event) => {
      keep((event.target as HTMLSelectElement).value as Value);
    }}
  >
    ${chosen === null ? html`<option selected disabled>${unknown}</option>` : nothing}
    ${options.map(
      ([value, title]) =>
        html`<option value=${value} .selected=${value === chosen}>${title}</option>`,
    )}
  </select>`;
}

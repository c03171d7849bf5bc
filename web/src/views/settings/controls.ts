// What is set is a field, a tick or a choice; whoever may only look reads it as text. What the hub has
// refused is said there: a tick and a choice show what holds, a field keeps what was typed.
import { html, nothing, type TemplateResult } from 'lit';
import { live } from 'lit/directives/live.js';

import { text } from '../../text/text.js';
import type { Tries } from './Tries.js';

interface Control {
  field: string; // its own name among those of its section, without a blank
  tries: Tries;
  label: string; // of what
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

// An empty field is as usual, and shows what that is. Escape brings back what holds.
export function renderField(control: Field): TemplateResult {
  const { field, tries, usable, value, usual, longest, keep } = control;
  const holds = value || usual || text.unknownValue;
  if (!usable) return html`<span class="set">${holds}</span>`;
  const why = tries.why(field);
  return html`<input
      class="field"
      aria-label=${control.label}
      aria-invalid=${why === null ? nothing : 'true'}
      aria-describedby=${why === null ? nothing : field}
      maxlength=${longest}
      placeholder=${usual}
      ?disabled=${control.isBusy ?? false}
      .value=${value}
      @change=${(event: Event) => {
        keep((event.target as HTMLInputElement).value.trim());
      }}
      @keydown=${(event: KeyboardEvent) => {
        if (event.key !== 'Escape') return;
        (event.target as HTMLInputElement).value = value;
        tries.forget(field);
      }}
    />${renderWhy(field, why === null ? null : text.refused(why, holds))}`;
}

export function renderTick(control: Tick): TemplateResult {
  const { field, tries, label, usable, isBusy = false, isOn, keep } = control;
  const word = isOn === null ? unknown : isOn ? yes : no;
  if (!usable) return html`<span class="set row">${label}: ${word}</span>`;
  return html`<label class="row">
      <input
        type="checkbox"
        ?disabled=${isBusy || isOn === null}
        .checked=${live(isOn === true)}
        @change=${(event: Event) => {
          keep((event.target as HTMLInputElement).checked);
        }}
      />
      ${label}
    </label>
    ${renderStill(control, tries.why(field), word)}`;
}

export function renderChoice<Value extends string>(choice: Choice<Value>): TemplateResult {
  const { field, tries, label, usable, isBusy = false, options, chosen, keep } = choice;
  const title = options.find(([value]) => value === chosen)?.[1] ?? unknown;
  if (!usable) return html`<span class="set">${title}</span>`;
  return html`<select
      class="field"
      aria-label=${label}
      ?disabled=${isBusy}
      @change=${(event: Event) => {
        keep((event.target as HTMLSelectElement).value as Value);
      }}
    >
      ${chosen === null ? html`<option selected disabled>${unknown}</option>` : nothing}
      ${options.map(
        ([value, each]) =>
          html`<option value=${value} .selected=${live(value === chosen)}>${each}</option>`,
      )}
    </select>
    ${renderStill(choice, tries.why(field), title)}`;
}

function renderStill({ field }: Control, why: string | null, holds: string) {
  return renderWhy(field, why === null ? null : text.settings.still(why, holds));
}

function renderWhy(field: string, said: string | null) {
  return said === null
    ? nothing
    : html`<span class="refused" id=${field} role="alert">${said}</span>`;
}

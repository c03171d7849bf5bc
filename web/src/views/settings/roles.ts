// The choice of a role.
import { html, type TemplateResult } from 'lit';

import type { Role } from '../../api/Shapes.js';
import { text } from '../../text/text.js';

const all: readonly Role[] = ['view', 'use', 'admin'];

export function roles(chosen: Role): TemplateResult[] {
  return all.map(
    (role) => html`<option value=${role} .selected=${role === chosen}>${text.roles[role]}</option>`,
  );
}

export function roleField(label: string, chosen: Role): TemplateResult {
  return html`<label class="labelled">
    ${label}
    <select class="field" name="role">
      ${roles(chosen)}
    </select>
  </label>`;
}

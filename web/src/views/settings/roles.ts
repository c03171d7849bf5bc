// The choice of a role.
import { html, type TemplateResult } from 'lit';

import type { Role } from '../../api/Shapes.js';
import { text } from '../../text/text.js';

const all: readonly Role[] = ['view', 'use', 'admin'];

export const roles = all.map((role) => [role, text.roles[role]] as const);

export function roleField(label: string, chosen: Role): TemplateResult {
  return html`<label class="labelled">
    ${label}
    <select class="field" name="role">
      ${roles.map(
        ([role, title]) =>
          html`<option value=${role} .selected=${role === chosen}>${title}</option>`,
      )}
    </select>
  </label>`;
}

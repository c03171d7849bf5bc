// The views, a row each: its place in the address, who sees it, and how it is drawn. A view that
// is not the first brings its own file, so that the first look waits for none of it.
import { html, type TemplateResult } from 'lit';

import type { Role } from '../api/Shapes.js';
import { text } from '../text/text.js';

export interface View {
  name: string; // "#bench"
  title: string;
  role: Role;
  icon: string; // path in a square of 24
  load: () => Promise<unknown>; // its component
  render: () => TemplateResult;
}

const bench: View = {
  name: 'bench',
  title: text.nav.bench,
  role: 'view',
  icon: 'M3 5h18M3 19h18M6.5 7v10M12 7v10M17.5 7v10',
  load: () => Promise.resolve(),
  render: () => html`<qelm-bench></qelm-bench>`,
};

export const views: readonly View[] = [bench];

export function viewAt(hash: string): View {
  return views.find(({ name }) => `#${name}` === hash) ?? bench;
}

// The views, a row each: its place in the address, who sees it, and how it is drawn. A view that
// is not the first brings its own file, so that the first look waits for none of it.
import { html, type TemplateResult } from 'lit';

import type { Role } from '../api/Shapes.js';
import { may } from '../state/select.js';
import type { State } from '../state/State.js';
import { text } from '../text/text.js';

export interface View {
  name: string; // "#bench"
  title: string;
  role: Role;
  isThere?: (state: State) => boolean; // there is something to see; always, where it is missing
  icon: string; // path in a square of 24
  load: () => Promise<unknown>; // its component
  render: (rest: string) => TemplateResult; // what follows in the address: "#boards/shed"
}

const bench: View = {
  name: 'bench',
  title: text.nav.bench,
  role: 'view',
  icon: 'M3 5h18M3 19h18M6.5 7v10M12 7v10M17.5 7v10',
  load: () => Promise.resolve(),
  render: () => html`<qelm-bench></qelm-bench>`,
};

const boards: View = {
  name: 'boards',
  title: text.nav.boards,
  role: 'view',
  isThere: (state) => Object.keys(state.boards).length > 0,
  icon: 'M4 4h7v7H4zM13 4h7v7h-7zM4 13h7v7H4zM13 13h7v7h-7z',
  load: () => import('./boards/Boards.js'),
  render: (board) => html`<qelm-boards .board=${board}></qelm-boards>`,
};

const plots: View = {
  name: 'plots',
  title: text.nav.plots,
  role: 'view',
  icon: 'M4 4v16h16M7 15l3-5 4 3 5-7',
  load: () => import('./plots/Plots.js'),
  render: () => html`<qelm-plots></qelm-plots>`,
};

const console: View = {
  name: 'console',
  title: text.nav.console,
  role: 'admin',
  icon: 'M4 5h16v14H4zM7 9l3 3-3 3M12 15h5',
  load: () => import('./console/Console.js'),
  render: () => html`<qelm-console></qelm-console>`,
};

const journal: View = {
  name: 'journal',
  title: text.nav.journal,
  role: 'view',
  icon: 'M4 6h2M4 12h2M4 18h2M9 6h11M9 12h11M9 18h11',
  load: () => import('./journal/Journal.js'),
  render: () => html`<qelm-journal></qelm-journal>`,
};

const settings: View = {
  name: 'settings',
  title: text.nav.settings,
  role: 'view',
  icon: 'M4 7h8M16 7h4M14 4.5v5M4 17h4M12 17h8M10 14.5v5',
  load: () => import('./settings/Settings.js'),
  render: () => html`<qelm-settings></qelm-settings>`,
};

export const views: readonly View[] = [bench, boards, plots, console, journal, settings];

// The bench, where there is no such view, or not for this role.
export function viewAt(hash: string, offered: readonly View[] = views): View {
  const [first = ''] = hash.split('/', 1);
  return offered.find(({ name }) => `#${name}` === first) ?? bench;
}

export function restOf(hash: string): string {
  const rest = hash.split('/').slice(1).join('/');
  try {
    return decodeURIComponent(rest);
  } catch {
    return rest; // typed by hand
  }
}

export function offeredTo(state: State): View[] {
  return views.filter(({ role, isThere }) => may(state, role) && (isThere?.(state) ?? true));
}

// A card as it is arranged: a grip, its name, a step each way, the group that it is in.
import { html, nothing } from 'lit';

import type { Card } from '../../api/Shapes.js';
import { text } from '../../text/text.js';

export interface Tile {
  address: string;
  card: Card | undefined; // it is arranged, and not there
  isTaken: boolean; // a pointer has it
  sections: readonly string[]; // their titles
  section: number; // that it is in
  step(by: 1 | -1, from: string): void; // from: which part was pressed
  put(section: number): void;
}

const { arranging } = text;
const ways: Record<string, 1 | -1> = { ArrowLeft: -1, ArrowUp: -1, ArrowRight: 1, ArrowDown: 1 };

export function renderTile(tile: Tile) {
  const { address, card } = tile;
  const kind = card ? text.kinds[card.kind] : text.states.absent;
  const name = `${address} ${card?.name ?? kind}`;
  return html`<li class=${tile.isTaken ? 'card taken' : 'card'} data-card=${address}>
    <button
      class="grip"
      aria-label=${arranging.move(name)}
      @keydown=${(event: KeyboardEvent) => {
        const way = ways[event.key];
        if (way === undefined) return;
        event.preventDefault();
        tile.step(way, '.grip');
      }}
    >
      <svg viewBox="0 0 16 16" aria-hidden="true"><path d="M5 2v12M11 2v12"></path></svg>
    </button>
    <span class="address" aria-hidden="true">${address}</span>
    <span class="name">
      <span>${card?.name ?? kind}</span>
      ${card?.name ? html`<span class="kind">${kind}</span>` : nothing}
    </span>
    <span class="steps">
      ${renderStep(tile, -1, arranging.earlier(name), 'M10 3L5 8l5 5')}
      ${renderStep(tile, 1, arranging.later(name), 'M6 3l5 5-5 5')}
    </span>
    <select
      class="field"
      aria-label=${arranging.groupOf(name)}
      @change=${(event: Event) => {
        tile.put((event.target as HTMLSelectElement).selectedIndex);
      }}
    >
      ${tile.sections.map(
        (title, place) => html`<option .selected=${place === tile.section}>${title}</option>`,
      )}
    </select>
  </li>`;
}

function renderStep(tile: Tile, by: 1 | -1, label: string, path: string) {
  const way = by === 1 ? 'later' : 'earlier';
  return html`<button
    class="step ${way}"
    aria-label=${label}
    title=${label}
    @click=${() => {
      tile.step(by, `.${way}`);
    }}
  >
    <svg viewBox="0 0 16 16" aria-hidden="true"><path d=${path}></path></svg>
  </button>`;
}

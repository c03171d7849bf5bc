// Rails with their slots, as they wrap: halves of eight on a wide screen, quarters below.
import { html, nothing, type TemplateResult } from 'lit';

import { text } from '../text/text.js';
import type { Rail, Slot } from './arrange.js';

const slotsInHalf = 8;
const slotsInQuarter = 4;

export function renderRails(
  rails: readonly Rail[],
  look: string, // classes: "stale", "fast"
  renderSlot: (slot: Slot) => TemplateResult,
): TemplateResult {
  return html`<div class="rails ${look}">
    ${rails.map(
      ({ title, slots }) =>
        html`${title === null ? nothing : html`<h2 class="group">${title}</h2>`}
        ${pieces(slots, slotsInHalf).map(
          (half) =>
            html`<div class="half">
              ${pieces(half, slotsInQuarter).map(
                (quarter) => html`<div class="quarter">${quarter.map(renderSlot)}</div>`,
              )}
            </div>`,
        )}`,
    )}
  </div>`;
}

export function renderEmptySlot(address: string): TemplateResult {
  return html`<div class="slot empty" role="img" aria-label=${text.empty(address)}>
    <span aria-hidden="true">${address}</span>
  </div>`;
}

function pieces<Item>(items: readonly Item[], size: number): Item[][] {
  return Array.from({ length: Math.ceil(items.length / size) }, (_, at) =>
    items.slice(at * size, (at + 1) * size),
  );
}

// How to read the lamps of the bench.
import { css, html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';

import { drawLamp, lampStyle } from '../cards/lamp.js';
import type { Certainty } from '../state/select.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

const rows: readonly [boolean, Certainty, string][] = [
  [true, 'known', text.legend.on],
  [false, 'known', text.legend.off],
  [true, 'assumed', text.legend.assumed],
  [true, 'pending', text.legend.pending],
  [false, 'unknown', text.legend.unknown],
];

@customElement('qelm-legend')
export class Legend extends LitElement {
  static override styles = [
    base,
    lampStyle,
    css`
      ul {
        display: flex;
        flex-wrap: wrap;
        gap: 0.25rem 1rem;
        color: var(--faint);
        font-size: 0.75rem;
      }
      li {
        display: flex;
        align-items: center;
        gap: 0.375rem;
      }
      svg {
        width: 1.25rem;
        height: 1.25rem;
        overflow: visible;
      }
    `,
  ];

  override render() {
    return html`<ul aria-label=${text.legend.label}>
      ${rows.map(
        ([isOn, certainty, label]) =>
          html`<li title=${text.certainty[certainty] || nothing}>
            <svg viewBox="-12 -12 24 24" aria-hidden="true">${drawLamp(isOn, certainty)}</svg
            >${label}
          </li>`,
      )}
    </ul>`;
  }
}

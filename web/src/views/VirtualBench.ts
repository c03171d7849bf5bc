// What hands can do to a virtual bus as a whole: its cable, its faults, a new search.
import { css, html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';

import { cableLine, type Fault, faults, isOn } from '../state/hands.js';
import { type Intent, want } from '../state/Intent.js';
import { Reads } from '../state/Store.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';

@customElement('qelm-virtual-bench')
export class VirtualBench extends LitElement {
  static override styles = [
    base,
    css`
      section {
        display: flex;
        flex-wrap: wrap;
        align-items: center;
        gap: 0.5rem 1rem;
        padding: 0.5rem 0.75rem;
        border: var(--hair) dashed var(--edge);
        font-size: 0.8125rem;
      }
      h2 {
        font-size: 0.8125rem;
        font-weight: 600;
      }
      div {
        display: flex;
        flex-wrap: wrap;
        align-items: center;
        gap: 0.25rem;
      }
      .counts {
        margin-left: auto;
        color: var(--faint);
      }
      .key {
        font-size: 0.75rem;
      }
      .key[aria-pressed='true'] {
        border-color: var(--wrong);
        box-shadow: inset 0 -2px var(--wrong);
      }
    `,
  ];

  private readonly virtual = new Reads(this, (state) => state.virtual);

  override render() {
    const bus = this.virtual.value;
    if (!bus) return nothing;
    const { hands } = text;
    const cable = cableLine(bus.cable ? 'pull' : 'plug');
    return html`<section aria-label=${hands.label}>
      <h2>${hands.label}</h2>
      <div>
        <button class="key" @click=${this.wants({ do: 'hand', line: cable })}>
          ${bus.cable ? hands.pullCable : hands.plugCable}
        </button>
        <button class="key" @click=${this.wants({ do: 'discover' })}>${hands.search}</button>
      </div>
      <div role="group" aria-label=${hands.faults}>
        ${faults.map((fault) => this.renderFault(fault, isOn(fault, bus.faults)))}
      </div>
      <span class="counts">${hands.counts(bus.frames, bus.replies, bus.lost, bus.shaped)}</span>
    </section>`;
  }

  private renderFault(fault: Fault, isOn: boolean) {
    const line = isOn ? fault.off : fault.on;
    return html`<button class="key" aria-pressed=${isOn} @click=${this.wants({ do: 'hand', line })}>
      ${text.hands.fault[fault.name]}
    </button>`;
  }

  private wants(intent: Intent) {
    return () => {
      want(this, intent);
    };
  }
}

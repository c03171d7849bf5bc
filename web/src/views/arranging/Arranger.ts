// Arranges the bench for everybody: order, groups, and what is hidden; by mouse, finger or keys. What
// is moved is kept at once, so that others see it as it happens.
import { html, LitElement, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import { want } from '../../state/Intent.js';
import { Reads, store } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import type { RenamedEvent } from '../../widgets/Name.js';
import { viewStyle } from '../viewStyle.js';
import { arrangerStyle } from './arrangerStyle.js';
import { Drag } from './Drag.js';
import {
  arrangementOf,
  mostGroups,
  placed,
  raised,
  renamed,
  type Section,
  sectionsOf,
  spotOf,
  stepped,
  withGroup,
  withoutGroup,
} from './sections.js';
import { renderTile } from './tile.js';

const { arranging } = text;

@customElement('qelm-arranger')
export class Arranger extends LitElement {
  static override styles = [base, viewStyle, arrangerStyle];

  private readonly cards = new Reads(this, (known) => known.cards);
  @state() private taken: string | null = null; // the card that is dragged
  @state() private draft: readonly Section[] | null = null; // where it would be dropped
  @state() private said = '';
  private focused: string | null = null; // what keeps the focus when it has moved: a selector
  private readonly drag = new Drag({
    root: () => this.renderRoot.querySelector('.board') as Element,
    taken: (address) => {
      this.taken = address;
    },
    over: (spot) => {
      if (this.taken !== null) this.draft = placed(this.sections, this.taken, spot);
    },
    dropped: (isMeant) => {
      if (isMeant && this.draft && this.taken !== null) this.keep(this.draft, this.taken);
      this.taken = this.draft = null;
    },
  });

  constructor() {
    super();
    new Reads(this, (known) => known.arrangement);
  }

  override render() {
    const sections = this.draft ?? this.sections;
    const titles = sections.map(titleOf);
    const groups = sections.filter(({ kind }) => kind === 'group').length;
    return html`<div class="head">
        <h1>${arranging.title}</h1>
        <p class="note">${arranging.how}</p>
        <div class="tools">
          <button class="key" ?disabled=${groups >= mostGroups} @click=${this.addGroup}>
            ${arranging.addGroup}
          </button>
          <button class="key" @click=${this.reset}>${arranging.reset}</button>
          <button class="key" @click=${() => this.dispatchEvent(new Event('done'))}>
            ${arranging.done}
          </button>
        </div>
      </div>
      <div
        class="board"
        @pointerdown=${this.drag.onDown}
        @pointermove=${this.drag.onMove}
        @pointerup=${this.drag.onUp}
        @pointercancel=${this.drag.onCancel}
      >
        ${sections.map((section, at) => this.renderSection(section, at, titles))}
      </div>
      <p class="unseen" role="status">${this.said}</p>`;
  }

  override updated(): void {
    if (this.focused === null) return;
    this.renderRoot.querySelector<HTMLElement>(this.focused)?.focus();
    this.focused = null;
  }

  private get sections(): Section[] {
    const { cards, arrangement } = store.state;
    return sectionsOf(Object.keys(cards), arrangement);
  }

  private renderSection(section: Section, at: number, titles: readonly string[]) {
    const title = titleOf(section);
    return html`<section class="plate" aria-label=${title} data-section>
      <div class="title">
        <h2>${section.kind === 'group' ? this.renderGroupName(section, at) : title}</h2>
        ${section.kind === 'group' ? this.renderGroupTools(title, at) : nothing}
      </div>
      <ul class="cards" role="list">
        ${repeat(
          section.cards,
          (address) => address,
          (address) =>
            renderTile({
              address,
              card: this.cards.value[address],
              isTaken: address === this.taken,
              sections: titles,
              section: at,
              step: (by, from) => {
                this.keep(stepped(this.sections, address, by), address, from);
              },
              put: (place) => {
                this.put(address, place);
              },
            }),
        )}
      </ul>
    </section>`;
  }

  private renderGroupName({ name }: Section, at: number) {
    return html`<qelm-name
      .name=${name}
      .editable=${true}
      @renamed=${({ name: given, refused }: RenamedEvent) => {
        if (given === null) return;
        const arrangement = arrangementOf(renamed(this.sections, at, given));
        want(this, { do: 'arrange', arrangement }, refused);
      }}
    ></qelm-name>`;
  }

  private renderGroupTools(title: string, at: number) {
    return html`${at === 0
        ? nothing
        : html`<button
            class="key"
            aria-label=${arranging.raise(title)}
            @click=${() => {
              this.keep(raised(this.sections, at));
            }}
          >
            ${arranging.up}
          </button>`}
      <button
        class="key"
        aria-label=${arranging.dissolve(title)}
        @click=${() => {
          this.keep(withoutGroup(this.sections, at));
        }}
      >
        ${arranging.remove}
      </button>`;
  }

  private put(address: string, section: number): void {
    const place = this.sections[section]?.cards.length ?? 0;
    this.keep(placed(this.sections, address, { section, place }), address, '.field');
  }

  private keep(sections: readonly Section[], address?: string, focused = '.grip'): void {
    want(this, { do: 'arrange', arrangement: arrangementOf(sections) });
    const spot = address === undefined ? null : spotOf(sections, address);
    const section = spot ? sections[spot.section] : undefined;
    if (address === undefined || !spot || !section) return;
    this.focused = `[data-card="${address}"] ${focused}`;
    this.said = arranging.said(address, spot.place + 1, section.cards.length, titleOf(section));
  }

  private addGroup(): void {
    this.keep(withGroup(this.sections, arranging.group));
  }

  private reset(): void {
    want(this, { do: 'arrange', arrangement: { order: [], hidden: [], groups: [] } });
  }
}

function titleOf(section: Section): string {
  const titles = { group: section.name, rest: arranging.rest, hidden: arranging.hidden };
  return titles[section.kind];
}

// The strip: channels in lanes under one time, live or back to a year.
import { html, LitElement } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { repeat } from 'lit/directives/repeat.js';

import type { Channel } from '../../api/Shapes.js';
import { hubTime } from '../../state/clock.js';
import { want } from '../../state/Intent.js';
import { heldCurve, moved, type Plots, type Span, spans, windowOf } from '../../state/plots.js';
import { knownTill } from '../../state/select.js';
import { Reads, store } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatDay, nameOf } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';
import './Chooser.js';
import { isSwitched } from './chart.js';
import { csvOf } from './csv.js';
import { Hand } from './Hand.js';
import './Lane.js';
import type { Lane } from './Lane.js';
import { Pulse } from './Pulse.js';
import { plotsStyle } from './plotsStyle.js';
import { save } from '../save.js';
import { momentText, windowText } from './times.js';

@customElement('qelm-plots')
export class PlotsView extends LitElement {
  static override styles = [base, viewStyle, plotsStyle];

  private readonly plots = new Reads(this, (known) => known.plots);
  private readonly cards = new Reads(this, (known) => known.cards);
  private readonly connection = new Reads(this, (known) => known.connection);
  @state() private at: number | null = null;
  @state() private isChoosing = store.state.plots.channels.length === 0;
  private now = hubTime(store.state);
  private wasOpen = false;
  private readonly pulse = new Pulse(this, () => this.plots.value.span);
  private readonly hand = new Hand({
    area: () => this.renderRoot.querySelector<Lane>('qelm-lane')?.area,
    now: () => this.now,
    window: () => this.window,
    at: () => this.at,
    read: (at) => {
      this.at = at;
    },
    look: (to) => {
      this.look(to);
    },
  });

  override willUpdate(): void {
    this.now = hubTime(store.state);
    const { from } = this.window;
    if (this.at !== null && this.at < from) this.at = from;
    // What was missed while nobody was connected is asked for.
    const isOpen = this.connection.value === 'open';
    if (isOpen && !this.wasOpen) this.look({});
    this.wasOpen = isOpen;
  }

  override render() {
    const { channels } = this.plots.value;
    return html`<div class="head">
        <h1>${text.plots.title}</h1>
        ${this.renderTools()}
      </div>
      <details
        class="plate"
        .open=${this.isChoosing}
        @toggle=${(event: Event) => {
          this.isChoosing = (event.target as HTMLDetailsElement).open;
        }}
      >
        <summary>${text.plots.choose}</summary>
        <qelm-plot-chooser></qelm-plot-chooser>
      </details>
      ${channels.length === 0 ? this.renderNone() : this.renderStrip(channels)}`;
  }

  override updated(): void {
    const hair = this.renderRoot.querySelector<HTMLElement>('.hair');
    const area = this.renderRoot.querySelector<Lane>('qelm-lane')?.area;
    const strip = this.renderRoot.querySelector('.strip');
    if (!hair || !area || !strip || this.at === null) return;
    const { from, to } = this.window;
    const x = area.left + ((this.at - from) / (to - from)) * area.width;
    hair.style.left = `${x - strip.getBoundingClientRect().left}px`;
    hair.classList.toggle('far', x > area.left + area.width / 2);
  }

  private get window(): Span {
    return windowOf(this.plots.value, this.now);
  }

  private renderTools() {
    const { span, end } = this.plots.value;
    const press = (label: string, path: string, act: () => void) =>
      html`<button class="key icon" aria-label=${label} title=${label} @click=${act}>
        <svg viewBox="0 0 16 16" aria-hidden="true"><path d=${path}></path></svg>
      </button>`;
    const move = (share: number) => () => {
      this.look(moved(this.window, share * span, this.now));
    };
    const zoom = (factor: number) => () => {
      this.hand.zoom(factor, this.at ?? (end === null ? this.now : null));
    };
    return html`<div class="spans" role="group" aria-label=${text.plots.span}>
        ${spans.map(
          (each, place) =>
            html`<button
              class="key"
              aria-pressed=${Math.abs(each - span) < 1}
              @click=${() => {
                this.look({ span: each });
              }}
            >
              ${text.plots.spans[place]}
            </button>`,
        )}
      </div>
      <div class="tools">
        ${press(text.plots.earlier, 'M10 3L5 8l5 5', move(-0.5))}
        ${press(text.plots.later, 'M6 3l5 5-5 5', move(0.5))}
        ${press(text.plots.wider, 'M3 8h10', zoom(2))}
        ${press(text.plots.closer, 'M3 8h10M8 3v10', zoom(0.5))}
        <button
          class="key"
          aria-pressed=${end === null}
          @click=${() => {
            this.look({ end: end === null ? this.now : null });
          }}
        >
          ${text.plots.live}
        </button>
        <button
          class="key push"
          aria-label=${text.plots.saveCsv}
          title=${text.plots.saveCsv}
          ?disabled=${this.shown.length === 0}
          @click=${this.save}
        >
          <svg viewBox="0 0 16 16" aria-hidden="true">
            <path d="M8 2v8M5 7l3 3 3-3M2 13h12"></path>
          </svg>
          <span class="word">${text.plots.csv}</span>
        </button>
      </div>`;
  }

  private renderNone() {
    return html`<p class="none note">${text.plots.none} ${text.plots.how}</p>`;
  }

  private renderStrip(channels: readonly string[]) {
    const { hand, at, window, shown } = this;
    return html`<div class="strip plate ${shown.every(isSwitched) ? '' : 'tall'}">
      ${at === null
        ? html`<p class="when">${windowText(window)}</p>`
        : html`<div class="hair" aria-hidden="true"><span>${momentText(at, window)}</span></div>`}
      <div
        class="lanes"
        role="slider"
        tabindex="0"
        aria-label=${text.plots.lanes}
        aria-valuemin=${Math.round(window.from)}
        aria-valuemax=${Math.round(window.to)}
        aria-valuenow=${Math.round(at ?? window.to)}
        aria-valuetext=${this.spoken}
        @pointerdown=${hand.onDown}
        @pointermove=${hand.onMove}
        @pointerup=${hand.onUp}
        @pointercancel=${hand.onUp}
        @pointerleave=${hand.onLeave}
        @wheel=${hand.onWheel}
        @keydown=${hand.onKey}
      ></div>
      ${repeat(
        shown,
        ({ id }) => id,
        (channel, place) =>
          html`<qelm-lane
            .channel=${channel}
            .points=${this.pointsOf(channel)}
            .window=${window}
            .at=${at}
            .theme=${this.pulse.theme}
            ?lowest=${place === shown.length - 1}
            ?switched=${isSwitched(channel)}
            @remove=${() => {
              want(this, { do: 'plot', channels: channels.filter((id) => id !== channel.id) });
            }}
          ></qelm-lane>`,
      )}
    </div>`;
  }

  private get shown(): Channel[] {
    const cards = this.cards.value;
    return this.plots.value.channels.flatMap((id) => {
      const channel = cards[id.charAt(0)]?.channels[Number(id.slice(2))];
      return channel ? [channel] : [];
    });
  }

  private pointsOf(channel: Channel) {
    const curve = this.plots.value.curves[channel.id] ?? [];
    return heldCurve(curve, channel, this.window, Math.min(this.now, knownTill(store.state)));
  }

  private get spoken(): string {
    const values = [...this.renderRoot.querySelectorAll<Lane>('qelm-lane')].map(
      (lane) => lane.said,
    );
    const when = this.at === null ? text.plots.now : momentText(this.at, this.window);
    return [when, ...values].join(', ');
  }

  private look(to: Partial<Plots>): void {
    const { span, end } = { ...this.plots.value, ...to };
    want(this, { do: 'plot-look', span, end });
  }

  private save(): void {
    const columns = this.shown.map((channel) => ({
      id: channel.id,
      name: nameOf(channel),
      unit: channel.unit ?? '',
      points: this.pointsOf(channel),
    }));
    const day = formatDay(new Date(this.now));
    save(
      `${store.state.bus?.name ?? text.page}-${day}.csv`,
      'text/csv',
      csvOf(columns, this.window),
    );
  }
}

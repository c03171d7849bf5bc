// One channel on the strip: its name and value, and its curve. It draws; whoever owns it says which
// window, and which moment is read.
import { html, LitElement, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import uPlot from 'uplot';

import type { Point } from '../../api/Past.js';
import type { Channel } from '../../api/Shapes.js';
import { heldAt, type Span } from '../../state/plots.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatLevel, nameOf } from '../../widgets/format.js';
import { chartOptions, type Inks, isSwitched, tableOf } from './chart.js';
import { laneStyle } from './laneStyle.js';

@customElement('qelm-lane')
export class Lane extends LitElement {
  static override styles = [base, laneStyle];

  @property({ attribute: false }) channel!: Channel;
  @property({ attribute: false }) points: readonly Point[] = []; // held up to now
  @property({ attribute: false }) window: Span = { from: 0, to: 1 };
  @property({ attribute: false }) at: number | null = null; // ms; null: the newest
  @property({ type: Boolean, reflect: true }) lowest = false;
  @property({ attribute: false }) theme = 0; // another number: other colours
  private chart: uPlot | undefined;
  private readonly sizes = new ResizeObserver(() => {
    this.fit();
  });

  // Where the curve is on the screen.
  get area(): DOMRect | undefined {
    return this.chart?.over.getBoundingClientRect();
  }

  // Name and value in words.
  get said(): string {
    return `${nameOf(this.channel)}: ${this.renderRoot.querySelector('.value')?.textContent ?? ''}`;
  }

  override render() {
    const name = nameOf(this.channel);
    return html`<div class="head">
        <span class="name" title=${name}>${name}</span>
        <span class="id">${this.channel.id}</span>
        <span class="value">${this.renderValue()}</span>
        <button
          class="remove"
          aria-label=${text.plots.remove(name)}
          title=${text.plots.remove(name)}
          @click=${() => this.dispatchEvent(new Event('remove'))}
        >
          <svg viewBox="0 0 16 16" aria-hidden="true"><path d="M4 4l8 8M12 4l-8 8"></path></svg>
        </button>
      </div>
      <div class="sheet" aria-hidden="true"></div>`;
  }

  override firstUpdated(): void {
    this.sizes.observe(this.sheet);
  }

  override updated(changed: Map<string, unknown>): void {
    const before = changed.get('channel') as Channel | undefined;
    const isAnother = before && scaleOf(before) !== scaleOf(this.channel);
    if (changed.has('theme') || changed.has('lowest') || isAnother) this.drawAnew();
    else if (changed.has('points') || changed.has('window')) this.chart?.setData(this.table);
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    this.sizes.disconnect();
    this.chart?.destroy();
    this.chart = undefined;
  }

  override connectedCallback(): void {
    super.connectedCallback();
    if (this.hasUpdated) this.sizes.observe(this.sheet);
  }

  private get sheet(): HTMLElement {
    return this.renderRoot.querySelector('.sheet') as HTMLElement;
  }

  private get table(): uPlot.AlignedData {
    return tableOf(this.points);
  }

  private renderValue() {
    const point = heldAt(this.points, this.at ?? Number.MAX_SAFE_INTEGER);
    if (!point) return this.at === null ? text.unknownValue : text.plots.unknown;
    const [, mean, least, most] = point;
    if (isSwitched(this.channel) && least === most) return mean === 1 ? text.on : text.off;
    const unit = this.channel.unit;
    const said = (value: number) => formatLevel(value, this.channel);
    const around =
      least === most ? nothing : html` <small>${text.plots.range(said(least), said(most))}</small>`;
    return html`${said(mean)}${unit ? html` <small>${unit}</small>` : nothing}${around}`;
  }

  private fit(): void {
    const { clientWidth: width, clientHeight: height } = this.sheet;
    if (width === 0 || height === 0) return;
    if (this.chart) this.chart.setSize({ width, height });
    else this.drawAnew();
  }

  private drawAnew(): void {
    const { clientWidth: width, clientHeight: height } = this.sheet;
    this.chart?.destroy();
    this.chart = undefined;
    if (width === 0 || height === 0) return;
    const { channel, lowest: hasTimes } = this;
    const sheet = { channel, hasTimes, inks: this.inks, window: () => this.window };
    this.chart = new uPlot(chartOptions(sheet, width, height), this.table, this.sheet);
  }

  // A canvas takes colours, not names of colours: what the sheet's style makes of them.
  private get inks(): Inks {
    const { sheet } = this;
    const style = getComputedStyle(sheet);
    return {
      curve: style.color,
      fill: style.backgroundColor,
      band: style.outlineColor,
      grid: style.borderTopColor,
      mark: style.caretColor,
      face: style.fontFamily,
    };
  }
}

// What the marks beside a curve depend on.
function scaleOf({ min, max, decimals, unit }: Channel): string {
  return [min, max, decimals ?? null, unit].join(' ');
}

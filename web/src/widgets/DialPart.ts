// A dial that is turned by mouse, finger and keyboard. Its value follows the hand at once, and the
// channel as soon as the hub has answered.
import {
  css,
  html,
  nothing,
  type PropertyValues,
  type SVGTemplateResult,
  type TemplateResult,
} from 'lit';
import { property, state } from 'lit/decorators.js';

import { type Dial, valueAt } from '../cards/geometry.js';
import { mostSteps, stepsOf } from '../state/steps.js';
import { formatLevel, formatValue } from './format.js';
import { ChannelPart } from './ChannelPart.js';

const page = 10; // steps
const settle = 800; // ms till the hub's value is shown again
const mostInLine = 5; // characters of a value with its unit that fit below the narrowest dial
const slop = 6; // pixels that a finger goes across before it turns anything: down it scrolls

export abstract class DialPart extends ChannelPart {
  @property({ type: Boolean, reflect: true }) held = false;
  @state() private hand: number | null = null; // the value that the hand has chosen
  private start: { x: number; y: number } | null = null;
  private settling: ReturnType<typeof setTimeout> | undefined;

  protected abstract readonly dial: Dial;
  protected abstract readonly box: string;
  protected abstract draw(value: number | null): SVGTemplateResult;

  protected get min(): number {
    return this.channel.min ?? 0;
  }

  protected get max(): number {
    return this.channel.max ?? mostSteps;
  }

  protected get value(): number | null {
    const { value } = this.channel;
    return this.hand ?? (typeof value === 'number' ? value : null);
  }

  private get isSigned(): boolean {
    return this.min < 0 && this.channel.unit === null;
  }

  private get step(): number {
    return this.isSigned ? 1 : (this.max - this.min) / mostSteps;
  }

  // Where a key goes on from, in steps: what is shown is rounded, and would stay.
  private get place(): number {
    const known = this.hand === null && !this.isSigned ? stepsOf(this.channel) : null;
    return known ?? ((this.value ?? this.min) - this.min) / this.step;
  }

  override willUpdate(changed: PropertyValues<this>): void {
    if (changed.has('channel') && !this.held && this.channel.value === this.hand) this.hand = null;
  }

  override render() {
    const value = this.value;
    const shown =
      this.hand === null ? formatValue(this.channel) : formatLevel(this.hand, this.channel);
    const drawing = html`<svg viewBox=${this.box} aria-hidden="true">${this.draw(value)}</svg>`;
    const dial = this.usable
      ? html`<div
          class="dial"
          role="slider"
          tabindex="0"
          aria-label=${this.label}
          aria-valuemin=${this.min}
          aria-valuemax=${this.max}
          aria-valuenow=${value ?? this.min}
          aria-valuetext=${shown}
          @pointerdown=${this.onDown}
          @pointermove=${this.onMove}
          @pointerup=${this.onUp}
          @pointercancel=${this.onUp}
          @keydown=${this.onKey}
        >
          ${drawing}
        </div>`
      : html`<div class="dial" role="img" aria-label="${this.label}: ${shown}">${drawing}</div>`;
    return html`${dial}
      <div class="value ${this.isShort(shown) ? 'short' : ''}">
        ${shown}${this.channel.unit
          ? html`<span class="unit">${this.channel.unit}</span>`
          : nothing}
        ${this.renderDoubt()}
      </div>
      ${this.renderBelow()}${this.renderName()}`;
  }

  // It stands in one line, however narrow the plate is.
  private isShort(shown: string): boolean {
    return shown.length + (this.channel.unit?.length ?? 0) <= mostInLine;
  }

  protected renderBelow(): TemplateResult | typeof nothing {
    return nothing;
  }

  private onDown(event: PointerEvent): void {
    if (event.button !== 0) return;
    this.start = { x: event.clientX, y: event.clientY };
    if (event.pointerType === 'touch') return;
    (event.currentTarget as Element).setPointerCapture(event.pointerId);
    this.grip(event);
  }

  private onMove(event: PointerEvent): void {
    if (!this.start) return;
    const across = Math.abs(event.clientX - this.start.x);
    const down = Math.abs(event.clientY - this.start.y);
    if (!this.held && (across < slop || across <= down)) return;
    this.grip(event);
  }

  private onUp(): void {
    this.start = null;
    this.held = false;
    this.letSettle();
  }

  private grip(event: PointerEvent): void {
    this.held = true;
    const svg = this.renderRoot.querySelector('svg');
    const matrix = svg?.getScreenCTM()?.inverse();
    if (!matrix) return;
    const { x, y } = new DOMPoint(event.clientX, event.clientY).matrixTransform(matrix);
    this.choose(valueAt(x, y, this.min, this.max, this.dial));
  }

  private onKey(event: KeyboardEvent): void {
    const { place } = this;
    const targets: Record<string, number> = {
      ArrowUp: place + 1,
      ArrowRight: place + 1,
      ArrowDown: place - 1,
      ArrowLeft: place - 1,
      PageUp: place + page,
      PageDown: place - page,
      Home: 0,
      End: (this.max - this.min) / this.step,
    };
    const target = targets[event.key];
    if (target === undefined) return;
    event.preventDefault();
    this.choose(this.min + target * this.step);
    this.letSettle();
  }

  private choose(value: number): void {
    const steps = Math.round((value - this.min) / this.step);
    const near = Number((this.min + steps * this.step).toFixed(4));
    const chosen = Math.min(this.max, Math.max(this.min, near));
    clearTimeout(this.settling);
    if (chosen === this.value) return;
    this.hand = chosen;
    this.set(chosen);
  }

  private letSettle(): void {
    clearTimeout(this.settling);
    this.settling = setTimeout(() => {
      this.hand = null;
    }, settle);
  }
}

export const dialStyle = css`
  :host {
    display: block;
    text-align: center;
  }
  .dial {
    touch-action: pan-y;
    border-radius: 2px;
  }
  .dial[role='slider'] {
    cursor: grab;
  }
  :host([held]) .dial {
    cursor: grabbing;
  }
  :host([held]) g {
    transition: none;
  }
  .dial svg {
    width: 100%;
    max-height: var(--dial-height);
  }
  .value {
    font-size: var(--value-size);
    line-height: 1.2;
  }
  /* Nothing around it is laid out when it changes. */
  .short {
    height: 1.2em;
    contain: layout size;
  }
  .unit {
    margin-left: 0.25em;
    color: var(--faint);
    font-size: 0.75rem;
    line-height: 1;
  }
  .doubt {
    margin-left: 0.25em;
    color: var(--faint);
  }
  qelm-name {
    font-size: var(--small-name);
    text-align: center;
  }
`;

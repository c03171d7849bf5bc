// What mouse, fingers and keys do on the strip: read a moment, move in time, zoom.
import { moved, type Plots, type Span, zoomed } from '../../state/plots.js';

export interface Strip {
  area(): DOMRect | undefined; // of the curves, on the screen
  now(): number; // ms, the hub's clock
  window(): Span;
  at(): number | null;
  read(at: number | null): void;
  look(to: Partial<Plots>): void;
}

const tap = 4; // px: what moves less is no drag
const step = 1.25; // of a zoom

export class Hand {
  private readonly down = new Map<number, number>(); // x of pointers
  private moves = 0; // px since the pointer went down

  constructor(private readonly strip: Strip) {}

  readonly onDown = (event: PointerEvent): void => {
    if (event.button !== 0) return;
    (event.currentTarget as HTMLElement).setPointerCapture(event.pointerId);
    this.down.set(event.pointerId, event.clientX);
    this.moves = 0;
    this.read(event.clientX);
  };

  readonly onMove = (event: PointerEvent): void => {
    const before = this.down.get(event.pointerId);
    if (before === undefined) {
      if (event.pointerType === 'mouse') this.read(event.clientX);
      return;
    }
    const other = [...this.down].find(([id]) => id !== event.pointerId)?.[1];
    this.down.set(event.pointerId, event.clientX);
    if (other !== undefined) this.pinch(other, before, event.clientX);
    else this.drag(event.clientX - before);
  };

  readonly onUp = (event: PointerEvent): void => {
    this.down.delete(event.pointerId);
  };

  readonly onLeave = (event: PointerEvent): void => {
    if (event.pointerType === 'mouse' && this.down.size === 0) this.strip.read(null);
  };

  readonly onWheel = (event: WheelEvent): void => {
    if (event.ctrlKey || event.deltaY === 0 || event.shiftKey) return;
    event.preventDefault();
    this.zoom(event.deltaY < 0 ? 1 / step : step, this.timeAt(event.clientX));
  };

  readonly onKey = (event: KeyboardEvent): void => {
    const { from, to } = this.strip.window();
    const part = (to - from) / 100;
    const at = this.strip.at() ?? to;
    const read = (time: number) => () => {
      this.strip.read(Math.min(to, Math.max(from, time)));
    };
    const move = (by: number) => () => {
      this.strip.look(moved({ from, to }, by, this.strip.now()));
    };
    const shift = event.shiftKey;
    const keys: Record<string, () => void> = {
      ArrowLeft: shift ? move(-10 * part) : read(at - part),
      ArrowRight: shift ? move(10 * part) : read(at + part),
      PageUp: move(-80 * part),
      PageDown: move(80 * part),
      Home: read(from),
      End: read(to),
      Escape: () => {
        this.strip.read(null);
      },
      '+': () => {
        this.zoom(1 / step, at);
      },
      '-': () => {
        this.zoom(step, at);
      },
    };
    const does = keys[event.key];
    if (!does || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    does();
  };

  zoom(factor: number, at: number | null): void {
    const window = this.strip.window();
    this.strip.look(zoomed(window, factor, at ?? (window.from + window.to) / 2, this.strip.now()));
  }

  private drag(by: number): void {
    const area = this.strip.area();
    this.moves += Math.abs(by);
    if (!area || this.moves < tap) return;
    const { from, to } = this.strip.window();
    this.strip.look(moved({ from, to }, (-by / area.width) * (to - from), this.strip.now()));
  }

  private pinch(still: number, before: number, now: number): void {
    const apart = Math.abs(now - still);
    if (apart > 8) this.zoom(Math.abs(before - still) / apart, this.timeAt((still + now) / 2));
  }

  private read(x: number): void {
    this.strip.read(this.timeAt(x));
  }

  private timeAt(x: number): number | null {
    const area = this.strip.area();
    if (!area) return null;
    const { from, to } = this.strip.window();
    const share = Math.min(1, Math.max(0, (x - area.left) / area.width));
    return from + share * (to - from);
  }
}

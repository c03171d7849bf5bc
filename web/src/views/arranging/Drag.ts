// A card that is dragged by mouse, pen or finger: which one, and over which spot it is. Cards are
// elements with data-card, in elements with data-section.
import type { Spot } from './sections.js';

export interface Board {
  root(): Element; // stays where it is while cards move in it
  taken(address: string): void;
  over(spot: Spot): void;
  dropped(isMeant: boolean): void;
}

const slop = 4; // px that a pointer goes before it drags
const edge = 72; // px from an edge of the window, where it scrolls
const scroll = 16; // px

export class Drag {
  private address: string | null = null;
  private begin = { x: 0, y: 0 };
  private isDragging = false;

  constructor(private readonly board: Board) {}

  // A mouse takes a card anywhere, a finger by its grip: elsewhere it scrolls.
  readonly onDown = (event: PointerEvent): void => {
    const target = event.target as Element;
    if (event.button !== 0 || target.closest('select, .step')) return;
    if (event.pointerType === 'touch' && !target.closest('.grip')) return;
    this.address = target.closest('[data-card]')?.getAttribute('data-card') ?? null;
    this.begin = { x: event.clientX, y: event.clientY };
  };

  readonly onMove = (event: PointerEvent): void => {
    if (this.address === null) return;
    const { clientX: x, clientY: y } = event;
    if (!this.isDragging) {
      if (Math.hypot(x - this.begin.x, y - this.begin.y) < slop) return;
      this.isDragging = true;
      this.board.root().setPointerCapture(event.pointerId);
      this.board.taken(this.address);
    }
    if (y < edge) window.scrollBy(0, -scroll);
    if (y > window.innerHeight - edge) window.scrollBy(0, scroll);
    const spot = this.spotAt(x, y);
    if (spot) this.board.over(spot);
  };

  readonly onUp = (): void => {
    this.end(true);
  };

  readonly onCancel = (): void => {
    this.end(false);
  };

  private end(isMeant: boolean): void {
    if (this.isDragging) this.board.dropped(isMeant);
    this.address = null;
    this.isDragging = false;
  }

  private spotAt(x: number, y: number): Spot | null {
    const sections = [...this.board.root().querySelectorAll('[data-section]')];
    const below = sections.findIndex((each) => each.getBoundingClientRect().bottom >= y);
    const section = below === -1 ? sections.length - 1 : below;
    const others = [...(sections[section]?.querySelectorAll('[data-card]') ?? [])].filter(
      (card) => card.getAttribute('data-card') !== this.address,
    );
    const place = others.filter((card) => isBefore(card, x, y)).length;
    return section === -1 ? null : { section, place };
  }
}

// By its middle: from left to right, or from top to bottom where cards stand one below another.
function isBefore(card: Element, x: number, y: number): boolean {
  const { top, bottom, left, width, height } = card.getBoundingClientRect();
  const isAlone = width * 2 > (card.parentElement?.clientWidth ?? 0);
  if (isAlone) return top + height / 2 < y;
  return bottom <= y || (top <= y && left + width / 2 < x);
}

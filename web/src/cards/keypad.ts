// A pad of the 63 keys that a card can tell, and its encoder.
import { css, nothing, svg, type SVGTemplateResult } from 'lit';

import { text } from '../text/text.js';
import { turnedBy } from './geometry.js';

const keys = 63;
const pitch = 11;
const size = 9.5;

export const wide = 9; // columns of a pad
export const narrow = 6; // where a finger presses: each key is as wide as its tip

export function padBox(columns: number): string {
  return `0 0 ${columns * pitch} ${Math.ceil(keys / columns) * pitch}`;
}

export const encoderBox = '-42 -42 84 96';

export const hex = (code: number) => code.toString(16).toUpperCase().padStart(2, '0');

// Where an arrow key leads from a key of the pad.
export function neighbour(code: number, key: string, columns: number): number {
  const way = { ArrowLeft: -1, ArrowRight: 1, ArrowUp: -columns, ArrowDown: columns }[key] ?? 0;
  const next = code + way;
  return next >= 1 && next <= keys ? next : code;
}

// `reached` is the key that the keyboard is at; null where no hand can press them.
export function drawPad(
  held: number,
  recent: readonly number[],
  reached: number | null = null,
  columns = wide,
): SVGTemplateResult {
  const drawn = Array.from({ length: keys }, (_, place) => {
    const code = place + 1;
    const [left, top] = [(place % columns) * pitch, Math.floor(place / columns) * pitch];
    const [x, y] = [left + (pitch - size) / 2, top + (pitch - size) / 2];
    const state = code === held ? 'held' : recent.includes(code) ? 'recent' : '';
    const isButton = reached !== null;
    return svg`<g class="pad-key ${state}" data-code=${code}
      role=${isButton ? 'button' : nothing} aria-label=${isButton ? text.hands.key(hex(code)) : nothing}
      tabindex=${isButton ? (code === reached ? 0 : -1) : nothing}>
      <rect class="reach" x=${left} y=${top} width=${pitch} height=${pitch}></rect>
      <rect class="cap" x=${x} y=${y} width=${size} height=${size} rx="1"></rect>
      <text x=${x + size / 2} y=${y + size / 2 + 2.15}>${hex(code)}</text></g>`;
  });
  return svg`<g>${drawn}</g>`;
}

const detents = 24; // a turn of the encoder

export function encoderAngle(steps: number): number {
  return (steps * 360) / detents;
}

export function drawEncoder(steps: number, contacts: number | null): SVGTemplateResult {
  const notches = Array.from({ length: detents }, (_, place) => {
    const angle = (place * 360) / detents;
    return svg`<path d="M0-36V-40" transform="rotate(${angle})"></path>`;
  });
  const contact = (bit: number, x: number) =>
    svg`<circle class="contact-dot ${contacts !== null && contacts & bit ? 'on' : ''}"
      cx=${x} cy="48" r="3.5"></circle>`;
  return svg`<g class="encoder"><circle class="cap" r="40"></circle>
    <g class="turned" .style=${turnedBy(encoderAngle(steps))}>${notches}
      <circle class="dimple" cy="-24" r="6"></circle></g>
    ${contact(2, -7)}${contact(1, 7)}</g>`;
}

export const keypadStyle = css`
  .reach {
    fill: transparent;
  }
  .pad-key .cap {
    fill: var(--part);
    stroke: var(--line);
    stroke-width: 0.5;
  }
  .pad-key text {
    fill: var(--faint);
    font-size: 6px;
    text-anchor: middle;
  }
  .pad-key.recent .cap {
    stroke: var(--ink);
  }
  .pad-key.held .cap {
    fill: var(--on);
    stroke: var(--on);
  }
  .pad-key[role] {
    cursor: pointer;
  }
  .pad-key[role]:hover .cap {
    stroke: var(--ink);
  }
  .pad-key:focus-visible .cap {
    stroke: var(--ink);
    stroke-width: 1.5;
  }
  .pad-key.held text {
    fill: var(--on-ink);
  }
  .encoder .cap {
    fill: var(--part);
    stroke: var(--edge);
  }
  .encoder .turned {
    stroke: var(--edge);
    stroke-width: 1.5;
    transform: rotate(var(--turn));
    transition: --turn var(--move);
  }
  .encoder .dimple {
    fill: var(--well);
    stroke: var(--edge);
  }
  .encoder .contact-dot {
    fill: var(--well);
    stroke: var(--edge);
  }
  .encoder .contact-dot.on {
    fill: var(--on);
    stroke: var(--on);
  }
`;

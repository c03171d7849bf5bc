// The glass of a display, dot by dot.
import { css, svg, type SVGTemplateResult } from 'lit';

import { fontHeight, fontWidth, rowsOf } from './font.js';

const pitchX = fontWidth + 1; // one dot between characters
const pitchY = fontHeight + 1;
const dot = 0.84; // of the way from one dot to the next
const margin = 3;

export interface Cell {
  row: number;
  column: number;
}

export function glassBox(rows: number, columns: number): string {
  const width = columns * pitchX - 1 + 2 * margin;
  const height = rows * pitchY - 1 + 2 * margin;
  return `${-margin} ${-margin} ${width} ${height}`;
}

// The dots that are dark, as a path of squares; a row's own, so that a row is drawn only when it
// has changed.
export function dotsOfRow(text: string, row: number): string {
  let path = '';
  Array.from(text).forEach((character, column) => {
    rowsOf(character).forEach((bits, y) => {
      for (let x = 0; x < fontWidth; ++x)
        if (bits & (1 << (fontWidth - 1 - x)))
          path += `M${column * pitchX + x} ${row * pitchY + y}h${dot}v${dot}h-${dot}z`;
    });
  });
  return path;
}

// All dots of the glass, for those that are not dark.
export function allDots(rows: number, columns: number): string {
  let path = '';
  for (let row = 0; row < rows; ++row)
    for (let y = 0; y < fontHeight; ++y)
      path += Array.from(
        { length: columns },
        (_, column) => `M${column * pitchX} ${row * pitchY + y + dot / 2}h${fontWidth}`,
      ).join('');
  return path;
}

export function drawCursor(cell: Cell): SVGTemplateResult {
  const y = cell.row * pitchY + fontHeight - 1;
  return svg`<path class="cursor" d="M${cell.column * pitchX} ${y}h${fontWidth}v${dot}h-${fontWidth}z"></path>`;
}

export function drawBlink(cell: Cell): SVGTemplateResult {
  const [x, y] = [cell.column * pitchX, cell.row * pitchY];
  return svg`<path class="blink" d="M${x} ${y}h${fontWidth}v${fontHeight}h-${fontWidth}z"></path>`;
}

export const glassStyle = css`
  .glass .pane {
    fill: var(--glass);
    transition: fill var(--move);
  }
  .glass .dots {
    fill: none;
    stroke: var(--glass-dot);
    stroke-width: 0.84;
    stroke-dasharray: 0.84 0.16;
  }
  .glass .ink {
    fill: var(--glass-ink);
  }
  .glass.lit .pane {
    fill: var(--lit);
  }
  .glass.lit .dots {
    stroke: var(--lit-dot);
  }
  .glass.lit .ink {
    fill: var(--lit-ink);
  }
`;

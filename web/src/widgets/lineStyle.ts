// Lines of digital cards: number, drawing, lamp, name.
import { css } from 'lit';

export const lineStyle = css`
  :host {
    display: grid;
    grid-template-columns: auto minmax(0, 1fr);
    align-items: center;
    gap: 0.375rem;
    min-height: var(--line-height, var(--touch));
  }
  .part {
    display: grid;
    grid-template-columns: 1rem calc(2rem * var(--line-scale)) calc(1.25rem * var(--line-scale));
    align-items: center;
    gap: 0.25rem;
    min-height: var(--line-height, var(--touch));
  }
  .number {
    color: var(--faint);
    font-size: 0.6875rem;
  }
  /* A drawing in a block of its own is laid out without the page around it; one in a grid is not. */
  .drawing {
    height: min(calc(1.125rem * var(--line-scale)), var(--line-height, 100%));
  }
  .drawing svg {
    width: 100%;
    height: 100%;
  }
  .bulb {
    width: 100%;
    height: min(calc(1.25rem * var(--line-scale)), var(--line-height, 100%));
    overflow: visible;
  }
  qelm-name {
    font-size: var(--name-size);
    min-height: inherit;
    display: grid;
    align-items: center;
  }
  button.part:focus-visible {
    outline-offset: -1px;
  }
`;

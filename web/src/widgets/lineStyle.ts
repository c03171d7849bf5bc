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
    grid-template-columns: 1rem 2rem 1.25rem;
    align-items: center;
    gap: 0.25rem;
    min-height: var(--line-height, var(--touch));
  }
  .number {
    color: var(--faint);
    font-size: 0.6875rem;
  }
  .drawing {
    width: 2rem;
    height: 1.125rem;
  }
  .bulb {
    width: 1.25rem;
    height: 1.25rem;
    overflow: visible;
  }
  qelm-name {
    font-size: 0.8125rem;
    min-height: inherit;
    display: grid;
    align-items: center;
  }
  button.part:focus-visible {
    outline-offset: -1px;
  }
`;

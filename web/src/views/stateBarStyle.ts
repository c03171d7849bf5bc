import { css } from 'lit';

export const stateBarStyle = css`
  :host {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    gap: 0 1.5rem;
    min-height: 2.75rem;
    padding: 0.25rem 1rem;
    background: var(--plate);
    border-bottom: var(--hair) solid var(--line);
    font-size: 0.8125rem;
  }
  .name {
    display: flex;
    align-items: center;
    gap: 0.5rem;
    min-width: 0;
    font-weight: 600;
    font-size: 0.9375rem;
  }
  .virtual {
    padding: 0 0.375rem;
    border: var(--hair) solid var(--edge);
    font-size: 0.6875rem;
    font-weight: 400;
    line-height: 1.125rem;
    white-space: nowrap;
  }
  .states {
    display: flex;
    flex-wrap: wrap;
    gap: 0.25rem 1.25rem;
    margin-left: auto;
  }
  li,
  li button {
    display: flex;
    align-items: center;
    gap: 0.375rem;
    min-height: 1.5rem;
    white-space: nowrap;
  }
  .why {
    flex: 1 0 100%;
    padding: 0.375rem 0;
    color: var(--faint);
    text-align: end;
  }
  @media (pointer: coarse) {
    li button {
      min-height: var(--touch);
      margin-block: calc((1.5rem - var(--touch)) / 2);
    }
  }
  li svg {
    width: 0.75rem;
    height: 0.75rem;
  }
  .part {
    color: var(--faint);
  }
  .wrong .word {
    color: var(--wrong);
    font-weight: 600;
  }
  .missed {
    color: var(--wrong);
  }
  .missed .key {
    color: var(--ink);
  }
  .missed,
  .who {
    display: flex;
    align-items: center;
    gap: 0.5rem;
  }
  /* One line on a tablet: what is good needs no word. */
  @media (max-width: 1279px) {
    :host {
      gap: 0 1rem;
    }
    .states {
      gap: 0.25rem 0.875rem;
    }
    .good .word {
      display: none;
    }
  }
  @media (max-width: 639px) {
    :host {
      padding: 0.5rem 0.75rem;
      gap: 0.25rem 1rem;
    }
    .states {
      width: 100%;
      margin: 0;
      justify-content: space-between;
      gap: 0 0.5rem;
      font-size: 0.75rem;
    }
    .who {
      margin-left: auto;
    }
  }
`;

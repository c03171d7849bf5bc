import { css } from 'lit';

export const plotsStyle = css`
  :host {
    display: flex;
    flex-direction: column;
  }
  .spans {
    display: flex;
    flex-wrap: wrap;
  }
  .spans .key {
    border-radius: 0;
    margin-right: -1px;
    padding: 0 0.625rem;
  }
  .key[aria-pressed='true'] {
    position: relative;
    border-color: var(--ink);
    box-shadow: inset 0 -2px var(--ink);
    font-weight: 600;
  }
  .tools {
    flex: 1 0 auto;
  }
  .icon {
    width: var(--touch);
    padding: 0;
  }
  .key svg {
    width: 1rem;
    height: 1rem;
    fill: none;
    stroke: currentcolor;
    stroke-width: 1.5;
  }
  .key:disabled {
    color: var(--faint);
    border-color: var(--line);
  }
  summary {
    display: flex;
    align-items: center;
    gap: 0.5rem;
    min-height: var(--touch);
    padding: 0 0.75rem;
    font-size: 0.8125rem;
    font-weight: 600;
    cursor: pointer;
  }
  summary::before {
    content: '';
    width: 0.4375rem;
    height: 0.4375rem;
    border: solid var(--ink);
    border-width: 0 1.5px 1.5px 0;
    transform: rotate(-45deg);
  }
  [open] > summary::before {
    transform: rotate(45deg);
  }
  [open] > summary {
    border-bottom: var(--hair) solid var(--line);
  }
  .none {
    padding: 1rem 0.75rem;
  }
  /* Curves take the room that there is. */
  .strip {
    position: relative;
    display: flex;
    flex-direction: column;
    margin-top: 0.75rem;
    padding-top: 1.5rem;
  }
  .tall {
    flex: 1;
  }
  .lanes {
    position: absolute;
    z-index: 1;
    inset: 0 0 0 11rem;
    touch-action: pan-y;
    cursor: crosshair;
  }
  .lanes:active {
    cursor: grabbing;
  }
  .lanes:focus-visible {
    outline-offset: -2px;
  }
  .when {
    position: absolute;
    top: 0;
    left: 0.75rem;
    color: var(--faint);
    font-size: 0.75rem;
    line-height: 1.5rem;
  }
  .hair {
    position: absolute;
    z-index: 1;
    inset: 0 auto 0 0;
    border-left: var(--hair) solid var(--ink);
    pointer-events: none;
  }
  .hair span {
    position: absolute;
    top: 0.25rem;
    left: 0.375rem;
    font-size: 0.75rem;
    white-space: nowrap;
  }
  .hair.far span {
    right: 0.375rem;
    left: auto;
  }
  @media (max-width: 1023px) {
    .spans .key {
      padding: 0 0.375rem;
    }
  }
  @media (max-width: 639px) {
    .lanes {
      left: 0;
      right: 3rem;
    }
    .spans,
    .tools {
      flex: none;
      flex-wrap: nowrap;
      width: 100%;
    }
    .spans .key,
    .tools .key {
      flex: 1 1 0;
      min-width: 0;
      padding: 0;
    }
    .spans .key {
      font-size: 0.6875rem;
    }
    .tools {
      gap: 0.25rem;
    }
    .tools .word {
      display: none;
    }
  }
`;

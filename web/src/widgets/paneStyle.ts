// The frame of a display's glass, and what stands below it.
import { css } from 'lit';

export const paneStyle = css`
  :host {
    display: grid;
    grid-template-columns: minmax(0, 1fr);
    gap: 0.5rem;
  }
  svg {
    width: 100%;
    border: 0.25rem solid var(--well);
    outline: var(--hair) solid var(--edge);
    outline-offset: -1px;
  }
  .row {
    fill: transparent;
    cursor: text;
  }
  .unsure .pane {
    stroke: var(--ink);
    stroke-dasharray: 2 2;
  }
  .cursor,
  .blink {
    fill: var(--glass-ink);
  }
  .lit .cursor,
  .lit .blink {
    fill: var(--lit-ink);
  }
  .blink {
    animation: blink 1s steps(1) infinite;
  }
  @keyframes blink {
    50% {
      opacity: 0;
    }
  }
  @media (prefers-reduced-motion: reduce) {
    .blink {
      animation: none;
      opacity: 0.6;
    }
  }
  form,
  .switches {
    display: flex;
    flex-wrap: wrap;
    gap: 0.25rem;
  }
  .rows {
    display: flex;
  }
  .rows .key {
    min-width: var(--touch);
    padding: 0;
    border-radius: 0;
  }
  .rows .key + .key {
    border-left: 0;
  }
  .field {
    flex: 1 1 6rem;
    width: 6rem;
    font-family: var(--mono);
  }
  .switches .key {
    flex: 1 1 auto;
    max-width: 10rem;
    padding: 0 0.5rem;
    font-size: 0.75rem;
  }
  .key[aria-pressed='true'] {
    background: var(--well);
    border-color: var(--ink);
    box-shadow: inset 0 -2px var(--on);
  }
  .rows .key[aria-pressed='true'] {
    border-color: var(--edge);
    box-shadow: inset 0 -2px var(--ink);
  }
  @media (forced-colors: active) {
    .key[aria-pressed='true'] {
      outline: 3px double CanvasText;
      outline-offset: -4px;
    }
  }
  /* The rows in a line of their own: what is written keeps its room. */
  @container (max-width: 22rem) {
    .rows {
      flex: 1 1 100%;
    }
    .rows .key {
      flex: 1;
    }
    .field {
      flex: 1 1 0;
    }
  }
  .hint {
    color: var(--faint);
    font-size: 0.75rem;
  }
`;

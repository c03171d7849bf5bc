// What every component's style begins with.
import { css } from 'lit';

export const base = css`
  *,
  *::before,
  *::after {
    box-sizing: border-box;
  }
  [hidden] {
    display: none !important;
  }
  button,
  input,
  select {
    font: inherit;
    color: inherit;
    letter-spacing: inherit;
  }
  ::placeholder {
    color: var(--faint);
    opacity: 1;
  }
  button {
    padding: 0;
    border: 0;
    border-radius: 2px;
    background: none;
    text-align: inherit;
    cursor: pointer;
    touch-action: manipulation;
    -webkit-tap-highlight-color: transparent;
  }
  button:disabled {
    cursor: default;
  }
  :focus-visible {
    outline: 2px solid var(--ink);
    outline-offset: 2px;
  }
  ul,
  ol,
  dl,
  dd,
  p,
  h1,
  h2,
  h3,
  fieldset {
    margin: 0;
    padding: 0;
    border: 0;
    min-width: 0;
  }
  ul,
  ol {
    list-style: none;
  }
  svg {
    display: block;
  }
  .unseen {
    position: absolute;
    width: 1px;
    height: 1px;
    overflow: hidden;
    clip-path: inset(50%);
    white-space: nowrap;
  }
  .key {
    display: inline-flex;
    align-items: center;
    justify-content: center;
    gap: 0.5rem;
    min-height: var(--touch);
    padding: 0 0.75rem;
    border: var(--hair) solid var(--edge);
    background: var(--part);
    font-size: 0.8125rem;
    white-space: nowrap;
  }
  .key:hover:not(:disabled) {
    background: var(--part-high);
  }
  .key:active:not(:disabled) {
    background: var(--well);
  }
  .field {
    min-height: var(--touch);
    min-width: 0;
    padding: 0 0.5rem;
    border: var(--hair) solid var(--edge);
    border-radius: 2px;
    background: var(--well);
    font-size: max(0.8125rem, 13px);
  }
  @media (pointer: coarse) {
    .field {
      font-size: 1rem;
    }
  }
`;

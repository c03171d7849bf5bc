import { css } from 'lit';

export const consoleStyle = css`
  :host {
    display: grid;
    grid-template-rows: auto minmax(0, 1fr) auto;
    min-height: 0;
  }
  .sheet {
    display: flex;
    flex-direction: column;
    min-height: 16rem;
    height: calc(100dvh - 10.5rem);
    font-family: var(--mono);
    font-size: 0.8125rem;
    line-height: 1.25rem;
  }
  .paper {
    flex: 1;
    min-height: 0;
    overflow: auto;
    padding: 0.75rem;
    background: var(--well);
  }
  .paper:focus-visible {
    outline-offset: -2px;
  }
  .none,
  .quiet {
    color: var(--faint);
    font-family: var(--face);
  }
  .said + .said {
    margin-top: 0.75rem;
  }
  .line {
    font-weight: 600;
    overflow-wrap: anywhere;
  }
  .line::before,
  .prompt {
    content: '> ';
    color: var(--faint);
    font-weight: 400;
  }
  pre {
    margin: 0;
    font: inherit;
    white-space: pre-wrap;
    overflow-wrap: anywhere;
  }
  .problem {
    color: var(--wrong);
    font-family: var(--face);
  }
  .problem::first-letter {
    text-transform: uppercase;
  }
  form {
    display: flex;
    align-items: center;
    gap: 0.5rem;
    padding: 0.5rem 0.5rem 0.5rem 0.75rem;
    border-top: var(--hair) solid var(--line);
  }
  form .field {
    flex: 1;
    width: 0;
    font-family: inherit;
  }
  form .key {
    font-family: var(--face);
  }
  .candidates {
    border-top: var(--hair) solid var(--line);
    padding: 0.25rem 0;
  }
  .candidates button {
    display: grid;
    grid-template-columns: 11rem minmax(0, 1fr);
    align-items: center;
    gap: 0.75rem;
    width: 100%;
    min-height: var(--touch);
    padding: 0 0.75rem;
  }
  .candidates button:hover,
  .candidates button:focus-visible {
    background: var(--part);
    outline-offset: -2px;
  }
  .candidates span {
    overflow: hidden;
    text-overflow: ellipsis;
    white-space: nowrap;
    color: var(--faint);
    font-family: var(--face);
    font-size: 0.75rem;
  }
  code {
    font-family: inherit;
  }
  .keys {
    padding: 0.5rem 0.25rem 0;
  }
  @media (max-width: 639px) {
    .sheet {
      height: calc(100dvh - 16.5rem);
    }
    .candidates button {
      grid-template-columns: minmax(0, 1fr);
      gap: 0;
      align-content: center;
      line-height: 1rem;
    }
    .candidates li:nth-child(n + 4),
    .keys {
      display: none;
    }
  }
`;

import { css } from 'lit';

export const journalStyle = css`
  :host {
    width: min(100%, 76rem);
  }
  .search {
    flex: 0 1 20rem;
  }
  .search .field {
    flex: 1;
    width: 6rem;
  }
  .count {
    margin-left: auto;
    color: var(--faint);
    font-size: 0.8125rem;
  }
  .lost {
    margin-bottom: 0.5rem;
  }
  .none {
    padding: 1rem 0.75rem;
  }
  h2 {
    padding: 0.75rem 0.75rem 0.25rem;
    font-size: 0.8125rem;
  }
  li:not(:first-child) h2 {
    border-top: var(--hair) solid var(--line);
  }
  .entry {
    display: grid;
    grid-template-columns: 4.5rem 6rem minmax(0, auto) minmax(max-content, 1fr);
    gap: 0 0.75rem;
    padding: 0.375rem 0.75rem;
    font-size: 0.8125rem;
    line-height: 1.25rem;
  }
  .entry:hover {
    background: var(--well);
  }
  time,
  .kind,
  .by {
    color: var(--faint);
  }
  .what {
    overflow-wrap: anywhere;
  }
  ol {
    padding-bottom: 0.375rem;
  }
  .foot {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    gap: 0.5rem 1rem;
    padding: 0.75rem 0.25rem;
  }
  @media (max-width: 639px) {
    .entry {
      grid-template-columns: 4rem minmax(0, 1fr) auto;
      padding-block: 0.5rem;
    }
    .what {
      grid-column: 1 / -1;
      grid-row: 2;
    }
    .search {
      flex: 1 1 100%;
      order: 1;
    }
  }
`;

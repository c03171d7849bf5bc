import { css } from 'lit';

export const plateStyle = css`
  :host {
    display: grid;
    container-type: inline-size;
    isolation: isolate; /* a plate that has not changed is not painted anew */
  }
  .plate {
    display: flex;
    flex-direction: column;
    min-width: 0;
    background: var(--plate);
    border: var(--hair) solid var(--line);
    border-radius: 2px;
  }
  header {
    display: flex;
    align-items: center;
    gap: 0.625rem;
    min-height: 2.75rem;
    padding: 0.125rem 0.75rem;
    border-bottom: var(--hair) solid var(--line);
  }
  .address {
    font-size: 1.625rem;
    font-weight: 300;
    line-height: 1;
  }
  .title {
    flex: 1;
    min-width: 0;
  }
  h2 {
    font-size: 0.875rem;
    font-weight: 600;
    line-height: 1.25rem;
  }
  /* A finger finds the title in all of the head, and the head stays as it is. */
  h2 {
    --name-overlap: calc((1.25rem - var(--touch)) / 2);
  }
  .kind {
    color: var(--faint);
    font-size: 0.6875rem;
    line-height: 1rem;
    white-space: nowrap;
    overflow: hidden;
    text-overflow: ellipsis;
  }
  .state {
    padding: 0.0625rem 0.375rem;
    border: var(--hair) solid var(--wrong);
    color: var(--wrong);
    font-size: 0.6875rem;
    line-height: 1rem;
  }
  .why {
    padding: 0.5rem 0.75rem 0;
    color: var(--faint);
    font-size: 0.75rem;
    line-height: 1rem;
  }
  .parts .why {
    padding: 0;
  }
  .parts {
    display: grid;
    gap: 0.75rem;
    align-content: start;
    flex: 1;
    padding: 0.5rem 0.75rem 0.75rem;
  }
  .lines {
    --line-height: 1.125rem;
    --line-scale: 1;
    display: grid;
    column-gap: 1rem;
  }
  .dials {
    display: grid;
    grid-template-columns: repeat(2, minmax(0, 1fr));
    gap: 0.25rem 0.75rem;
    --dial-height: 3.125rem;
    --trail-height: 0.75rem;
  }
  @container (max-width: 19rem) {
    .parts {
      padding-inline: 0.5rem;
    }
    .lines {
      column-gap: 0.5rem;
    }
  }
  @container (min-width: 17rem) {
    .lines {
      --line-height: var(--touch);
      --line-scale: inherit;
      grid-template-columns: repeat(2, minmax(0, 1fr));
      grid-template-rows: repeat(8, auto);
      grid-auto-flow: column;
    }
    .dials {
      --dial-height: 7rem;
      --trail-height: 1.25rem;
      grid-template-columns: repeat(3, minmax(0, 1fr));
      row-gap: 0.75rem;
    }
  }
  @media (pointer: coarse) {
    .lines {
      --line-height: var(--touch);
    }
  }
  .silent,
  .absent {
    border-style: dashed;
    border-color: var(--edge);
  }
  .silent .parts {
    background: repeating-linear-gradient(
      135deg,
      transparent 0 0.75rem,
      var(--line) 0.75rem calc(0.75rem + 1px)
    );
  }
  .absent {
    background: none;
  }
  .absent .parts {
    visibility: hidden;
    height: 2rem;
    flex: none;
    overflow: hidden;
  }
`;

import { css } from 'lit';

export const arrangerStyle = css`
  .head p {
    flex: 1 1 20rem;
  }
  .head .tools {
    margin-left: auto;
  }
  @media (max-width: 639px) {
    .head .tools {
      margin-left: 0;
    }
  }
  .board {
    display: grid;
    gap: 0.75rem;
    touch-action: pan-y;
  }
  section {
    padding: 0.25rem 0.5rem 0.5rem;
  }
  .title {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    gap: 0.25rem 0.5rem;
    min-height: var(--touch);
    padding-bottom: 0.25rem;
  }
  .title h2 {
    flex: 1 1 8rem;
    min-width: 0;
  }
  .cards {
    display: grid;
    grid-template-columns: repeat(auto-fill, minmax(min(20rem, 100%), 1fr));
    gap: 0.25rem;
    min-height: 3rem;
    border: var(--hair) dashed var(--line);
  }
  .card {
    display: grid;
    grid-template-columns: auto auto minmax(0, 1fr) auto auto;
    align-items: center;
    gap: 0.25rem 0.5rem;
    padding: 0.25rem 0.5rem 0.25rem 0;
    background: var(--part);
    border: var(--hair) solid var(--line);
    border-radius: 2px;
    cursor: grab;
    user-select: none;
    -webkit-user-select: none;
  }
  .card.taken {
    border-color: var(--ink);
    outline: var(--hair) solid var(--ink);
    cursor: grabbing;
  }
  .grip,
  .step {
    display: grid;
    place-items: center;
    width: var(--touch);
    height: var(--touch);
  }
  .grip {
    cursor: inherit;
    touch-action: none;
  }
  .grip svg,
  .step svg {
    width: 1rem;
    height: 1rem;
    fill: none;
    stroke: var(--faint);
    stroke-width: 1.5;
  }
  .grip:hover svg,
  .step:hover svg {
    stroke: var(--ink);
  }
  .grip svg {
    stroke-width: 2;
    stroke-dasharray: 2 3;
  }
  .address {
    font-size: 1.25rem;
    font-weight: 300;
  }
  .name {
    display: grid;
    font-size: 0.8125rem;
    line-height: 1.15;
  }
  .name span {
    overflow: hidden;
    text-overflow: ellipsis;
    white-space: nowrap;
  }
  .kind {
    color: var(--faint);
    font-size: 0.6875rem;
  }
  .steps {
    display: flex;
  }
  .field {
    max-width: 8rem;
    font-size: 0.75rem;
  }
  @media (max-width: 639px) {
    .card {
      grid-template-columns: auto auto minmax(0, 1fr) auto;
    }
    .field {
      grid-column: 3 / -1;
      max-width: none;
    }
  }
`;

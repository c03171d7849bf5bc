import { css } from 'lit';

export const boardsStyle = css`
  :host {
    display: flex;
    flex-direction: column;
  }
  .boards {
    display: flex;
    flex-wrap: wrap;
    gap: 0.25rem;
  }
  .boards a {
    color: inherit;
    text-decoration: none;
  }
  .boards svg {
    width: 0.75rem;
    height: 0.75rem;
  }
  .boards a[aria-current='true'] {
    border-color: var(--ink);
    box-shadow: inset 0 -2px var(--ink);
    font-weight: 600;
  }
  .state:empty {
    display: none;
  }
  .state {
    color: var(--faint);
    font-weight: 400;
  }
  .lost {
    margin-bottom: 0.75rem;
  }
`;

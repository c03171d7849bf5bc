import { css } from 'lit';

export const benchStyle = css`
  :host {
    display: block;
    padding: 0.75rem;
  }
  qelm-virtual-bench {
    display: block;
    padding-top: 0.75rem;
  }
  footer {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    justify-content: space-between;
    gap: 0.75rem;
    padding-top: 0.75rem;
  }
  /* What is read on the left, what is pressed on the right. */
  qelm-legend {
    margin-right: auto;
  }
  @media (max-width: 639px) {
    :host {
      padding: 0.5rem;
    }
  }
  @media (min-width: 1200px) {
    :host {
      display: flex;
      flex-direction: column;
      min-height: 100%;
    }
    .rails {
      flex: 1;
    }
  }
`;

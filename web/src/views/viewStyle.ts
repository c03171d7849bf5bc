// What the views beside the bench have in common: head, tools, tables, remarks.
import { css } from 'lit';

export const viewStyle = css`
  :host {
    display: block;
    min-width: 0;
    padding: 0.75rem 1rem 1.5rem;
  }
  .head {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    gap: 0.5rem 1rem;
    padding-bottom: 0.75rem;
  }
  h1 {
    font-size: 1.0625rem;
    font-weight: 600;
    line-height: var(--touch);
  }
  h2 {
    font-size: 0.875rem;
    font-weight: 600;
    line-height: 1.25rem;
  }
  h3 {
    font-size: 0.8125rem;
    font-weight: 600;
    line-height: 1.25rem;
  }
  .note {
    max-width: 42rem;
    color: var(--faint);
    font-size: 0.8125rem;
    line-height: 1.25rem;
  }
  .plate {
    min-width: 0;
    background: var(--plate);
    border: var(--hair) solid var(--line);
    border-radius: 2px;
  }
  .tools {
    display: flex;
    flex-wrap: wrap;
    align-items: center;
    gap: 0.5rem;
  }
  .push {
    margin-left: auto;
  }
  label {
    font-size: 0.8125rem;
  }
  .row {
    display: flex;
    align-items: center;
    gap: 0.5rem;
  }
  .lost {
    padding: 0.5rem 0.75rem;
    border-left: 4px solid var(--wrong);
    background: var(--well);
    font-size: 0.8125rem;
  }
  input[type='checkbox'],
  input[type='radio'] {
    width: 1.125rem;
    height: 1.125rem;
    margin: 0;
    flex: none;
    accent-color: var(--ink);
  }
  select.field {
    padding-right: 0.25rem;
  }
  @media (max-width: 639px) {
    :host {
      padding: 0.5rem 0.5rem 1rem;
    }
    .head {
      padding: 0 0.25rem 0.5rem;
    }
  }
`;

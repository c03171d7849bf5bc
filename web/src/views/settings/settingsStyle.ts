// The settings' frame, and what its sections have in common.
import { css } from 'lit';

export const settingsStyle = css`
  .pages {
    display: grid;
    grid-template-columns: 13rem minmax(0, 1fr);
    gap: 0.75rem;
    align-items: start;
    max-width: 76rem;
  }
  .list {
    display: grid;
  }
  .list button {
    min-height: max(var(--touch), 2.25rem);
    padding: 0 0.75rem;
    border-left: 2px solid var(--line);
    border-radius: 0;
    color: var(--faint);
    font-size: 0.875rem;
  }
  .list button[aria-pressed='true'] {
    border-color: var(--ink);
    color: var(--ink);
    font-weight: 600;
  }
  section {
    padding: 0.75rem 1rem 1rem;
  }
  section > h2 {
    padding-bottom: 0.5rem;
  }
  @media (max-width: 767px) {
    .pages {
      grid-template-columns: minmax(0, 1fr);
    }
    .list {
      display: flex;
      flex-wrap: wrap;
    }
    .list button {
      padding: 0 0.5rem;
      border-left: 0;
      border-bottom: 2px solid transparent;
      font-size: 0.8125rem;
    }
    section {
      padding-inline: 0.75rem;
    }
  }
`;

export const sectionStyle = css`
  :host {
    display: grid;
    gap: 1rem;
    padding: 0;
  }
  form,
  .form {
    display: flex;
    flex-wrap: wrap;
    align-items: end;
    gap: 0.5rem 0.75rem;
  }
  .labelled {
    display: grid;
    gap: 0.25rem;
    color: var(--faint);
    font-size: 0.75rem;
  }
  .labelled .field {
    color: var(--ink);
  }
  .set {
    color: var(--ink);
    font-size: 0.8125rem;
    line-height: var(--touch);
  }
  .refused {
    display: block;
    max-width: 16rem;
    padding: 0.125rem 0;
    color: var(--wrong);
    font-size: 0.75rem;
    line-height: 1rem;
    overflow-wrap: anywhere;
  }
  .field[aria-invalid] {
    border-color: var(--wrong);
  }
  table {
    justify-self: start;
    border-collapse: collapse;
    font-size: 0.8125rem;
  }
  .wide {
    overflow-x: auto;
  }
  th {
    padding: 0.25rem 0.5rem 0.25rem 0;
    border-bottom: var(--hair) solid var(--line);
    color: var(--faint);
    font-size: 0.75rem;
    font-weight: 400;
    text-align: left;
    white-space: nowrap;
  }
  td {
    padding: 0.25rem 0.75rem 0.25rem 0;
    border-bottom: var(--hair) solid var(--line);
  }
  /* Lines to write on: a table of boxes would be a wall. */
  tr:has(.field) td {
    border-bottom-color: transparent;
    vertical-align: top;
  }
  tr:has(.field) td:not(:has(.field, button)) {
    line-height: var(--touch);
  }
  td .field {
    width: 6.5rem;
    padding-inline: 0.25rem;
    border-color: transparent transparent var(--edge);
    border-radius: 0;
    background: none;
  }
  td select.field {
    width: auto;
    min-width: 8rem;
  }
  td .field:hover:not(:disabled),
  td .field:focus {
    background: var(--well);
  }
  td.name .field {
    width: 13rem;
  }
  @media (max-width: 639px) {
    td .field {
      width: 5rem;
    }
    td.name .field {
      width: 9rem;
    }
    td select.field {
      min-width: 0;
    }
    td.end:has(button + button) {
      display: grid;
      gap: 0.25rem;
      padding-right: 0;
    }
  }
  td.end {
    text-align: right;
  }
  input[type='file'] {
    max-width: 100%;
    font-size: 0.8125rem;
  }
  input[type='file']::file-selector-button {
    min-height: var(--touch);
    margin-right: 0.75rem;
    padding: 0 0.75rem;
    border: var(--hair) solid var(--edge);
    border-radius: 2px;
    background: var(--part);
    color: inherit;
    font: inherit;
  }
  .secret {
    display: grid;
    gap: 0.5rem;
    padding: 0.75rem;
    border: var(--hair) solid var(--ink);
    background: var(--well);
    font-size: 0.8125rem;
  }
  .secret code {
    font-family: var(--mono);
    font-size: 0.9375rem;
    overflow-wrap: anywhere;
    user-select: all;
  }
  hr {
    width: 100%;
    margin: 0;
    border: 0;
    border-top: var(--hair) solid var(--line);
  }
  .ticks {
    display: flex;
    flex-wrap: wrap;
    gap: 0 1.25rem;
  }
  .ticks label,
  label.row {
    min-height: var(--touch);
  }
  .key:disabled {
    color: var(--faint);
    border-color: var(--line);
  }
  .busy::after {
    content: ' …';
  }
`;

// A lane, and as much of uPlot's own style as it needs. The sheet's outline, caret and so on are
// never seen: they carry the colours that the canvas takes.
import { css } from 'lit';

export const laneStyle = css`
  :host {
    display: grid;
    grid-template-columns: 11rem minmax(0, 1fr);
    flex: 1 0 auto;
    border-top: var(--hair) solid var(--line);
  }
  :host([switched]) {
    flex: none;
  }
  .head {
    display: grid;
    grid-template-columns: minmax(0, 1fr) auto;
    align-content: start;
    gap: 0 0.5rem;
    padding: 0.5rem 0.25rem 0.25rem 0.75rem;
    border-right: var(--hair) solid var(--line);
  }
  .name {
    overflow: hidden;
    text-overflow: ellipsis;
    white-space: nowrap;
    font-size: 0.8125rem;
    font-weight: 600;
  }
  .id {
    grid-row: 2;
    grid-column: 1 / -1;
    color: var(--faint);
    font-size: 0.6875rem;
  }
  .value {
    grid-row: 3;
    grid-column: 1 / -1;
    min-height: 1.5rem;
    font-size: var(--value-size);
    white-space: nowrap;
  }
  small {
    color: var(--faint);
    font-size: 0.6875rem;
  }
  .remove {
    grid-row: 1 / 3;
    grid-column: 2;
    display: grid;
    place-items: center;
    width: var(--touch);
    min-height: var(--touch);
    color: var(--faint);
  }
  .remove:hover {
    color: var(--ink);
  }
  .remove svg {
    width: 0.875rem;
    height: 0.875rem;
    fill: none;
    stroke: currentcolor;
    stroke-width: 1.5;
  }
  .sheet {
    position: relative;
    min-height: 7rem;
    overflow: hidden;
    color: var(--ink);
    background-color: var(--halo);
    background-clip: text;
    border: 0 solid var(--line);
    outline: 0 solid var(--edge);
    caret-color: var(--faint);
  }
  :host([switched]) .sheet {
    min-height: 3.5rem;
  }
  :host([lowest]) .sheet {
    min-height: calc(7rem + 24px);
  }
  :host([switched][lowest]) .sheet {
    min-height: calc(3.5rem + 24px);
  }
  @media (max-width: 639px) {
    :host {
      grid-template-columns: minmax(0, 1fr);
    }
    .head {
      grid-template-columns: minmax(0, auto) auto minmax(max-content, 1fr) auto;
      align-items: center;
      border-right: 0;
      padding-block: 0;
    }
    .name,
    .id,
    .value,
    .remove {
      grid-area: 1 / 1;
    }
    .id {
      grid-column: 2;
    }
    .value {
      grid-column: 3;
    }
    .remove {
      grid-column: 4;
    }
    .value {
      min-height: 0;
      justify-self: end;
    }
  }
  .uplot,
  .uplot * {
    box-sizing: border-box;
  }
  /* It takes the sheet's size, and never makes it. */
  .uplot {
    position: absolute;
    inset: 0;
  }
  .u-wrap {
    position: relative;
    user-select: none;
    -webkit-user-select: none;
  }
  .u-over,
  .u-under,
  .u-axis {
    position: absolute;
  }
  .u-under {
    overflow: hidden;
  }
  .uplot canvas {
    display: block;
    position: relative;
    width: 100%;
    height: 100%;
  }
`;

// Rails and slots, for a bench of this bus or of another board.
import { css } from 'lit';

export const railStyle = css`
  .rails {
    display: grid;
    gap: 0.75rem;
  }
  .group {
    font-size: 0.8125rem;
    font-weight: 600;
  }
  .half {
    display: grid;
    gap: 0.75rem;
  }
  .quarter {
    display: flex;
    flex-wrap: wrap;
    gap: 0.25rem;
    padding: 0.25rem;
    background: var(--rail);
    border: solid var(--line);
    border-width: var(--hair) 0;
  }
  .slot {
    flex: 1 1 100%;
    min-width: 0;
  }
  .empty {
    display: grid;
    place-items: center;
    flex: 1 1 2.5rem;
    min-height: 2rem;
    border: var(--hair) solid var(--line);
    color: var(--faint);
    font-size: 0.875rem;
    font-weight: 300;
  }
  .stale {
    --on: var(--edge);
    --on-core: var(--edge);
    --halo: transparent;
    --lit: var(--glass);
    --lit-dot: var(--glass-dot);
    --lit-ink: var(--glass-ink);
    --ink: var(--faint);
    --metal: var(--edge);
  }
  /* Hands that are told somewhere else before they arrive would glide all the time and show nothing. */
  .fast {
    --move: 0ms;
  }
  .stale .slot {
    outline: var(--hair) dashed var(--edge);
    outline-offset: -1px;
  }

  @media (max-width: 639px) {
    .half,
    .rails {
      gap: 0.5rem;
    }
  }
  @media (min-width: 640px) {
    .quarter {
      flex-wrap: nowrap;
    }
    .slot {
      flex: 4 1 0;
      min-width: 10rem;
    }
    .slot.digital-output,
    .slot.digital-input,
    .slot.servo,
    .slot.lcd {
      flex-grow: 6;
    }
    .slot.motor,
    .slot.analogue-input {
      flex-grow: 5;
    }
    .slot.ir {
      flex-grow: 3;
    }
    .slot.empty {
      flex: 0 0 2rem;
      min-width: 2rem;
      align-content: start;
      padding-top: 0.75rem;
    }
  }
  @media (min-width: 640px) and (max-width: 1199px) {
    .quarter {
      flex-wrap: wrap;
    }
    .slot {
      min-width: 17rem;
    }
  }
  @media (min-width: 1200px) {
    .half {
      display: flex;
      gap: 0.25rem;
      padding: 0.25rem;
      background: var(--rail);
      border: solid var(--line);
      border-width: var(--hair) 0;
    }
    .quarter {
      display: contents;
    }
  }
`;

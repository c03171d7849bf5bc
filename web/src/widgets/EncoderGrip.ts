// A hand on an encoder: it turns step by step, as far as the hand goes round, or by arrow keys.
const stepAngle = 15; // degrees

export class EncoderGrip {
  private last: number | null = null; // the angle up to which steps were made

  constructor(private readonly turned: (steps: number) => void) {}

  readonly down = (event: PointerEvent): void => {
    (event.currentTarget as Element).setPointerCapture(event.pointerId);
    this.last = angleOf(event);
  };

  readonly move = (event: PointerEvent): void => {
    if (this.last === null) return;
    const way = ((angleOf(event) - this.last + 540) % 360) - 180; // the shorter way round
    const steps = Math.trunc(way / stepAngle);
    if (steps === 0) return;
    this.last = (this.last + steps * stepAngle) % 360;
    this.turned(steps);
  };

  readonly up = (): void => {
    this.last = null;
  };

  readonly key = (event: KeyboardEvent): void => {
    const steps = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1 }[event.key];
    if (steps === undefined) return;
    event.preventDefault();
    this.turned(steps);
  };
}

function angleOf(event: PointerEvent): number {
  const box = (event.currentTarget as Element).getBoundingClientRect();
  const x = event.clientX - box.left - box.width / 2;
  const y = event.clientY - box.top - (box.height * 42) / 96; // its axis in the drawing
  return (Math.atan2(x, -y) * 180) / Math.PI;
}

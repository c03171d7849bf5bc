// Angles and arcs. An angle is in degrees, 0 is up, clockwise is more; a dial's middle is 0, 0.

export interface Dial {
  from: number; // the angle of the least value
  to: number;
}

export const horn: Dial = { from: -90, to: 90 };
export const round: Dial = { from: -135, to: 135 };

const digits = (value: number) => String(Math.round(value * 100) / 100);

export function angleOf(value: number, min: number, max: number, dial: Dial): number {
  const share = max === min ? 0 : (value - min) / (max - min);
  return dial.from + Math.min(1, Math.max(0, share)) * (dial.to - dial.from);
}

// The value under a finger; what is below the dial belongs to its nearer end.
export function valueAt(x: number, y: number, min: number, max: number, dial: Dial): number {
  const angle = (Math.atan2(x, -y) * 180) / Math.PI;
  const share = (angle - dial.from) / (dial.to - dial.from);
  return min + Math.min(1, Math.max(0, share)) * (max - min);
}

// The style of what is turned. A hand that glides by its `transform` would get a layer of its own
// for that while, and each layer costs more than painting the hand anew.
export function turnedBy(angle: number): string {
  return `--turn: ${angle}deg`;
}

export function pointAt(angle: number, radius: number): [number, number] {
  const turn = (angle * Math.PI) / 180;
  return [radius * Math.sin(turn), -radius * Math.cos(turn)];
}

export function arc(from: number, to: number, radius: number): string {
  const [least, most] = from < to ? [from, to] : [to, from];
  const [x0, y0] = pointAt(least, radius);
  const [x1, y1] = pointAt(most, radius);
  const long = most - least > 180 ? 1 : 0;
  return `M${digits(x0)} ${digits(y0)}A${radius} ${radius} 0 ${long} 1 ${digits(x1)} ${digits(y1)}`;
}

export function ticks(dial: Dial, count: number, inner: number, outer: number): string {
  const step = (dial.to - dial.from) / count;
  return Array.from({ length: count + 1 }, (_, tick) => {
    const angle = dial.from + tick * step;
    const [x0, y0] = pointAt(angle, inner);
    const [x1, y1] = pointAt(angle, outer);
    return `M${digits(x0)} ${digits(y0)}L${digits(x1)} ${digits(y1)}`;
  }).join('');
}

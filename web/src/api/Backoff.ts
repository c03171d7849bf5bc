// How long to wait before the next try: 1 s, doubling to 30 s, each a quarter shorter at random so
// that many pages do not come back at the same moment.

const first = 1000;
const longest = 30_000;

export class Backoff {
  private tries = 0;

  constructor(private readonly random: () => number = Math.random) {}

  next(): number {
    const whole = Math.min(longest, first * 2 ** this.tries);
    this.tries = Math.min(this.tries + 1, 10);
    return Math.round(whole * (0.75 + 0.25 * this.random()));
  }

  reset(): void {
    this.tries = 0;
  }
}

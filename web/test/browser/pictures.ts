// Pictures of the page, compared dot by dot.
import pixelmatch from 'pixelmatch';
import { PNG } from 'pngjs';

// How many dots differ by more than what another machine's smoothing makes.
export function differing(one: Buffer, other: Buffer): number {
  const [a, b] = [PNG.sync.read(one), PNG.sync.read(other)];
  if (a.width !== b.width || a.height !== b.height) return Infinity;
  return pixelmatch(a.data, b.data, undefined, a.width, a.height, { threshold: 0.15 });
}

// Pictures of the page, compared dot by dot.
import pixelmatch from 'pixelmatch';
import { PNG } from 'pngjs';

// How many dots differ by more than what another machine's smoothing makes.
export function differing(one: Buffer, other: Buffer): number {
  const [a, b] = [PNG.sync.read(one), PNG.sync.read(other)];
  if (a.width !== b.width || a.height !== b.height) return Infinity;
  return pixelmatch(a.data, b.data, undefined, a.width, a.height, { threshold: 0.15 });
}

const alike = 150; // the sum of the squares of what red, green and blue differ by

function apart(one: number, other: number): number {
  const by = (bits: number) => (((one >> bits) & 255) - ((other >> bits) & 255)) ** 2;
  return by(0) + by(8) + by(16);
}

// The same to the eye, and smaller: of colours that are alike the one that is met most stands for all.
export function packed(picture: Buffer): Buffer {
  const png = PNG.sync.read(picture);
  const dots = new Uint32Array(png.data.buffer, png.data.byteOffset, png.data.length / 4);
  const counts = new Map<number, number>();
  for (const dot of dots) counts.set(dot, (counts.get(dot) ?? 0) + 1);
  const standing = new Map<number, number>(); // by the colour that it stands for
  const palette: number[] = [];
  for (const [colour] of [...counts].sort(([, a], [, b]) => b - a)) {
    const other = palette.find((each) => apart(each, colour) < alike);
    if (other === undefined) palette.push(colour);
    standing.set(colour, other ?? colour);
  }
  for (const [at, dot] of dots.entries()) dots[at] = standing.get(dot) ?? dot;
  return PNG.sync.write(png, { colorType: 2, deflateLevel: 9, deflateStrategy: 0, filterType: 0 });
}

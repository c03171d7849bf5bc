// What the page's first look weighs.
import { readdirSync, readFileSync, statSync } from 'node:fs';
import { join } from 'node:path';

export const dist = join(process.env['QELM_ROOT'] ?? '', 'web/dist');

// What the first look needs: the index and all that it and these name at their beginning.
function firstFiles(): string[] {
  const names = readdirSync(dist).filter((name) => /\.(html|js|css|svg)$/.test(name));
  const found = new Set(['index.html']);
  for (const file of found) {
    const content = readFileSync(join(dist, file), 'utf8').replace(/\bimport\([^)]*\)/g, '');
    for (const name of names) if (content.includes(name)) found.add(name);
  }
  return [...found];
}

// Compressed, in bytes.
export function firstBytes(): number {
  return firstFiles().reduce((sum, name) => sum + statSync(join(dist, `${name}.br`)).size, 0);
}

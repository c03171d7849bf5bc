import assert from 'node:assert/strict';
import { readdirSync, readFileSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

const dist = join(process.env['QELM_ROOT'] ?? '', 'web/dist');

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

test('the first look takes at most 90 KB, compressed', { skip: !existsHere() }, () => {
  const bytes = firstFiles().reduce(
    (sum, name) => sum + statSync(join(dist, `${name}.br`)).size,
    0,
  );
  console.log(`first look: ${(bytes / 1024).toFixed(1)} KB`);
  assert.ok(bytes > 10_000 && bytes <= 90 * 1024, `${bytes} bytes`);
});

function existsHere(): boolean {
  try {
    return statSync(dist).isDirectory();
  } catch {
    return false;
  }
}

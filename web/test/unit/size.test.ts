import assert from 'node:assert/strict';
import { statSync } from 'node:fs';
import { test } from 'node:test';

import { dist, firstBytes } from './firstLook.js';

test('the first look takes at most 90 KB, compressed', { skip: !existsHere() }, () => {
  const bytes = firstBytes();
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

// Every view in its sizes and themes, compared with the pictures in docs/screens. With QELM_KEEP=1
// they are taken anew; look at them before they are committed. What differs is put into QELM_SCREENS.
import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';

import { eventually, type Look, type Person } from './Person.js';
import { differing, packed } from './pictures.js';
import { now } from './scenes.js';
import { type Shot, shots } from './shots.js';
import { Stage } from './Stage.js';

const kept = join(process.env['QELM_ROOT'] ?? '', 'docs/screens');
const failed = process.env['QELM_SCREENS'] ?? join(tmpdir(), 'qelm-screens');
const tolerance = 150; // dots: less than the edges of a button that has moved

const stage = new Stage();

async function taken(shot: Shot, look: Look): Promise<Person> {
  const plots = shot.name === 'plots' ? ['F.3', '5.0'] : [];
  stage.hub.isAway = false;
  const person = await stage.arrives(shot.shown, { ...look, now, plots }, shot.view);
  await shot.does?.(person, stage.hub);
  await person.page.getByText(shot.shows).first().waitFor();
  const count = (path: string) => person.page.locator(path).count();
  await eventually('every plate is drawn', async () => {
    return (await count('qelm-plate')) === (await count('qelm-plate section.plate'));
  });
  return person;
}

function compare(name: string, picture: Buffer): void {
  if (process.env['QELM_KEEP']) {
    writeFileSync(join(kept, name), packed(picture));
    return;
  }
  const dots = differing(readFileSync(join(kept, name)), picture);
  if (dots <= tolerance) return;
  mkdirSync(failed, { recursive: true });
  writeFileSync(join(failed, name), picture);
  assert.fail(`${dots} dots of ${name} differ; see ${failed}`);
}

for (const shot of shots)
  for (const size of shot.sizes)
    for (const theme of ['dark', 'light'] as const)
      test(`${shot.name} at ${String(size.width)}, ${theme}, looks as it did`, async () => {
        const anna = await taken(shot, { ...size, theme });
        const width = await anna.page.evaluate(() => document.documentElement.scrollWidth);
        assert.equal(width, size.width);
        const picture = await anna.page.screenshot({ fullPage: shot.isWhole ?? false });
        compare(`${shot.name}-${String(size.width)}-${theme}.png`, picture);
        await anna.leaves();
      });

test('a button that has moved by its edge is noticed', async () => {
  const [bench] = shots;
  if (!bench) throw new Error('no bench');
  const anna = await taken(bench, { width: 1440, height: 900 });
  const first = await anna.page.screenshot();
  assert.ok(differing(first, await anna.page.screenshot()) <= tolerance);
  await anna.page.getByRole('button', { name: 'Arrange' }).evaluate((button) => {
    button.style.translate = '4px';
  });
  assert.ok(differing(first, await anna.page.screenshot()) > tolerance);
  await anna.leaves();
});

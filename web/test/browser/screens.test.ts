// Pictures of the page in its sizes and themes, for people to look at: QELM_SCREENS is their folder.
import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { closeBrowser, Person } from './Person.js';
import { Site } from './Site.js';

const folder = process.env['QELM_SCREENS'] ?? join(tmpdir(), 'qelm-screens');
const sizes = [
  { width: 320, height: 640 },
  { width: 768, height: 1024 },
  { width: 1440, height: 900 },
  { width: 2560, height: 1440 },
];

let site: Site;

before(async () => {
  mkdirSync(folder, { recursive: true });
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', {
    bus: 'bench',
    cards: { 0: 'Arm', 5: 'Relays', E: 'Counter', F: 'Front panel' },
    channels: { '5.0': 'Lamp', '5.1': 'Fan', '5.2': 'Pump', '3.6': 'Lid closed', '0.0': 'Elbow' },
  });
  await site.api('PATCH', '/api/setup', {
    channels: { 'F.3': { unit: 'V', max: 5, decimals: 2 } },
    cards: { 4: { signed: true } },
  });
  await site.api('PATCH', '/api/cards/5', { 0: true, 2: true });
  await site.api('PATCH', '/api/cards/0', { 0: 40, 1: 200 });
  await site.api('PATCH', '/api/cards/4', { 0: 60, 1: -35 });
  await site.api('POST', '/api/cards/E/control', { do: 'clear' });
  await site.api('POST', '/api/cards/E/control', { do: 'light-on' });
  await site.api('POST', '/api/cards/E/text', { row: 1, column: 3, text: 'Tail of the cat' });
  await site.bus('press 3 06');
  await site.bus('set F 03 A0');
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

for (const theme of ['dark', 'light'] as const)
  for (const size of sizes)
    test(`the bench at ${size.width}, ${theme}, is not wider than the screen`, async () => {
      const anna = await Person.arrives({ ...size, theme });
      await anna.sees('Lid closed', 'on');
      const width = await anna.page.evaluate(() => document.documentElement.scrollWidth);
      assert.equal(width, size.width);
      const path = join(folder, `bench-${size.width}-${theme}.png`);
      await anna.page.screenshot({ path, fullPage: true });
      await anna.leaves();
    });

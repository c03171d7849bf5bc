// What the page says when something is gone, and that it comes back by itself.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, Person } from './Person.js';
import { Site } from './Site.js';

let site: Site;
let anna: Person;

before(async () => {
  site = await Site.start();
  await site.killDaemon();
  await site.killHub();
  await site.startHub();
  anna = await Person.arrives();
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

test('an empty bench says what it waits for, and fills by itself', async () => {
  await anna.reads('The bench is empty');
  await site.startDaemon();
  await anna.sees('Line 6', '2 of them'); // of card 3 and of card 5
});

test('a pulled cable is said, and a press waits for it', async () => {
  await site.api('PATCH', '/api/names', { channels: { '5.0': 'Lamp', '3.6': 'Door' } });
  await site.bus('cable pull');
  await anna.reads('The adapter is gone: outputs wait until its cable is back.');
  await anna.press('Lamp');
  await anna.part('Lamp, waits for the adapter').waitFor();
  await site.bus('cable plug');
  await anna.doesNotRead(/The adapter is gone/);
  await anna.sees('Lamp', 'on');
});

test('a hub that is killed is said; the page comes back with what was missed', async () => {
  await site.killHub();
  await anna.reads(/Lost at/);
  await site.bus('press 3 06');
  await site.startHub();
  await anna.presses('Try now').catch(() => undefined); // it may be quicker
  await anna.doesNotRead(/Lost at/);
  await anna.sees('Door', 'on');
});

test('a daemon that is killed is said, and its cards are not called current', async () => {
  await site.killDaemon();
  await anna.reads('The daemon is gone: what you see is from before.');
  await site.startDaemon();
  await anna.doesNotRead(/The daemon is gone/);
  await anna.sees('Door', 'on');
  assert.deepEqual(anna.complaints, []);
});

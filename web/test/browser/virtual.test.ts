// A virtual bus has hands on the page: what they do goes the long way, over the bus and back.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { Site } from './Site.js';

let site: Site;
let anna: Person;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', { channels: { '3.6': 'Door', 'F.3': 'Supply' } });
  anna = await Person.arrives();
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

test('a contact that is pressed on the page is reported by the bus', async () => {
  await anna.page.getByRole('switch', { name: 'Door', exact: true }).click();
  await anna.sees('Door', 'on');
  assert.match(await site.bus('show 3'), /Lines 40 00/);
  await anna.press('Door');
  await anna.sees('Door', 'off');
});

test('a knob turns by mouse and by keys', async () => {
  await anna.turns('Supply', 0);
  await eventually('the knob is in the middle', async () =>
    /Values .. .. .. (7F|80)/.test(await site.bus('show F')),
  );
  await anna.keys('Supply', 'End');
  await anna.sees('Supply', '255');
});

test('a key is held as long as the mouse is', async () => {
  await anna.page.getByRole('button', { name: 'Key 05', exact: true }).hover();
  await anna.page.mouse.down();
  await eventually('key 05 is held', async () => /05/.test(await site.bus('show 8')));
  await anna.reads('key 05');
  await anna.page.mouse.up();
  await anna.reads('no key');
});

test('an encoder turns by keys', async () => {
  const encoder = anna.page.getByRole('spinbutton', { name: 'Encoder, to turn' });
  for (let step = 0; step < 3; ++step) await encoder.press('ArrowRight');
  await eventually(
    'three steps',
    async () => (await encoder.getAttribute('aria-valuenow')) === '3',
  );
});

test('a cable that is pulled on the page is missed, and is back', async () => {
  await anna.presses('Pull the cable');
  await anna.reads('The adapter is gone: outputs wait until its cable is back.');
  await anna.presses('Plug the cable in');
  await anna.doesNotRead(/The adapter is gone/);
});

test('a fault is switched on, and off', async () => {
  const late = anna.page.getByRole('button', { name: 'Late replies', pressed: true });
  await anna.presses('Late replies');
  await late.waitFor();
  assert.match(await site.bus('status'), /fault late 40ms/);
  await anna.presses('Late replies');
  await late.waitFor({ state: 'detached' });
  assert.doesNotMatch(await site.bus('status'), /fault/);
});

test('a card is pulled and plugged in again, and another comes into a free slot', async () => {
  await anna.presses('Pull card 3');
  await anna.presses('Plug card 3 in');
  await anna.page.getByRole('button', { name: 'Pull card 3' }).waitFor();
  await anna.page
    .getByRole('combobox', { name: 'Plug a new card in slot 1' })
    .selectOption('servo');
  await eventually('a servo card at 1', async () =>
    /card 1 servo/.test(await site.bus('show 1').catch(String)),
  );
  await anna.presses('Search the bus');
  await anna.page.getByRole('button', { name: 'Pull card 1' }).waitFor();
  assert.deepEqual(anna.complaints, []);
});

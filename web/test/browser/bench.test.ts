// The bench with the real daemon, the virtual bus and the hub behind it.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { Site } from './Site.js';

let site: Site;
let anna: Person;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', {
    channels: { '5.0': 'Lamp', '5.7': 'Fan', '3.6': 'Door', '0.0': 'Elbow', '4.0': 'Belt' },
  });
  anna = await Person.arrives();
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

test('a switch that is pressed is a frame on the bus', async () => {
  await site.frame('10 05 02 FE FF', () => anna.press('Lamp'));
  await anna.sees('Lamp', 'on');
  await site.frame('10 05 02 FF FF', () => anna.press('Lamp'));
  await anna.sees('Lamp', 'off');
});

test('an input that is pressed is seen, and seen again when it is let go', async () => {
  await anna.sees('Door', 'off');
  await site.bus('press 3 06');
  await anna.sees('Door', 'on');
  await site.bus('release 3 06');
  await anna.sees('Door', 'off');
});

test('what is written stands on the glass, dot by dot', async () => {
  await anna.presses('Clear');
  await anna.writes(2, 'Tail of the cat');
  const ink = anna.page.getByRole('img', { name: /^Glass:/ }).locator('.ink');
  // The dots of "T" at the beginning of the second row: nine dots below the first.
  const top = [0, 1, 2, 3, 4].map((x) => `M${x} 9h0.84v0.84h-0.84z`).join('');
  await eventually('a T on the glass', async () =>
    ((await ink.nth(1).getAttribute('d')) ?? '').startsWith(top),
  );
  assert.equal(await ink.nth(0).getAttribute('d'), '');
  assert.match(await site.bus('show E'), /Tail of the cat/);
});

test('the cursor stands behind what was written, and blinks', async () => {
  await anna.presses('Clear');
  await site.api('POST', '/api/cards/E/text', { row: 1, column: 3, text: 'AB' });
  await anna.presses(/^Cursor/);
  await anna.presses(/^Blink/);
  // Row 1, column 5: six dots a column, nine a row.
  await eventually('a cursor in row 1, column 5', async () =>
    ((await anna.page.locator('.cursor').first().getAttribute('d')) ?? '').startsWith('M30 16h5'),
  );
  const block = await anna.page.locator('.blink').first().getAttribute('d');
  assert.equal(block, 'M30 9h5v8h-5z');
});

test('a servo turns by mouse', async () => {
  await site.frame('10 00 06 FF', () => anna.turns('Elbow, not known yet, position', 90));
  await anna.sees('Elbow, position', '255');
});

test('a servo turns by keys', async () => {
  await anna.keys('Elbow, position', 'Home', 'ArrowUp', 'ArrowUp', 'PageUp', 'ArrowLeft');
  await anna.sees('Elbow, position', '11');
  await eventually('the servo is there', async () => /0B/.test(await site.bus('show 0')));
});

test('a servo turns by a finger', async () => {
  const phone = await Person.arrives({ width: 390, height: 800, touch: true });
  await phone.turnsByFinger('Elbow, position', -90);
  await phone.sees('Elbow, position', '0');
  await anna.sees('Elbow, position', '0');
  await phone.leaves();
});

test('a name is edited where it stands, and is there in another browser', async () => {
  await anna.renames('Lamp', 'Reading lamp');
  const ben = await Person.arrives();
  await ben.sees('Reading lamp', 'off');
  await ben.renames('Reading lamp', 'Lamp');
  await anna.sees('Lamp', 'off');
  await ben.leaves();
});

test('a key that is pressed and an encoder that turns are shown', async () => {
  await site.bus('press 8 05');
  await anna.sees('Key pad', 'key 05');
  await site.bus('release 8');
  await anna.sees('Key pad', 'no key');
  await site.bus('turn 8 3');
  await anna.reads(/× 3/);
});

test('an infrared code is listed as soon as it is sent', async () => {
  await anna.page.getByRole('textbox', { name: /hexadecimal/ }).fill('43 4f');
  await anna.presses('Send');
  await anna.reads('43 4F');
});

test('a code that gets a name is a button', async () => {
  const sent = anna.page.getByRole('list', { name: 'Sent' }).getByRole('listitem');
  await anna.renames('43 4F', 'TV on');
  await anna.presses(/^TV on$/);
  await eventually('it was sent again', async () => (await sent.count()) === 2);
  await anna.page.getByRole('button', { name: 'Rename TV on' }).first().click();
  await anna.page.getByRole('textbox', { name: 'New name of TV on' }).fill('');
  await anna.page.keyboard.press('Enter');
  await eventually(
    'the button is gone',
    async () => (await anna.page.getByRole('button', { name: /^TV on$/ }).count()) === 0,
  );
});

test('a motor whose silent range nobody has asked for stands still, not backward', async () => {
  await site.api('POST', '/api/console', { line: 'SETMSR0:4=10' });
  await site.api('PUT', '/api/channels/4.0', { value: 200 });
  await anna.sees('Belt, drive', '200');
  await site.frame('10 04 04 80 00 00', () => anna.holds('All outputs off'));
  await anna.reads('Lines and motors are off. Servos and displays stay.');
  await anna.sees('Belt, drive', '128');
  await anna.presses('Undo');
  await anna.sees('Belt, drive', '200');
});

test('a press of all outputs off that is too short says what it needs', async () => {
  await anna.presses('All outputs off');
  await anna.reads(/^Hold for a second\. Lines go off/);
});

test('all outputs off needs a second, and is undone', async () => {
  await site.api('PATCH', '/api/cards/5', { 0: true, 7: true });
  await anna.sees('Fan', 'on');
  await anna.presses('All outputs off');
  await anna.sees('Fan', 'on');
  await anna.holds('All outputs off');
  await anna.sees('Lamp', 'off');
  await anna.sees('Fan', 'off');
  await anna.presses(/^Undo/);
  await anna.sees('Lamp', 'on');
  await anna.sees('Fan', 'on');
});

test('all outputs off and its undoing are within reach of the keyboard', async () => {
  const { keyboard } = anna.page;
  await site.api('PATCH', '/api/cards/5', { 0: true, 7: true });
  await anna.sees('Lamp', 'on');
  await anna.page.getByRole('button', { name: 'All outputs off' }).focus();
  await keyboard.down('Space');
  const undo = anna.page.getByRole('button', { name: 'Undo', exact: true });
  await undo.waitFor();
  await keyboard.down('Space'); // it repeats as long as it is held
  await keyboard.up('Space');
  await anna.sees('Lamp', 'off');
  await keyboard.press('Space');
  await undo.waitFor({ state: 'detached' });
  await anna.sees('Lamp', 'on');
  const hold = anna.page.getByRole('button', { name: 'All outputs off' });
  await eventually('the keyboard is back', async () =>
    hold.evaluate((button) => button.matches(':focus')),
  );
});

test('what the hub refuses is said in its words', async () => {
  await anna.renames('Fan', 'Fan\u0007');
  await anna.reads(/control character/);
  await anna.page.keyboard.press('Escape');
  await anna.sees('Fan', 'on');
  assert.deepEqual(anna.complaints, []);
});

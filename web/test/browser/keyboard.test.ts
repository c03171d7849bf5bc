// What a person does who has only keys: the Tab key finds it, Enter, Space and arrows do it. What comes of
// it is what the hub is asked.
import assert from 'node:assert/strict';
import { after, test } from 'node:test';

import { snapshot } from '../unit/kit.js';
import { Keys } from './Keys.js';
import { eventually, type Person } from './Person.js';
import { eightCards, twoBoards, virtualBus } from './scenes.js';
import { Stage } from './Stage.js';
import type { Scene } from './StandIn.js';

const eight = { snapshot: snapshot([...eightCards]) };
const stage = new Stage();
let anna: Person;
let keys: Keys;

async function opens(view: string, shows: string, shown: Partial<Scene> = eight): Promise<void> {
  anna = await stage.arrives(shown, { plots: ['F.3'] }, view);
  await anna.page.getByText(shows).first().waitFor();
  keys = new Keys(anna);
  await keys.begin();
  stage.hub.asked.length = 0;
}

function asks(request: string | RegExp): Promise<void> {
  const isMeant = (each: string) =>
    typeof request === 'string' ? each === request : request.test(each);
  return eventually(String(request), () => Promise.resolve(stage.hub.asked.some(isMeant)));
}

// On to something, what is pressed there, and what the hub is asked for then.
async function does(
  name: string | RegExp,
  pressed: string[],
  ...requests: string[]
): Promise<void> {
  await keys.to(name);
  await keys.press(...pressed);
  for (const request of requests) await asks(request);
}

test('the views are gone through, and a name is edited', async () => {
  await opens('journal', 'started');
  await keys.to('Bench');
  await keys.press('Enter');
  await anna.reads('Servos');
  await keys.begin();
  await does('Rename bench', ['Enter', 'ControlOrMeta+A']);
  await keys.types('desk');
  await keys.press('Enter');
  await asks('names.merge {"bus":"desk"}');
  await does('Rename Relays', ['Enter']);
  await keys.types('never mind');
  await keys.press('Escape');
  await keys.isAt('Rename Relays');
  assert.ok(!stage.hub.asked.some((each) => each.includes('never mind')));
  await anna.leaves();
});

test('switches, dials, glass and infrared are worked', async () => {
  await opens('bench', 'Servos');
  await does('Servo 0, position', ['ArrowUp'], 'channels.set {"id":"0.0","value":41}');
  await does('Servo 1, position', ['End', 'Home'], 'channels.set {"id":"0.1","value":0}');
  await does('Drive 0, drive', ['PageDown'], 'channels.set {"id":"4.0","value":30}');
  await does('Control byte, bit 7', ['Space'], 'channels.set {"id":"4.3","value":71}');
  await does('Line 0', ['Enter'], 'channels.set {"id":"5.0","value":false}');
  await does('Line 1', ['Space'], 'channels.set {"id":"5.1","value":true}');
  await keys.to('Bytes in hexadecimal, such as 434F');
  await keys.types('4A');
  await keys.press('Enter');
  await asks('ir.send {"address":"9","bytes":"4A"}');
  await does(/^Light/, ['Space'], 'lcd.control {"address":"E","do":"light-off"}');
  await does('Clear', ['Enter'], 'lcd.control {"address":"E","do":"clear"}');
  await anna.leaves();
});

test('a row of the glass is written', async () => {
  await opens('bench', 'Servos');
  await does('Row 2', ['Enter', 'ControlOrMeta+A']);
  await keys.types('Hello');
  await keys.press('Enter');
  await asks(/^lcd\.write .*"row":1,"column":0,"text":"Hello *"/);
  await anna.leaves();
});

test('all outputs go off while a key is held, and not sooner', async () => {
  await opens('bench', 'Servos');
  await keys.to('All outputs off');
  await keys.press('Enter');
  assert.ok(!stage.hub.asked.some((each) => each.startsWith('cards.set')));
  await anna.page.keyboard.down('Space');
  await asks(/^cards\.set {"address":"5"/);
  await anna.page.keyboard.up('Space');
  await anna.leaves();
});

test('a channel is sent to the plots by its menu', async () => {
  await opens('bench', 'Servos');
  await keys.to('Servo 0, position');
  await keys.press('Shift+F10');
  await anna.page.getByRole('menuitem', { name: 'Plot Servo 0' }).waitFor();
  await keys.press('Escape');
  await keys.isAt('Servo 0, position');
  await keys.press('Shift+F10');
  await anna.page.getByRole('menuitem', { name: 'Plot Servo 0' }).waitFor();
  await keys.press('Enter');
  await anna.page.getByRole('button', { name: 'Take Servo 0 away' }).waitFor();
  await anna.leaves();
});

test('a virtual bus is pressed, turned and pulled', async () => {
  await opens('bench', 'Pull the cable', virtualBus);
  const hand = (line: string) => `virtual.run {"line":"${line}"}`;
  await does('Plug a new card in slot 1', ['ArrowDown'], hand('card 1 plug digital-output'));
  await does('Pull card 3', ['Enter'], hand('card 3 pull'));
  await does('Line 0', ['Space'], hand('press 3 00'));
  await does('Key 01', ['ArrowRight']);
  await keys.isAt('Key 02');
  await keys.press('Space');
  await asks(hand('press 8 02'));
  await asks(hand('release 8'));
  await does('Encoder, to turn', ['ArrowLeft'], hand('turn 8 -1'));
  await does('Input 0', ['End'], hand('set F 00 FF'));
  await does('Pull the cable', ['Enter'], hand('cable pull'));
  await does('Late replies', ['Space'], hand('late 40ms'));
  await anna.leaves();
});

test('another board is gone to, and switched', async () => {
  await opens('boards/yard', 'Away since', twoBoards);
  await keys.to('Shed');
  await keys.press('Enter');
  await anna.page.getByRole('switch', { name: 'Line 0' }).first().waitFor();
  const request = 'boards.channels.set {"board":"shed","id":"5.0","value":false}';
  await does('Line 0', ['Enter'], request);
  await anna.leaves();
});

test('plots are chosen, moved, read and saved', async () => {
  await opens('plots', 'F.3');
  await keys.to('1 h');
  await keys.press('Space');
  await anna.page.getByRole('button', { name: '1 h', exact: true, pressed: true }).waitFor();
  await keys.to('Earlier');
  await keys.press('Enter');
  await anna.page.getByRole('button', { name: 'Live', pressed: false }).waitFor();
  await keys.to('Save as CSV');
  const coming = anna.page.waitForEvent('download');
  await keys.press('Enter');
  await coming;
  await keys.to('Channels');
  await keys.press('Enter');
  await anna.page.getByRole('checkbox').first().waitFor();
  await keys.to('Servo 0');
  await keys.press('Space');
  const strip = anna.page.getByRole('slider', { name: /^Curves/ });
  const now = await strip.getAttribute('aria-valuenow');
  await keys.to(/^Curves/);
  await keys.press('ArrowLeft');
  await eventually('read', async () => (await strip.getAttribute('aria-valuenow')) !== now);
  await keys.to('Take Servo 0 away');
  await keys.press('Enter');
  await anna.page.getByRole('button', { name: 'Take Servo 0 away' }).waitFor({ state: 'detached' });
  await anna.leaves();
});

test('the console completes by the Tab key, and lets it go on', async () => {
  const help = {
    lines: [' - POLLON:x   activates polling on x', ' - DRVVER     tells the version'],
  };
  await opens('console', 'Nothing said yet', {
    ...eight,
    answers: { ...virtualBus.answers, 'console.run': help },
  });
  await keys.to('Line for the daemon');
  await keys.types('drv');
  await anna.page.getByRole('button', { name: /^DRVVER/ }).waitFor();
  await keys.press('Tab', 'Enter');
  await asks('console.run {"line":"DRVVER"}');
  await keys.press('ArrowUp');
  await keys.hasTyped('DRVVER');
  await keys.press('Tab');
  await keys.isAt('Send');
  await keys.press('Shift+Tab', 'Escape');
  await keys.types('poll');
  await anna.page.getByRole('button', { name: /^POLLON/ }).waitFor();
  await keys.press('Shift+Tab', 'Enter');
  await keys.hasTyped('POLLON:');
  await keys.isAt('Line for the daemon');
  await anna.leaves();
});

test('the journal is narrowed by its kind and by words', async () => {
  await opens('journal', 'started');
  await keys.to('Kind');
  await keys.press('ArrowDown');
  await anna.reads('1 of 4 entries');
  await keys.press('ArrowUp');
  await keys.to('Search');
  await keys.types('1.20');
  await anna.doesNotRead('started');
  await anna.leaves();
});

test('settings are set', async () => {
  await opens('settings', 'Kept in the card');
  await keys.to('Tokens');
  await keys.press('Space');
  await keys.to('Name');
  await keys.types('script');
  await keys.press('Enter');
  await asks('tokens.add {"name":"script","role":"view"}');
  await keys.begin();
  await keys.to('Appearance');
  await keys.press('Enter');
  await keys.to('As the system');
  await keys.press('ArrowDown', 'ArrowDown');
  assert.ok(await anna.page.getByRole('radio', { name: 'Light' }).isChecked());
  await keys.begin();
  await keys.to('Cards and channels');
  await keys.press('Enter');
  await keys.to('Card');
  await keys.press('ArrowDown');
  await anna.page.getByRole('row', { name: /^3\.0/ }).waitFor();
  await keys.press('ArrowUp');
  await does(
    'Restore its outputs after a cable pull or a restart',
    ['Space'],
    'setup.merge {"cards":{"0":{"keep":false}},"channels":{}}',
  );
  await anna.leaves();
});

test('an account is removed, or kept', async () => {
  await opens('settings', 'Kept in the card');
  await does('Accounts', ['Enter']);
  await does('Remove operator', ['Enter']);
  await keys.to('Keep it');
  await keys.press('Enter');
  await anna.doesNotRead(/^Remove operator\?/);
  await keys.begin();
  await does('Remove operator', ['Enter']);
  await does('Remove operator', ['Space'], 'accounts.remove {"account":"operator"}');
  await anna.leaves();
});

after(() => {
  assert.deepEqual(anna.complaints, []);
});

// What the hub refuses is said where it was tried, and nothing is shown as if it held.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { Locator } from 'playwright-core';

import { snapshot } from '../unit/kit.js';
import { axeFindings } from './axe.js';
import { eventually, type Person } from './Person.js';
import { eightCards, scene } from './scenes.js';
import { Stage } from './Stage.js';

const stage = new Stage();
const eight = { snapshot: snapshot([...eightCards]) };

// The stand-in refuses what it has no answer to, and says the method's name.
async function opens(card: string): Promise<Person> {
  const anna = await stage.arrives(eight, {}, 'settings');
  await anna.page.getByRole('combobox', { name: 'Card' }).selectOption(card);
  return anna;
}

function holds(what: string, part: Locator, value: string): Promise<void> {
  return eventually(what, async () => (await part.inputValue()) === value);
}

test('a name that is refused stays to be mended, and Escape brings back what holds', async () => {
  const anna = await stage.arrives(eight);
  const field = anna.page.getByRole('textbox', { name: 'New name of Relays' });
  await anna.renames('Relays', 'Lamps');
  await anna.reads('names.merge. It is still Relays; Escape brings it back.');
  assert.equal(await field.inputValue(), 'Lamps');
  assert.equal(await field.getAttribute('aria-invalid'), 'true');
  assert.equal(await field.evaluate((input) => input.matches(':focus')), true);
  assert.equal(await anna.page.getByRole('button', { name: 'Dismiss' }).count(), 0);
  assert.deepEqual(await axeFindings(anna), []);
  await field.press('Escape');
  await anna.page.getByRole('button', { name: 'Rename Relays' }).waitFor();
  await anna.doesNotRead(/names\.merge/);
  await anna.leaves();
});

test('a name that is refused is sent again as soon as it is mended', async () => {
  const anna = await stage.arrives(eight);
  const field = anna.page.getByRole('textbox', { name: 'New name of Relays' });
  await anna.renames('Relays', 'Lamps');
  await anna.reads(/^names\.merge/);
  const asked = stage.hub.asked.length;
  await field.blur();
  assert.equal(await field.inputValue(), 'Lamps');
  stage.hub.show({ ...scene(eightCards), ...eight, answers: { 'names.merge': {} } });
  await field.fill('Relay card');
  await field.press('Enter');
  await anna.page.getByRole('button', { name: 'Rename Relays' }).waitFor();
  const sent = stage.hub.asked.slice(asked).filter((line) => line.startsWith('names'));
  assert.deepEqual(sent, ['names.merge {"cards":{"5":"Relay card"}}']);
  await anna.leaves();
});

test('a setting that is refused keeps what was typed, and says what holds', async () => {
  const anna = await opens('F');
  const field = anna.page.getByRole('textbox', { name: 'At 255 of Input 0' });
  await field.fill('five');
  await field.press('Tab');
  await anna.reads('This is not a number. It is still 255; Escape brings it back.');
  await field.fill('300');
  await field.press('Tab');
  await anna.reads('setup.merge. It is still 255; Escape brings it back.');
  assert.equal(await field.inputValue(), '300');
  assert.equal(await field.getAttribute('aria-invalid'), 'true');
  assert.deepEqual(await axeFindings(anna), []);
  await field.press('Escape');
  await anna.doesNotRead(/setup\.merge/);
  assert.equal(await field.inputValue(), '');
  await anna.leaves();
});

test('a choice and a tick that are refused show what holds', async () => {
  const anna = await opens('5');
  const active = anna.page.getByRole('combobox', { name: 'On is of Line 0' });
  await active.selectOption('high');
  await anna.reads('setup.merge. It is still low (usual).');
  await holds('low', active, 'low');
  const keep = anna.page.getByRole('checkbox', { name: /^Restore/ });
  await keep.click();
  await anna.reads('setup.merge. It is still yes.');
  await eventually('it is restored', () => keep.isChecked());
  await anna.presses('Accounts');
  const role = anna.page.getByRole('combobox', { name: 'What operator may' });
  await role.selectOption('view');
  await anna.reads('accounts.change. It is still may do all.');
  await holds('admin', role, 'admin');
  await anna.leaves();
});

test('what a card refuses to keep is said, and nothing of it is left at the next card', async () => {
  const anna = await opens('0');
  const end = anna.page.getByRole('textbox', { name: 'End A of Servo 0' });
  await end.fill('16');
  await end.press('Tab');
  await anna.reads('card.settings.set. It is still not asked; Escape brings it back.');
  await anna.page.getByRole('textbox', { name: 'At 0 of Servo 0' }).fill('7');
  await anna.page.getByRole('combobox', { name: 'Card' }).selectOption('F');
  await anna.doesNotRead(/card\.settings\.set/);
  const next = anna.page.getByRole('textbox', { name: 'At 0 of Input 0' });
  assert.equal(await next.inputValue(), '');
  await anna.leaves();
});

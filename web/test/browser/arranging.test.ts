// The bench is arranged by mouse, finger and keys, and another browser sees it as it happens.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { axeFindings } from './axe.js';
import { closeBrowser, eventually, Person } from './Person.js';
import { Site } from './Site.js';

let site: Site;
let anna: Person;
let ben: Person;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', { cards: { 5: 'Relays', E: 'Counter' } });
  anna = await Person.arrives();
  ben = await Person.arrives({ width: 390, height: 800, touch: true });
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

// The plates on somebody's bench, in their order: "0 3 4".
function plates({ page }: Person): Promise<string> {
  return page
    .locator('qelm-plate .address')
    .evaluateAll((all) => all.map((each) => each.textContent).join(' '));
}

function sees(person: Person, order: string): Promise<void> {
  return eventually(`plates ${order}`, async () => (await plates(person)) === order);
}

const grip = (person: Person, card: string) =>
  person.page.getByRole('button', { name: `Move ${card}`, exact: true });

async function middleOf(person: Person, card: string): Promise<[number, number]> {
  await grip(person, card).scrollIntoViewIfNeeded(); // and till it stands still
  const box = await grip(person, card).boundingBox();
  if (!box) throw new Error(`no grip of ${card}`);
  return [box.x + box.width / 2, box.y + box.height / 2];
}

test('arrow keys move a card, and the focus goes with it', async () => {
  await sees(ben, '0 3 4 5 8 9 E F');
  await anna.presses('Arrange');
  await grip(anna, '5 Relays').focus();
  await anna.page.keyboard.press('ArrowLeft');
  await sees(ben, '0 3 5 4 8 9 E F');
  await anna.page.keyboard.press('ArrowUp');
  await sees(ben, '0 5 3 4 8 9 E F');
});

test('a mouse drags a card to another place', async () => {
  const [fromX, fromY] = await middleOf(anna, 'E Counter');
  const [toX, toY] = await middleOf(anna, '0 Servos');
  await anna.page.mouse.move(fromX, fromY);
  await anna.page.mouse.down();
  await anna.page.mouse.move(toX, toY, { steps: 10 });
  await anna.page.mouse.up();
  await sees(ben, 'E 0 5 3 4 8 9 F');
});

test('a group is made and named, and takes a card', async () => {
  await anna.presses('New group');
  await anna.renames('Group 1', 'Door');
  await anna.page.getByRole('combobox', { name: 'Group of 5 Relays' }).selectOption('Door');
  await ben.page.getByRole('heading', { name: 'Door' }).waitFor();
  await sees(ben, '5 E 0 3 4 8 9 F');
  assert.deepEqual(await axeFindings(anna), []);
});

test('a card is hidden for everybody, and its bus goes on', async () => {
  await anna.page.getByRole('combobox', { name: 'Group of 9 Infrared' }).selectOption('Hidden');
  await sees(ben, '5 E 0 3 4 8 F');
  await anna.presses('Done');
  await anna.page.getByRole('button', { name: 'Arrange, 1 hidden' }).waitFor();
  await anna.page.reload();
  await sees(anna, '5 E 0 3 4 8 F');
});

test('a finger drags a card by its grip, and the page does not scroll', async () => {
  await ben.page.getByRole('button', { name: /^Arrange/ }).click();
  const [x, y] = await middleOf(ben, 'E Counter');
  // Below the middle of the card: what it is asked stands under its grip.
  const group = ben.page.getByRole('combobox', { name: 'Group of 0 Servos' });
  const below = await group.boundingBox();
  if (!below) throw new Error('no list of groups');
  await ben.drags([x, y], [x, below.y + below.height / 2]);
  await sees(anna, '5 0 E 3 4 8 F');
});

test('it is as on the bus again', async () => {
  await ben.presses('As on the bus');
  await sees(anna, '0 3 4 5 8 9 E F');
  assert.deepEqual([...anna.complaints, ...ben.complaints], []);
});

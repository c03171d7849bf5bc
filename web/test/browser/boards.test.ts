// Another board on the broker: its cards stand on the page, what is done there goes over the broker
// and is seen when the board says so. The test plays the board.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { axeFindings } from './axe.js';
import { Broker } from './Broker.js';
import { closeBrowser, eventually, Person } from './Person.js';
import { address, Site } from './Site.js';

const broker = '[broker]\nhost = "127.0.0.1"\nname = "bench"\nboards = true\n';
const lamp = { name: 'Lamp', unit: null, min: null, max: null };
const pumps = { address: '5', kind: 'digital-output', name: 'Pumps', state: 'present' };
const says = {
  id: '8c01d2ee',
  name: 'Shed',
  daemon: { state: 'up', version: '1.20' },
  adapter: { state: 'up' },
  cards: [
    { ...pumps, channels: { 0: lamp } },
    { address: 'E', kind: 'lcd', name: null, state: 'present' },
  ],
};
const glass = (first: string) => ({
  rows: [first.padEnd(20), ' '.repeat(20)],
  light: false,
  cursor: false,
  blink: false,
});

let site: Site;
let shed: Broker;
let anna: Person;

before(async () => {
  shed = await Broker.start();
  await shed.hear('qelm/shed/+/+/set', 'qelm/shed/+/row/+/set');
  site = await Site.start([], broker);
  await shed.tell('qelm/shed/bus', says);
  await shed.tell('qelm/shed/5/0', 'OFF');
  await shed.tell('qelm/shed/E/glass', glass('Hello'));
  await shed.tell('qelm/shed/status', 'online');
  anna = await Person.arrives();
});

after(async () => {
  await closeBrowser();
  await site.stop();
  shed.stop();
});

function hears(command: string): Promise<void> {
  return eventually(command, () => Promise.resolve(shed.heard.includes(command)));
}

test('a board that is heard of is offered, and its cards are drawn', async () => {
  await anna.page.getByRole('link', { name: 'Boards', exact: true }).click();
  await anna.reads('Pumps');
  await anna.sees('Lamp', 'off');
  await anna.page.getByRole('img', { name: /^Glass: Hello/ }).waitFor();
  assert.deepEqual(await axeFindings(anna), []);
});

test('a switch goes to the board, and is on when the board says so', async () => {
  await anna.press('Lamp');
  await hears('qelm/shed/5/0/set ON');
  await anna.sees('Lamp', 'off');
  await shed.tell('qelm/shed/5/0', 'ON');
  await anna.sees('Lamp', 'on');
});

test('a text goes to its display', async () => {
  await anna.writes(2, 'from the bench');
  await eventually('the row', () =>
    Promise.resolve(
      shed.heard.some((line) => /^qelm\/shed\/E\/row\/1\/set from the bench *$/.test(line)),
    ),
  );
});

test('nothing of it is renamed here, nor taken for a card of this bus', async () => {
  assert.equal(await anna.page.getByRole('button', { name: /^Rename (Lamp|Pumps)$/ }).count(), 0);
  await anna.page.goto(`${address}/#bench`);
  await anna.reads('Servos');
  await anna.doesNotRead('Pumps');
  await anna.page.goto(`${address}/#boards/shed`);
  await anna.sees('Lamp', 'on');
});

test('the settings list it, with what of it says nothing, and lead to it', async () => {
  await shed.tell('qelm/shed/5/0', 'perhaps');
  await anna.page.goto(`${address}/#settings`);
  await anna.presses('Other boards');
  const row = anna.page.getByRole('row', { name: /^Shed \(shed\)/ });
  await row.filter({ hasText: 'online' }).filter({ hasText: 'A message says nothing: ' }).waitFor();
  await anna.page.getByRole('link', { name: 'Shed (shed)' }).click();
  await anna.sees('Lamp', 'on');
});

test('a board that goes away is said to be away, and can not be switched', async () => {
  await shed.tell('qelm/shed/status', 'offline');
  await anna.reads(/^Away since/);
  await anna.sees('Lamp', 'on');
  assert.equal(await anna.page.getByRole('switch').count(), 0);
  await shed.tell('qelm/shed/status', 'online');
  await anna.doesNotRead(/^Away since/);
  await anna.page.getByRole('switch', { name: 'Lamp' }).waitFor();
});

test('what a board tells while nobody is connected is seen afterwards', async () => {
  await site.killHub();
  await anna.reads(/Lost at/);
  await shed.tell('qelm/shed/5/0', 'OFF');
  await site.startHub();
  await anna.doesNotRead(/Lost at/);
  await anna.sees('Lamp', 'off');
  assert.deepEqual(anna.complaints, []);
});

// The views beside the bench, as a person uses them.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { address, Site } from './Site.js';

const markup = '<img src=x onerror=alert(1)>';

let site: Site;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', { channels: { '5.0': 'Lamp', 'F.3': 'Supply' } });
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

async function goes(view: string): Promise<Person> {
  const anna = await Person.arrives();
  await anna.page.goto(`${address}/#${view}`);
  await anna.page.getByRole('heading', { level: 1 }).waitFor();
  return anna;
}

test('a channel is opened in the plots from the bench, and follows its value', async () => {
  const anna = await Person.arrives();
  await anna.part('Lamp').click({ button: 'right' });
  await anna.page.getByRole('menuitem', { name: 'Plot Lamp' }).click();
  const strip = anna.page.getByRole('slider', { name: /^Curves/ });
  await strip.waitFor();
  await site.api('PUT', '/api/channels/5.0', { value: true });
  await anna.page.locator('qelm-lane').getByText('on', { exact: true }).waitFor();
  assert.deepEqual(anna.complaints, []);
  await anna.leaves();
});

test('the console answers, completes and remembers; markup stays text', async () => {
  const anna = await goes('console');
  const line = anna.page.getByRole('textbox');
  await line.fill('DRVVER');
  await line.press('Enter');
  await anna.reads(/DRIVER VERSION/);
  await line.fill(markup);
  await line.press('Enter');
  await anna.reads(markup);
  await line.press('ArrowUp');
  await eventually('the last line', async () => (await line.inputValue()) === markup);
  await line.press('ArrowUp');
  await eventually('the one before', async () => (await line.inputValue()) === 'DRVVER');
  await line.fill('pollo');
  await anna.page.getByRole('button', { name: /^POLLON:x/ }).waitFor();
  assert.equal(await anna.page.locator('img').count(), 0);
  assert.deepEqual(anna.complaints, []);
  await anna.leaves();
});

test('the journal shows what happens while it is looked at', async () => {
  const anna = await goes('journal');
  await site.api('PUT', '/api/channels/5.0', { value: false });
  await anna.reads('Lamp (5.0) off');
  await anna.page.getByRole('searchbox').fill('nothing of that kind');
  await anna.doesNotRead(/Lamp \(5\.0\)/);
  await anna.leaves();
});

test('a new token is shown once', async () => {
  const anna = await goes('settings');
  await anna.presses('Tokens');
  await anna.page.getByRole('textbox', { name: 'Name' }).fill('script');
  await anna.presses('Make token');
  await anna.reads(/is shown only now/);
  await anna.presses('I have it');
  await anna.doesNotRead(/is shown only now/);
  await anna.leaves();
});

// The settings that concern everybody: what is there, how it looks, backups, and who may come in.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { address, Site } from './Site.js';

const ada = { account: 'ada', password: 'correct horse' };
const vera = { account: 'vera', password: 'battery staple' };

let site: Site;
let anna: Person;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  await site.api('PATCH', '/api/names', { bus: 'bench', channels: { '5.0': 'Lamp' } });
  anna = await Person.arrives({ at: `${address}/#settings` });
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

const section = (name: string) => anna.page.getByRole('region', { name });

async function opens(name: string): Promise<void> {
  await anna.presses(name);
  await section(name).waitFor();
}

// What the browser asks a person for when a file is chosen.
async function chooses(name: string, content: string): Promise<void> {
  await anna.page
    .getByLabel('Backup file')
    .setInputFiles({ name, mimeType: 'application/json', buffer: Buffer.from(content) });
}

async function fills(who: { account: string; password: string }, person = anna): Promise<void> {
  await person.page.getByLabel('Account', { exact: true }).fill(who.account);
  await person.page.getByLabel('Password', { exact: true }).fill(who.password);
}

async function logsIn(person: Person, who: { account: string; password: string }): Promise<void> {
  await person.page.getByRole('heading', { name: 'Log in' }).waitFor();
  await fills(who, person);
  await person.presses('Log in');
}

test('all there is stands in About, with its version', async () => {
  await opens('About');
  const project = readFileSync(`${process.env['QELM_ROOT'] ?? ''}/CMakeLists.txt`, 'utf8');
  const version = /project\(qelm VERSION ([\d.]+)/.exec(project)?.[1] ?? 'no version';
  const facts: [string, RegExp][] = [
    ['Page', new RegExp(`^${version}$`)],
    ['Daemon', /^1\.20, up, up since \d+ [A-Z][a-z]+ \d{4}, \d\d:\d\d:\d\d$/],
    ['Adapter', /up, \/dev\/ttyUSB0$/],
    ['Broker', /^none is set up$/],
    ['Bus', /^bench, a virtual bus$/],
    ['Id', /^[0-9a-f]{8}$/],
    ['Pace', /^\d+ %$/],
    ['Inputs polled', /^(yes|no)$/],
    ['You', /^nobody is asked to log in, may do all$/],
  ];
  const said = await section('About').getByRole('definition').allInnerTexts();
  const terms = await section('About').getByRole('term').allInnerTexts();
  assert.deepEqual(
    terms,
    facts.map(([term]) => term),
  );
  for (const [place, [, fact]] of facts.entries()) assert.match(said[place] ?? '', fact);
});

test('without a broker that is listened to, no other board is listed, and it is said why', async () => {
  await opens('Other boards');
  await anna.reads(/^None is heard\. With "boards = true"/);
});

test('the colours that are chosen are there after a reload, in this browser only', async () => {
  const ground = (person: Person) =>
    person.page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const [dark, light] = ['rgb(17, 16, 14)', 'rgb(219, 217, 210)'];
  await opens('Appearance');
  assert.equal(await ground(anna), dark); // as the system
  await anna.page.getByRole('radio', { name: 'Light' }).check();
  assert.equal(await ground(anna), light);
  await anna.page.reload();
  await opens('Appearance');
  assert.equal(await ground(anna), light);
  assert.ok(await anna.page.getByRole('radio', { name: 'Light' }).isChecked());
  const ben = await Person.arrives();
  assert.equal(await ground(ben), dark);
  await ben.leaves();
  await anna.page.getByRole('radio', { name: 'As the system' }).check();
  assert.equal(await ground(anna), dark);
  await anna.page.reload();
  await opens('Appearance');
  assert.ok(await anna.page.getByRole('radio', { name: 'As the system' }).isChecked());
});

test('a backup is a file with all names, and brings them back', async () => {
  await opens('Backup');
  const coming = anna.page.waitForEvent('download');
  await anna.presses('Save a backup');
  const file = await coming;
  assert.match(file.suggestedFilename(), /^bench-\d{4}-\d\d-\d\d\.json$/);
  const content = readFileSync(await file.path(), 'utf8');
  const backup = JSON.parse(content) as { names: { channels: Record<string, string> } };
  assert.equal(backup.names.channels['5.0'], 'Lamp');

  await site.api('PATCH', '/api/names', { channels: { '5.0': 'Heater', '5.1': 'Fan' } });
  await chooses('bench.json', content);
  await anna.reads(/^Put bench\.json back\?/);
  await anna.presses('Replace all');
  await anna.reads(/Put back at \d\d:\d\d:\d\d\./);
  const names = (await site.api('GET', '/api/names')) as { channels: Record<string, string> };
  assert.deepEqual(names.channels, { '5.0': 'Lamp' });
});

test('a file that is no backup is refused here, one with a wrong part by the hub', async () => {
  for (const content of ['{"names":', '[1, 2]', '{"version":1}']) {
    await chooses('broken.json', content);
    await anna.reads('This file is not a backup of a hub.');
    assert.equal(await anna.page.getByRole('button', { name: 'Replace all' }).count(), 0);
    await chooses('good.json', '{"names":{},"setup":{},"page":{}}');
    await anna.presses('Cancel');
  }
  await chooses(
    'wrong.json',
    '{"version":1,"names":{"channels":{"5.99":"Lamp"}},"setup":{},"page":{}}',
  );
  await anna.presses('Replace all');
  await anna.page
    .getByRole('alert')
    .getByText(/^a channel is named by address and number/)
    .waitFor();
  await anna.presses('Dismiss');
  const names = (await site.api('GET', '/api/names')) as { channels: Record<string, string> };
  assert.deepEqual(names.channels, { '5.0': 'Lamp' });
});

test('the first account is an administrator, and from then on the page asks for a login', async () => {
  await opens('Accounts');
  await anna.reads(/^There is no account: whoever reaches this page may do all\./);
  await fills(ada);
  await anna.presses('Add account');
  await logsIn(anna, ada);
  await opens('Accounts');
  await anna.page.getByRole('row', { name: /^ada \(you\)/ }).waitFor();
  const role = anna.page.getByRole('combobox', { name: 'What ada may' });
  assert.equal(await role.inputValue(), 'admin');
});

test('a new account may what its role says; another role asks it to log in again', async () => {
  await fills(vera);
  await anna.page.getByRole('combobox', { name: 'May', exact: true }).selectOption('view');
  await anna.presses('Add account');
  await anna.page.getByRole('row', { name: /^vera/ }).waitFor();
  const other = await Person.arrives();
  await logsIn(other, vera);
  await other.page.getByRole('img', { name: /^Lamp/ }).waitFor();
  assert.equal(await other.page.getByRole('switch').count(), 0);
  await anna.page.getByRole('combobox', { name: 'What vera may' }).selectOption('use');
  await logsIn(other, vera);
  await other.page.getByRole('switch', { name: /^Lamp/ }).waitFor();
  await other.leaves();
});

test('a new password ends the sessions that came with the old one', async () => {
  const other = await Person.arrives();
  await logsIn(other, vera);
  await other.reads('Servos');
  await anna.presses('New password of vera');
  await anna.page.getByLabel('New password of vera').last().fill('another staple');
  await anna.presses('Change');
  await logsIn(other, vera);
  await other.page.getByRole('alert').getByText(/./).first().waitFor();
  await logsIn(other, { account: 'vera', password: 'another staple' });
  await other.reads('Servos');
  await other.leaves();
});

test('a removed account is out at once, in every browser', async () => {
  const other = await Person.arrives();
  await logsIn(other, { account: 'vera', password: 'another staple' });
  await other.reads('Servos');
  await anna.presses('Remove vera');
  await anna.presses('Keep it');
  await anna.presses('Remove vera');
  await anna.reads('Remove vera? Its sessions end at once.');
  await anna.page.getByRole('button', { name: 'Remove vera' }).last().click();
  await anna.page.getByRole('row', { name: /^vera/ }).waitFor({ state: 'detached' });
  await other.page.getByRole('heading', { name: 'Log in' }).waitFor();
  await logsIn(other, { account: 'vera', password: 'another staple' });
  await other.page.getByRole('alert').getByText(/./).first().waitFor();
  await other.doesNotRead('Servos');
  await other.leaves();
});

test('the last administrator stays, and it is said why', async () => {
  await anna.presses('Remove ada');
  await anna.page.getByRole('button', { name: 'Remove ada' }).last().click();
  await anna.page.getByRole('alert').getByText('the last admin would be gone').waitFor();
  await eventually('ada is there', async () =>
    Promise.resolve((await anna.page.getByRole('row', { name: /^ada/ }).count()) === 1),
  );
  assert.deepEqual(anna.complaints, []);
});

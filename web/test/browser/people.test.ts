// Who may do what, and what markup in names does.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, Person } from './Person.js';
import { Site } from './Site.js';

const markup = '<img src=x onerror=alert(1)>';
const shown = '<img src=x>'; // as long as a display has room for
const admin = { account: 'ada', password: 'correct horse', role: 'admin' };
const viewer = { account: 'vera', password: 'correct horse', role: 'view' };

let site: Site;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

async function logsIn(person: Person, who: { account: string; password: string }): Promise<void> {
  await person.page.getByLabel('Account').fill(who.account);
  await person.page.getByLabel('Password').fill(who.password);
  await person.presses('Log in');
}

test('markup in a name and on a display stays text', async () => {
  await site.api('PATCH', '/api/names', { cards: { 5: markup }, channels: { '5.0': markup } });
  await site.api('POST', '/api/cards/E/text', { row: 2, column: 1, text: shown });
  const anna = await Person.arrives();
  await anna.part(markup).waitFor();
  await anna.page.getByRole('img', { name: shown }).waitFor();
  assert.equal(await anna.page.locator('img').count(), 0);
  assert.deepEqual(anna.complaints, []);
  await anna.leaves();
});

test('a viewer sees all, is offered nothing, and is refused what he asks by hand', async () => {
  await site.api('POST', '/api/accounts', admin);
  const vera = await Person.arrives();
  await logsIn(vera, admin);
  await vera.page.getByRole('switch').first().waitFor();
  await vera.page.evaluate(
    (body) =>
      fetch('/api/accounts', {
        method: 'POST',
        headers: { 'Content-Type': 'application/json' },
        body,
      }),
    JSON.stringify(viewer),
  );
  await vera.presses('Log out');
  await logsIn(vera, viewer);
  await vera.reads('Servos');
  for (const role of ['switch', 'slider', 'textbox'] as const)
    assert.equal(await vera.page.getByRole(role).count(), 0, role);
  assert.equal(await vera.page.getByRole('button', { name: 'All outputs off' }).count(), 0);
  const status = await vera.page.evaluate(async () => {
    const answer = await fetch('/api/channels/5.0', {
      method: 'PUT',
      headers: { 'Content-Type': 'application/json' },
      body: '{"value":true}',
    });
    return answer.status;
  });
  assert.equal(status, 403);
  assert.deepEqual(vera.complaints, []);
});

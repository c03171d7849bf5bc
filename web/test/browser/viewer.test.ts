// What whoever may only look sees: all of it, and nothing that he could not do.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { axeFindings } from './axe.js';
import { fullCards, twoBoards, virtualBus } from './scenes.js';
import { Stage } from './Stage.js';

const views = ['bench', 'boards', 'plots', 'journal', 'settings', 'console'];
const viewer = { account: 'vera', role: 'view' as const };

const stage = new Stage();

test('a viewer is offered nothing in any view', async () => {
  const meant =
    /^(Log out|Older entries|Daemon|Adapter\s+up|.*tab)$|^(\d+ (min|h|day|week|year|days)|1 \w+)$/;
  for (const view of views) {
    const shown = view === 'boards' ? twoBoards : virtualBus;
    const vera = await stage.arrives({ ...shown, who: viewer }, {}, view);
    assert.equal(await vera.page.getByRole('link', { name: 'Console' }).count(), 0);
    for (const role of ['switch', 'slider', 'textbox', 'spinbutton'] as const)
      assert.equal(await vera.page.getByRole(role).count(), 0, `${view}: ${role}`);
    const lists = view === 'settings' || view === 'journal' ? 1 : 0; // which card, which kind
    assert.equal(await vera.page.getByRole('combobox').count(), lists, view);
    const buttons = await vera.page.getByRole('button').allInnerTexts();
    const offered = buttons.map((button) => button.trim()).filter((button) => button !== '');
    const others = offered.filter((button) => !meant.test(button) && !looking.has(button));
    assert.deepEqual(others, [], view);
    assert.deepEqual(await axeFindings(vera), []);
    await vera.leaves();
  }
});

// What a viewer presses to see something else.
const looking = new Set([
  'Live',
  'CSV',
  'Appearance',
  'Cards and channels',
  'Other boards',
  'About',
]);

test('a viewer reads the settings of each card as text', async () => {
  const answers = {
    'setup.get': { cards: {}, channels: { 'F.3': { unit: 'V', max: 5 } } },
    'session.who': viewer,
  };
  const vera = await stage.arrives({ who: viewer, answers }, {}, 'settings');
  const chosen = vera.page.getByRole('combobox', { name: 'Card' });
  for (const { address } of fullCards) {
    await chosen.selectOption(address);
    for (const role of ['textbox', 'checkbox'] as const)
      assert.equal(await vera.page.getByRole(role).count(), 0, `card ${address}: ${role}`);
    assert.equal(await vera.page.getByRole('combobox').count(), 1, `card ${address}`);
  }
  await vera.page.getByRole('row', { name: 'F.3 Input 3 V 0 5 0 0 –' }).waitFor();
  await vera.leaves();
});

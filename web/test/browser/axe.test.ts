// Every view as it can be met, in both themes, without a finding of axe-core.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { bus, snapshot } from '../unit/kit.js';
import { axeFindings } from './axe.js';
import type { Person } from './Person.js';
import { cardOf, eightCards, twoBoards, virtualBus } from './scenes.js';
import { Stage } from './Stage.js';
import type { Scene } from './StandIn.js';

interface Sight {
  name: string;
  view: string;
  shown?: Partial<Scene>;
  does?: (person: Person) => Promise<unknown>;
  shows: string | RegExp;
  plots?: string[];
}

const eight = { snapshot: snapshot([...eightCards]) };
const empty = (change: object) => ({ snapshot: snapshot([], { bus: { ...bus, ...change } }) });
const answers = { ...virtualBus.answers };
const stage = new Stage();

const firstRun: Sight[] = [
  { name: 'the hub', shown: empty({}), shows: /^The hub does not answer/ },
  {
    name: 'the daemon',
    shown: empty({ daemon: { ...bus.daemon, state: 'absent' } }),
    shows: /^The daemon does not answer/,
  },
  {
    name: "the daemon's port",
    shown: empty({ daemon: { ...bus.daemon, state: 'waiting', waiting_for: 'io' } }),
    shows: /^Another program holds the daemon's port IO\. Close it/,
  },
  {
    name: 'the adapter',
    shown: empty({ adapter: { state: 'down', device: null, version: null } }),
    shows: /^The adapter is not found/,
  },
  {
    name: 'the log',
    shown: empty({ adapter: { state: 'unknown', device: null, version: null } }),
    shows: /^The hub cannot read/,
  },
  { name: 'cards', shown: empty({}), shows: /^No card answers/ },
  {
    name: 'cards of a virtual bus',
    shown: {
      snapshot: snapshot([], { bus: { ...bus, virtual: true } }),
      answers: { ...answers, 'virtual.get': { ...answers['virtual.get'], cards: [] } },
    },
    shows: /^This bus is a virtual one/,
  },
].map((each) => ({ ...each, name: `a first run that waits for ${each.name}`, view: 'bench' }));

const doubtful = snapshot([
  cardOf('0', 'servo', { assumed: true }),
  cardOf('4', 'motor', { pending: true }),
  { ...cardOf('5', 'digital-output', { known: false, value: null }), state: 'silent' },
  { ...cardOf('E', 'lcd'), state: 'absent' },
]);

const bench: Sight[] = [
  { name: 'a full bench', shows: 'Servos' },
  { name: 'cards in doubt', shown: { snapshot: doubtful }, shows: 'Servos' },
  { name: 'a virtual bench', shown: virtualBus, shows: 'Pull the cable' },
  {
    name: 'a bench that is arranged',
    does: async (person: Person) => {
      await person.presses('Arrange');
      await person.presses('New group');
    },
    shows: 'Arrange the bench',
  },
  {
    name: 'the menu of a channel',
    does: ({ page }: Person) =>
      page.getByRole('switch', { name: 'Line 0' }).click({ button: 'right' }),
    shows: 'Plot Line 0',
  },
  {
    name: 'a name that is edited',
    does: (person: Person) => person.presses('Rename Relays'),
    shows: 'Servos',
  },
  {
    name: 'a press that is refused',
    does: ({ page }: Person) => page.getByRole('switch').first().click(),
    shows: 'channels.set',
  },
  {
    name: 'a connection that is lost',
    does: async (person: Person) => {
      await person.reads('Servos');
      stage.hub.isAway = true;
      stage.hub.drop();
    },
    shows: /Lost at/,
  },
].map((each) => ({ shown: eight, ...each, view: 'bench' }));

const press =
  (...buttons: string[]) =>
  async (person: Person) => {
    for (const button of buttons) await person.presses(button);
  };
const file = (content: string) => async (person: Person) => {
  await person.presses('Backup');
  const buffer = Buffer.from(content);
  await person.page
    .getByLabel('Backup file')
    .setInputFiles({ name: 'bench.json', mimeType: 'application/json', buffer });
};
const card = (address: string) => (person: Person) =>
  person.page.getByRole('combobox', { name: 'Card' }).selectOption(address);

const token = { 'tokens.add': { name: 'script', role: 'view', token: '00112233' } };
const settings: Sight[] = [
  ...eightCards.map(({ address, kind }) => ({
    name: `settings of a card, ${kind}`,
    does: card(address),
    shows: 'Cards and channels',
  })),
  { name: 'accounts', does: press('Accounts'), shows: '8 characters or more' },
  {
    name: 'an account that gets a password',
    does: press('Accounts', 'New password of operator'),
    shows: 'Change',
  },
  {
    name: 'an account that is to go',
    does: press('Accounts', 'Remove operator'),
    shows: /^Remove operator\?/,
  },
  { name: 'tokens', does: press('Tokens'), shows: 'There is no token.' },
  {
    name: 'a new token',
    shown: { ...eight, answers: { ...answers, ...token } },
    does: async (person: Person) => {
      await person.presses('Tokens');
      await person.page.getByRole('textbox', { name: 'Name' }).fill('script');
      await person.presses('Make token');
    },
    shows: /is shown only now/,
  },
  { name: 'backup', does: press('Backup'), shows: 'Put a backup back' },
  { name: 'a backup that is to come back', does: file('{"names":{}}'), shows: 'Replace all' },
  {
    name: 'a file that is no backup',
    does: file('{'),
    shows: 'This file is not a backup of a hub.',
  },
  { name: 'a list without boards', does: press('Other boards'), shows: /^None is heard/ },
  {
    name: 'a list of boards',
    shown: twoBoards,
    does: press('Other boards'),
    shows: 'Shed (shed)',
  },
  { name: 'appearance', does: press('Appearance'), shows: 'This browser only.' },
  { name: 'about', does: press('About'), shows: 'Inputs polled' },
].map((each) => ({ shown: eight, ...each, view: 'settings' }));

const others: Sight[] = [
  {
    name: 'a log-in',
    view: 'bench',
    shown: { who: { account: null, role: null } },
    shows: 'Password',
  },
  { name: 'a board', view: 'boards/shed', shown: twoBoards, shows: 'Relays' },
  { name: 'a board that is away', view: 'boards/yard', shown: twoBoards, shows: /^Away since/ },
  { name: 'no curves', view: 'plots', shown: eight, shows: /^No channel is drawn yet/ },
  { name: 'two curves', view: 'plots', shown: eight, plots: ['F.3', '5.0'], shows: 'F.3' },
  { name: 'a console', view: 'console', shown: eight, shows: /^Nothing said yet/ },
  {
    name: 'a console with an answer, and what fits',
    view: 'console',
    shown: {
      ...eight,
      answers: { ...answers, 'console.run': { lines: ['POLLON:x  Poll card x', 'POLLOFF  None'] } },
    },
    does: async ({ page }: Person) => {
      await page.getByRole('textbox').fill('HELP');
      await page.getByRole('textbox').press('Enter');
    },
    shows: 'HELP',
  },
  { name: 'a journal', view: 'journal', shown: eight, shows: 'started' },
  {
    name: 'a journal of nothing',
    view: 'journal',
    shown: { ...eight, answers: { ...answers, 'journal.get': { entries: [], lost: 0 } } },
    shows: 'Nothing has happened yet.',
  },
];

for (const sight of [...firstRun, ...bench, ...others, ...settings])
  test(`axe finds nothing in ${sight.name}`, async () => {
    stage.hub.isAway = sight.name.endsWith('for the hub');
    const anna = await stage.arrives(sight.shown, { plots: sight.plots ?? [] }, sight.view);
    await sight.does?.(anna);
    await anna.page.getByText(sight.shows).first().waitFor();
    for (const colorScheme of ['dark', 'light'] as const) {
      await anna.page.emulateMedia({ colorScheme });
      assert.deepEqual(await axeFindings(anna), [], colorScheme);
    }
    assert.deepEqual(anna.complaints, []);
    await anna.leaves();
  });

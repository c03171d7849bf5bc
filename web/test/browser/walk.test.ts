// The way of the Tab key through every view: it comes to all that can be pressed, is seen where it is,
// is covered by nothing, and goes on and back from everywhere.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { snapshot } from '../unit/kit.js';
import { Keys, type Place } from './Keys.js';
import type { Person } from './Person.js';
import { eightCards, twoBoards, virtualBus } from './scenes.js';
import { Stage } from './Stage.js';
import type { Scene } from './StandIn.js';

interface Way {
  name: string;
  view: string;
  shown: Partial<Scene>;
  shows: string;
  does?: (person: Person) => Promise<unknown>;
}

const eight = { snapshot: snapshot([...eightCards]) };
const section = (name: string, shows: string): Way => ({
  name,
  view: 'settings',
  shown: eight,
  shows,
  does: (person) => person.presses(name),
});

const ways: Way[] = [
  { name: 'the bench', view: 'bench', shown: eight, shows: 'Servos' },
  { name: 'a virtual bench', view: 'bench', shown: virtualBus, shows: 'Pull the cable' },
  {
    name: 'a bench that is arranged',
    view: 'bench',
    shown: eight,
    does: (person) => person.presses('Arrange'),
    shows: 'Arrange the bench',
  },
  { name: 'the boards', view: 'boards', shown: twoBoards, shows: 'Relays' },
  { name: 'the plots', view: 'plots', shown: eight, shows: 'F.3' },
  { name: 'the console', view: 'console', shown: eight, shows: 'Nothing said yet' },
  { name: 'the journal', view: 'journal', shown: eight, shows: 'started' },
  { name: 'the settings', view: 'settings', shown: eight, shows: 'Kept in the card' },
  section('Accounts', '8 characters or more'),
  section('Tokens', 'There is no token.'),
  section('Backup', 'Put a backup back'),
  section('Appearance', 'This browser only.'),
  {
    name: 'the log-in',
    view: 'bench',
    shown: { who: { account: null, role: null } },
    shows: 'Password',
  },
];

const stage = new Stage();

async function step(keys: Keys, key: string): Promise<Place> {
  await keys.press(key);
  const place = await keys.place();
  assert.ok(place, `${key} leads nowhere`);
  return place;
}

for (const way of ways)
  for (const size of [
    { width: 1440, height: 900 },
    { width: 320, height: 640 },
  ])
    test(`the Tab key goes through ${way.name} at ${size.width}`, async () => {
      const anna = await stage.arrives(way.shown, { ...size, plots: ['F.3', '5.0'] }, way.view);
      await way.does?.(anna);
      await anna.page.getByText(way.shows).first().waitFor();
      const keys = new Keys(anna);
      await keys.begin();
      const places: Place[] = [];
      for (let left = await keys.count(); left > 0; --left) places.push(await step(keys, 'Tab'));
      const twice = places.filter(({ key }, at) => places.findIndex((p) => p.key === key) < at);
      assert.deepEqual(twice, []);
      assert.deepEqual(
        places.filter(({ isMarked, isCovered }) => !isMarked || isCovered),
        [],
      );
      for (const { key } of places.slice(0, -1).reverse())
        assert.equal((await step(keys, 'Shift+Tab')).key, key);
      await anna.leaves();
    });

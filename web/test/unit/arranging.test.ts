import assert from 'node:assert/strict';
import { test } from 'node:test';

import { arrange } from '../../src/views/arrange.js';
import {
  arrangementOf,
  placed,
  raised,
  type Section,
  sectionsOf,
  stepped,
  withGroup,
  withoutGroup,
} from '../../src/views/arranging/sections.js';
import { card } from './kit.js';

const arrangement = {
  order: ['E', '5', '3', '0'],
  hidden: ['0'],
  groups: [{ name: 'Door', cards: ['3', '5'] }],
};
const sections = sectionsOf(['0', '3', '5', 'E', 'F'], arrangement);

function shown(all: readonly Section[]): string[] {
  return all.map(({ kind, name, cards }) => `${kind} ${name}: ${cards.join(' ')}`);
}

test('cards stand in groups, in none, or are hidden, each in the order that is kept', () => {
  assert.deepEqual(shown(sections), ['group Door: 5 3', 'rest : E F', 'hidden : 0']);
  assert.deepEqual(shown(sectionsOf(['5', '3'], {})), ['rest : 3 5', 'hidden : ']);
});

test('what is arranged is read back as it was', () => {
  const kept = arrangementOf(sections);
  assert.deepEqual(kept, {
    order: ['5', '3', 'E', 'F', '0'],
    hidden: ['0'],
    groups: [{ name: 'Door', cards: ['5', '3'] }],
  });
  assert.deepEqual(shown(sectionsOf(['0', '3', '5', 'E', 'F'], kept)), shown(sections));
});

test('a step goes on in the next section at the end of one', () => {
  const once = stepped(sections, '5', 1);
  assert.deepEqual(shown(once)[0], 'group Door: 3 5');
  assert.deepEqual(shown(stepped(once, '5', 1)).slice(0, 2), ['group Door: 3', 'rest : 5 E F']);
  assert.deepEqual(shown(stepped(sections, 'E', -1)).slice(0, 2), [
    'group Door: 5 3 E',
    'rest : F',
  ]);
  assert.deepEqual(shown(stepped(sections, '5', -1)), shown(sections));
  assert.deepEqual(shown(stepped(sections, '0', 1)), shown(sections));
});

test('a card is placed where it is dropped', () => {
  const next = placed(sections, 'F', { section: 0, place: 1 });
  assert.deepEqual(shown(next), ['group Door: 5 F 3', 'rest : E', 'hidden : 0']);
});

test('a group comes with a name that is free, and leaves its cards behind', () => {
  const name = (number: number) => `Group ${number}`;
  const two = withGroup(withGroup(sections, name), name);
  assert.deepEqual(shown(two).slice(1, 3), ['group Group 1: ', 'group Group 2: ']);
  assert.deepEqual(shown(raised(two, 2))[1], 'group Group 2: ');
  assert.deepEqual(shown(withoutGroup(sections, 0)), ['rest : 5 3 E F', 'hidden : 0']);
});

test('an arranged bench keeps its empty slots where a hand can plug cards in', () => {
  const cards = { 3: card('3'), 5: card('5') };
  const own = { order: ['5', '3'] };
  assert.equal(arrange(cards, own).length, 1);
  const rails = arrange(cards, own, true);
  assert.deepEqual(
    rails.map(({ slots }) => slots.map(({ address }) => address).join('')),
    ['53', '01246789ABCDEF'],
  );
});

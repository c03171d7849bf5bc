// What hands do to a virtual bus, as lines.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import {
  cardLine,
  contactLine,
  faults,
  isOn,
  keyLine,
  levelLine,
  turnLine,
} from '../../src/state/hands.js';
import { channel } from './kit.js';

test('a contact is pressed while its line is low, else let go', () => {
  assert.equal(contactLine(channel('3.6', { raw: 0 })), 'press 3 06');
  assert.equal(contactLine(channel('3.12', { raw: 1 })), 'release 3 0C');
  assert.equal(contactLine(channel('3.6', { raw: null })), 'press 3 06');
  assert.equal(contactLine(channel('3.6', { raw: 0 }), true), 'release 3 06');
});

test('a level in its unit becomes a byte', () => {
  assert.equal(levelLine(channel('F.3'), 160), 'set F 03 A0');
  assert.equal(levelLine(channel('F.3', { min: 0, max: 5 }), 2.5), 'set F 03 80');
  assert.equal(levelLine(channel('F.0', { min: -10, max: 10 }), -10), 'set F 00 00');
  const reversed = channel('F.0', { min: -90, max: 90, value: -90, raw: 255 });
  assert.equal(levelLine(reversed, 90), 'set F 00 00');
});

test('keys, turns and cards', () => {
  assert.equal(keyLine('8', 0x2a), 'press 8 2A');
  assert.equal(keyLine('8', null), 'release 8');
  assert.equal(turnLine('8', -3), 'turn 8 -3');
  assert.equal(cardLine('5', 'pull'), 'card 5 pull');
  assert.equal(cardLine('1', 'plug', 'servo'), 'card 1 plug servo');
});

test('a fault is on however much of it is left', () => {
  const named = (name: string) => faults.filter((fault) => fault.name === name);
  assert.ok(named('drop').every((fault) => isOn(fault, ['late 40ms', 'drop next 7'])));
  assert.ok(named('noise').every((fault) => !isOn(fault, ['late 40ms', 'drop next 7'])));
});

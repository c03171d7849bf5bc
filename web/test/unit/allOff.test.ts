// All outputs off: what is sent, in which order, and what is said of it.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { Refusal } from '../../src/api/Refusal.js';
import type { Card } from '../../src/api/Shapes.js';
import { offValues, valuesBefore } from '../../src/state/allOff.js';
import { switchAllOff, undoAllOff } from '../../src/state/deeds/allOff.js';
import { card, channel } from './kit.js';
import { pretendHub } from './pretendHub.js';

const drive = (number: number, min = 0) =>
  channel(`4.${number}`, { type: 'drive', value: 200, raw: 200, min, max: min < 0 ? 100 : 255 });
const motor = card('4', { kind: 'motor', channels: [0, 1, 2, 3].map((n) => drive(n)) });
const signed = card('4', { kind: 'motor', channels: [0, 1, 2].map((n) => drive(n, -100)) });
const relays = card('5', { name: 'Relays', channels: [channel('5.0', { value: true })] });
const spare = card('6', { name: 'Spare', channels: [channel('6.0', { value: true })] });

const refused = (detail: string) => new Refusal({ title: 'no', status: 503, detail, where: null });

test('lines go off, motors stand still, the rest stays', () => {
  assert.deepEqual(offValues(card('5'), []), { 0: false, 1: false });
  assert.deepEqual(offValues(motor, [0, 8, 1]), { 0: 0, 1: 128, 2: 128 });
  assert.deepEqual(offValues(signed, [8, 8, 8]), { 0: 0, 1: 0, 2: 0 });
  assert.deepEqual(offValues(card('0', { kind: 'servo' }), []), {});
});

test('no drive is sent anything before it is known how it stands still', () => {
  assert.equal(offValues(motor, [0, 8, null]), null);
  assert.equal(offValues(motor, []), null);
  assert.deepEqual(offValues(signed, []), { 0: 0, 1: 0, 2: 0 });
  assert.deepEqual(offValues(signed, [0, 8, null]), { 0: -100, 1: 0, 2: 0 });
});

test('undoing puts back what was known', () => {
  const lines = [channel('5.0', { value: true }), channel('5.1', { known: false, value: null })];
  const known = card('5', { channels: lines });
  assert.deepEqual(valuesBefore(known, { 0: false, 1: false }), { 0: true });
});

test('lines go first; a motor card that nobody has asked is asked, then stopped', async () => {
  const hub = pretendHub([motor, relays], (method, { ask }) =>
    method === 'card.settings.get' ? { silent_range: ask ? [16, 0, 1] : [null, 0, 1] } : relays,
  );
  await switchAllOff(hub);
  assert.deepEqual(hub.asked, [
    ['cards.set', { address: '5', values: { 0: false } }],
    ['card.settings.get', { address: '4' }],
    ['card.settings.get', { address: '4', ask: true }],
    ['cards.set', { address: '4', values: { 0: 128, 1: 0, 2: 128 } }],
  ]);
  assert.equal(hub.state.allOff?.stage, 'off');
  await undoAllOff(hub);
  assert.deepEqual(hub.asked.slice(4), [
    ['cards.set', { address: '4', values: { 0: 200, 1: 200, 2: 200 } }],
    ['cards.set', { address: '5', values: { 0: true } }],
  ]);
});

test('nothing is called off before it is off', async () => {
  let answer: (card: Card) => void = () => undefined;
  const hub = pretendHub([relays], () => new Promise<Card>((resolve) => (answer = resolve)));
  const switching = switchAllOff(hub);
  assert.equal(hub.state.allOff?.stage, 'going');
  await switchAllOff(hub); // held once more
  assert.equal(hub.asked.length, 1);
  answer(card('5', { channels: [channel('5.0', { pending: true })] }));
  await switching;
  assert.equal(hub.state.allOff.stage, 'waiting');
});

test('a card that fails keeps no other from being switched, and is named', async () => {
  const hub = pretendHub([motor, relays, spare], (_method, { address }) => {
    if (address === '6') return spare;
    throw refused(address === '4' ? 'card 4 gave no silent_range' : 'the daemon is not there');
  });
  await switchAllOff(hub);
  assert.deepEqual(hub.told, [
    'Not off: 5 Relays (the daemon is not there)',
    'Not off: 4 Motors (card 4 gave no silent_range)',
  ]);
  assert.equal(hub.state.allOff?.stage, 'partly');
  assert.deepEqual(hub.state.allOff.before, { 6: { 0: true } });
});

test('where nothing was reached, there is nothing to undo', async () => {
  const hub = pretendHub([relays], () => {
    throw refused('the daemon is not there');
  });
  await switchAllOff(hub);
  assert.equal(hub.state.allOff, null);
  assert.deepEqual(hub.told, ['Not off: 5 Relays (the daemon is not there)']);
});

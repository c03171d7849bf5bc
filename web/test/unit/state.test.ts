import assert from 'node:assert/strict';
import { test } from 'node:test';

import { Backoff } from '../../src/api/Backoff.js';
import { Rpc } from '../../src/api/Rpc.js';
import { progressOf } from '../../src/state/firstRun.js';
import { Asked } from '../../src/state/Asked.js';
import { healthOf } from '../../src/state/health.js';
import { Latest } from '../../src/state/Latest.js';
import { certainty, namedCodes } from '../../src/state/select.js';
import { stepsOf } from '../../src/state/steps.js';
import { arrange } from '../../src/views/arrange.js';
import { bus, card, channel } from './kit.js';

test('tries come after 1 s, doubling to 30 s', () => {
  const backoff = new Backoff(() => 1);
  const waits = Array.from({ length: 7 }, () => backoff.next());
  assert.deepEqual(waits, [1000, 2000, 4000, 8000, 16000, 30000, 30000]);
  backoff.reset();
  assert.equal(backoff.next(), 1000);
  assert.equal(new Backoff(() => 0).next(), 750);
});

test('answers find their requests, and a loss ends those that wait', async () => {
  const sent: string[] = [];
  const rpc = new Rpc(
    (text) => sent.push(text),
    () => undefined,
  );
  const first = rpc.call('bus.get');
  const second = rpc.call('channels.set', { id: '5.0', value: true });
  assert.equal(
    sent[1],
    '{"jsonrpc":"2.0","id":2,"method":"channels.set","params":{"id":"5.0","value":true}}',
  );
  rpc.take(
    '{"jsonrpc":"2.0","id":2,"error":{"code":-32602,"message":"does not fit","data":' +
      '{"title":"does not fit","status":422,"detail":"on or off","where":"value"}}}',
  );
  await assert.rejects(second, { message: 'on or off' });
  rpc.end('gone');
  await assert.rejects(first, { message: 'gone' });
});

test('whoever asks faster than the hub answers ends with the latest', async () => {
  const done: number[] = [];
  const latest = new Latest();
  const task = (value: number) => async () => {
    await Promise.resolve();
    done.push(value);
  };
  await Promise.all([1, 2, 3, 4].map((value) => latest.run('0.0', task(value))));
  assert.deepEqual(done, [1, 4]);
});

test('after a failure the latest is asked all the same, and others later', async () => {
  const latest = new Latest();
  const done: string[] = [];
  const fails = () => Promise.reject(new Error('no'));
  const works = () => Promise.resolve(void done.push('works'));
  await assert.rejects(latest.run('F.0', fails), { message: 'no' });
  await Promise.all([latest.run('F.0', fails), latest.run('F.0', works)]);
  assert.deepEqual(done, ['works']);
});

test('a press goes on from what was asked last, till the hub has answered', () => {
  const asked = new Asked<number>();
  assert.equal(asked.or(0, 0), 0);
  asked.note(0x80, 1000);
  assert.equal(asked.or(0, 1200), 0x80);
  assert.equal(asked.or(0, 1800), 0);
});

test('a channel stands where its byte says, on the end that its value says', () => {
  const level = { min: 0, max: 5, value: 3, raw: 140 };
  assert.equal(stepsOf(level), 140);
  assert.equal(stepsOf({ min: -90, max: 90, value: 90, raw: 0 }), 255);
  assert.equal(stepsOf({ ...level, raw: null }), null);
});

test('a value says how sure it is', () => {
  assert.equal(certainty(channel('5.0')), 'known');
  assert.equal(certainty(channel('5.0', { assumed: true })), 'assumed');
  assert.equal(certainty(channel('5.0', { known: false, value: null })), 'unknown');
  assert.equal(certainty(channel('5.0', { assumed: true, pending: true })), 'pending');
});

test('an empty bench waits for one step at a time', () => {
  const absent = { ...bus, daemon: { ...bus.daemon, state: 'absent' as const } };
  const states = (found: typeof bus) =>
    progressOf({ connection: 'open', bus: found }).map(({ state }) => state);
  assert.deepEqual(states(absent), ['done', 'now', 'later', 'later']);
  assert.deepEqual(states(bus), ['done', 'done', 'done', 'now']);
  const blind = { ...bus, adapter: { ...bus.adapter, state: 'unknown' as const } };
  assert.deepEqual(states(blind), ['done', 'done', 'unsure', 'now']);
});

test('a lost connection says nothing about the daemon', () => {
  const words = (connection: 'open' | 'lost') =>
    healthOf({ connection, bus }).map(({ word }) => word);
  assert.deepEqual(words('open'), ['up', 'up', 'open']);
  assert.deepEqual(words('lost'), ['unknown', 'unknown', 'lost']);
});

test('an adapter of which nothing is known says why', () => {
  const blind = { ...bus, adapter: { state: 'unknown' as const, device: null, version: null } };
  const [, adapter] = healthOf({ connection: 'open', bus: blind });
  assert.match(adapter?.detail ?? '', /cannot read the daemon's log/);
});

test('a broker is told with its host, and why it refuses', () => {
  const broker = { state: 'refused' as const, host: 'mqtt.local', detail: 'not authorised' };
  const row = (connection: 'open' | 'lost') =>
    healthOf({ connection, bus: { ...bus, broker } }).find(({ part }) => part === 'broker');
  assert.deepEqual(row('open'), {
    part: 'broker',
    sign: 'wrong',
    word: 'refused',
    detail: 'mqtt.local, not authorised',
  });
  assert.equal(row('lost')?.word, 'unknown');
  assert.equal(
    healthOf({ connection: 'open', bus }).some(({ part }) => part === 'broker'),
    false,
  );
});

test('cards stand by address in sixteen slots, till somebody arranges them', () => {
  const cards = { 3: card('3'), 5: card('5'), E: card('E') };
  const plain = arrange(cards, {});
  assert.equal(plain[0]?.slots.length, 16);
  assert.equal(plain[0].slots[5]?.card, cards[5]);
  assert.equal(plain[0].slots[6]?.card, null);
  const own = arrange(cards, {
    order: ['E', '5'],
    hidden: ['5'],
    groups: [{ name: 'Door', cards: ['3'] }],
  });
  assert.deepEqual(
    own.map(({ title, slots }) => [title, slots.map(({ address }) => address)]),
    [
      ['Door', ['3']],
      [null, ['E']],
    ],
  );
});

test('codes that have a name come by their names', () => {
  assert.deepEqual(namedCodes(card('9', { codes: { FF: 'TV on', '434F': 'Radio' } })), [
    { bytes: '434F', name: 'Radio' },
    { bytes: 'FF', name: 'TV on' },
  ]);
  assert.deepEqual(namedCodes(card('9', { codes: null })), []);
  assert.deepEqual(namedCodes(card('9')), []);
});

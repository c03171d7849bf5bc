// How the page looks where it is narrow, wide, enlarged, without colours, on paper.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import type { Card } from '../../src/api/Shapes.js';
import { bus, snapshot } from '../unit/kit.js';
import { axeFindings } from './axe.js';
import { eventually, type Person } from './Person.js';
import { differing } from './pictures.js';
import { cardOf, eightCards, fullCards, virtualBus } from './scenes.js';
import { Stage } from './Stage.js';
import type { Scene } from './StandIn.js';

const views = ['bench', 'plots', 'journal', 'settings'];

const stage = new Stage();

function sizeOf({ page }: Person): Promise<{ width: number; height: number }> {
  return page.evaluate(() => {
    const { scrollWidth, scrollHeight } = document.documentElement;
    return { width: scrollWidth, height: scrollHeight };
  });
}

for (const size of [
  { width: 1440, height: 900 },
  { width: 2560, height: 1440 },
])
  test(`sixteen cards stand at ${size.width} by ${size.height} without scrolling`, async () => {
    const anna = await stage.arrives({}, size);
    await anna.page.locator('qelm-plate').nth(15).waitFor();
    assert.deepEqual(await sizeOf(anna), size);
    await anna.leaves();
  });

test('states of a card, and how sure a value is, differ without their colours', async () => {
  const kinds = ['digital-output', 'servo', 'motor', 'lcd'] as const;
  for (const kind of kinds) {
    const shapes: Card[] = [
      cardOf('5', kind),
      { ...cardOf('5', kind), state: 'silent' },
      { ...cardOf('5', kind), state: 'absent' },
    ];
    if (kind !== 'lcd')
      shapes.push(
        cardOf('5', kind, { known: false, value: null }),
        cardOf('5', kind, { assumed: true }),
        cardOf('5', kind, { pending: true }),
      );
    const pictures = [];
    for (const shape of shapes)
      pictures.push(await greyPlate({ snapshot: snapshot([shape, cardOf('0', 'keys')]) }));
    const gone = { ...bus, daemon: { ...bus.daemon, state: 'absent' as const } };
    pictures.push(await greyPlate({ snapshot: snapshot([cardOf('5', kind)], { bus: gone }) }));
    for (const [at, picture] of pictures.entries())
      for (const [other, another] of pictures.slice(0, at).entries())
        assert.ok(differing(picture, another) > 150, `${kind}: ${at} looks like ${other}`);
  }
});

async function greyPlate(shown: Partial<Scene>): Promise<Buffer> {
  const anna = await stage.arrives(shown, { width: 360, height: 1200 });
  const session = await anna.page.context().newCDPSession(anna.page);
  await session.send('Emulation.setEmulatedVisionDeficiency', { type: 'achromatopsia' });
  const plate = anna.page.locator('qelm-plate').last();
  await plate.waitFor();
  const clip = { x: 0, y: 0, width: 300, height: 420 };
  const box = await plate.boundingBox();
  const picture = await anna.page.screenshot({
    clip: { ...clip, x: box?.x ?? 0, y: box?.y ?? 0 },
    fullPage: true,
  });
  await anna.leaves();
  return picture;
}

test('on a phone nothing wraps that belongs together, and keys are as wide as a finger', async () => {
  const anna = await stage.arrives(virtualBus, { width: 320, height: 640, touch: true });
  const box = async (name: string) => {
    const found = await anna.page.getByRole('button', { name, exact: true }).boundingBox();
    return found ?? { x: 0, y: 0, width: 0, height: 0 };
  };
  const field = await anna.page.getByRole('textbox', { name: 'Text of row 1' }).boundingBox();
  assert.equal((await box('Write')).y, field?.y);
  assert.ok((field?.width ?? 0) > 150);
  const key = await box('Key 2A');
  assert.ok(key.width >= 44 && key.height >= 44, `${key.width} by ${key.height}`);
  assert.equal((await sizeOf(anna)).width, 320);
  await anna.leaves();
});

test('enlarged to 200 %, no view is wider than the screen', async () => {
  for (const view of [...views, 'console']) {
    const anna = await stage.arrives({}, { width: 640, height: 400 }, view);
    assert.equal((await sizeOf(anna)).width, 640, view);
    await anna.leaves();
  }
});

test('whoever has colours of his own sees what is on', async () => {
  const anna = await stage.arrives({ snapshot: snapshot([...eightCards]) });
  await anna.page.emulateMedia({ forcedColors: 'active' });
  const lens = (value: string) =>
    anna.page
      .locator(`qelm-switch .lamp.${value} .lens`)
      .first()
      .evaluate((element) => getComputedStyle(element).fill);
  assert.notEqual(await lens('on'), await lens('off'));
  assert.deepEqual(await axeFindings(anna), []);
  await anna.leaves();
});

test('nothing moves where the system asks for it', async () => {
  const anna = await stage.arrives({ snapshot: snapshot([...eightCards]) });
  const times = () =>
    anna.page
      .locator('qelm-servo .hand')
      .first()
      .evaluate((element) => getComputedStyle(element).transitionDuration);
  assert.equal(await times(), '0s');
  await anna.page.emulateMedia({ reducedMotion: 'no-preference' });
  assert.equal(await times(), '0.12s');
  await anna.leaves();
});

test('on paper the cards are a table, with what is not sure', async () => {
  const doubtful = cardOf('5', 'digital-output', { assumed: true });
  const anna = await stage.arrives({ snapshot: snapshot([doubtful, cardOf('E', 'lcd')]) });
  await anna.page.emulateMedia({ media: 'print' });
  const table = anna.page.getByRole('table');
  await table.waitFor();
  assert.equal(await table.getByRole('row').count(), 1 + 16 + 4);
  assert.match(await table.innerText(), /5\.3\s+Line 3\s+on\s+assumed/);
  assert.equal(await anna.page.getByRole('switch').count(), 0);
  await anna.leaves();
});

test('an empty bench says what to do at each step', async () => {
  const state = (change: object) => ({ snapshot: snapshot([], { bus: { ...bus, ...change } }) });
  const absent = { ...bus.daemon, state: 'absent' };
  const held = { ...bus.daemon, state: 'waiting', waiting_for: 'io' };
  const steps: [object, RegExp][] = [
    [{ daemon: absent }, /systemctl start qelm/],
    [{ daemon: held }, /holds the daemon's port IO/],
    [{ adapter: { state: 'down', device: null, version: null } }, /Plug its cable in/],
    [{}, /No card answers/],
  ];
  for (const [change, advice] of steps) {
    const anna = await stage.arrives(state(change));
    await anna.reads(advice);
    await anna.leaves();
  }
});

test('a virtual bus without cards offers to plug some in', async () => {
  const empty = { ...virtualBus, snapshot: { ...virtualBus.snapshot, cards: [] } };
  const answers = virtualBus.answers;
  const none = { ...answers, 'virtual.get': { ...answers['virtual.get'], cards: [] } };
  const anna = await stage.arrives({ ...empty, answers: none });
  await anna.reads('The bench is empty');
  assert.equal(await anna.page.getByRole('combobox', { name: /^Plug a new card/ }).count(), 16);
  await anna.page.getByRole('button', { name: 'Pull the cable' }).waitFor();
  await anna.leaves();
});

test('all cards that are pulled are shown as missing, with the way back', async () => {
  const anna = await stage.arrives();
  await anna.reads('Servos');
  stage.hub.tell({ cards: fullCards.map((card) => ({ ...card, state: 'absent' as const })) });
  await anna.reads('The bench is empty');
  await eventually(
    'sixteen missing',
    async () => (await anna.page.getByText('missing', { exact: true }).count()) === 16,
  );
  await anna.leaves();
});

test('a broker that refuses is seen in the bar and in the settings', async () => {
  const broker = { state: 'refused' as const, host: 'mqtt.local', detail: 'not authorised' };
  const shown = { snapshot: snapshot([...eightCards], { bus: { ...bus, broker } }) };
  const anna = await stage.arrives(shown, {}, 'settings');
  await anna.page
    .getByRole('listitem')
    .filter({ hasText: /Broker\s*refused/ })
    .waitFor();
  await anna.presses('About');
  await anna.reads('refused, mqtt.local, not authorised');
  await anna.leaves();
});

test('events that were missed are counted till somebody has read it', async () => {
  const anna = await stage.arrives();
  await anna.reads('Servos');
  stage.hub.tell({ lost: 7 });
  await anna.reads('7 events were missed');
  stage.hub.tell({ lost: 2 });
  await anna.reads('9 events were missed');
  await anna.presses('Dismiss');
  await anna.doesNotRead(/missed/);
  stage.hub.tell({ lost: 1 });
  await anna.reads('1 event was missed');
  assert.deepEqual(await axeFindings(anna), []);
  await anna.leaves();
});

test('a connection that is lost is said, and what is shown is not called current', async () => {
  const anna = await stage.arrives();
  await anna.reads('Servos');
  stage.hub.isAway = true;
  stage.hub.drop();
  await anna.reads(/Lost at/);
  await anna.reads('lost');
  assert.equal(await anna.page.locator('.rails.stale').count(), 1);
  stage.hub.isAway = false;
  await anna.doesNotRead(/Lost at/);
  await anna.leaves();
});

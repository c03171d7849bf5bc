// The strip as a person uses it: moved, zoomed, read, saved; and what is drawn outlives a reload.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { eightCards, fullCards, now, scene } from './scenes.js';
import { StandIn } from './StandIn.js';
import { channel, snapshot } from '../unit/kit.js';

const hour = 3_600_000; // ms
const wrong = new Date(Date.parse(now) + 5 * hour).toISOString(); // what a browser's clock shows

let hub: StandIn;
let anna: Person;

before(async () => {
  hub = await StandIn.start(scene(fullCards, { snapshot: snapshot([...eightCards]) }));
  hub.now = now;
  const at = `${hub.address}/#plots`;
  anna = await Person.arrives({ at, now, plots: ['F.3'] });
  await strip().waitFor();
});

after(async () => {
  await closeBrowser();
  await hub.stop();
});

const strip = () => anna.page.getByRole('slider', { name: /^Curves/ });

// The moments at the edges of the window, in ms.
async function edges(): Promise<[number, number]> {
  const of = async (name: string) => Number(await strip().getAttribute(name));
  return [await of('aria-valuemin'), await of('aria-valuemax')];
}

const end = Date.parse(now);
const minutes = 60_000;

function sees(what: string, from: number, to: number): Promise<void> {
  return eventually(what, async () => {
    const [left, right] = await edges();
    return Math.abs(left - from) < 2000 && Math.abs(right - to) < 2000;
  });
}

const spoken = async () => (await strip().getAttribute('aria-valuetext')) ?? '';

// A busy browser is told of the pointer before all is where it stays: it is moved till it is read.
function points(share: number, value: RegExp): Promise<void> {
  return eventually(String(value), async () => {
    const { left, width, y } = await curve();
    await anna.page.mouse.move(left + share * width + 1, y - 1);
    await anna.page.mouse.move(left + share * width, y);
    return value.test(await spoken());
  });
}

// Where on the screen the curve begins and ends.
async function curve(): Promise<{ left: number; width: number; y: number }> {
  const box = await anna.page.locator('.u-over').first().boundingBox();
  if (!box) throw new Error('no curve is drawn');
  return { left: box.x, width: box.width, y: box.y + box.height / 2 };
}

test('a value is read under the pointer', async () => {
  await sees('ten minutes', end - 10 * minutes, end);
  // In the middle, five minutes ago: 120 + 90 sin(30 / 7) is 38.
  await points(0.5, /^12:05:00, Input 3: 38/);
});

test('a drag to the right shows what was before', async () => {
  const { left, width, y } = await curve();
  await points(0.25, /^12:02:/);
  await anna.page.mouse.down();
  await anna.page.mouse.move(left + (3 * width) / 4, y, { steps: 5 });
  await anna.page.mouse.up();
  await sees('five minutes earlier', end - 15 * minutes, end - 5 * minutes);
  await anna.presses('Live');
  await sees('now', end - 10 * minutes, end);
});

test('the wheel zooms about the pointer', async () => {
  await points(0.5, /^12:0[45]:/);
  await anna.page.mouse.wheel(0, -100);
  await sees('eight minutes about the middle', end - 9 * minutes, end - minutes);
  await anna.presses('10 min');
  await anna.presses('Live');
});

test('turns of the wheel between two pictures add up', async () => {
  const turns = 3;
  await strip().evaluate((element, count) => {
    const { left, width } = element.getBoundingClientRect();
    for (let turn = 0; turn < count; ++turn)
      element.dispatchEvent(
        new WheelEvent('wheel', { deltaY: -100, clientX: left + width, cancelable: true }),
      );
  }, turns);
  const span = 10 * minutes * 0.8 ** turns;
  await sees('the last five minutes', end - span, end);
  await anna.presses('10 min');
  await anna.presses('Live');
});

test('keys move, zoom and read', async () => {
  await strip().press('PageUp');
  await sees('eight minutes earlier', end - 18 * minutes, end - 8 * minutes);
  await strip().press('PageDown');
  await sees('now', end - 10 * minutes, end);
  await strip().press('Home');
  await eventually('the first moment', async () => (await spoken()).startsWith('12:00:00'));
  await strip().press('Escape');
});

test('what is seen is saved, a row a change', async () => {
  const coming = anna.page.waitForEvent('download');
  await anna.presses('Save as CSV');
  const file = await coming;
  assert.equal(file.suggestedFilename(), 'bench-2026-11-21.csv');
  const rows = readFileSync(await file.path(), 'utf8')
    .trimEnd()
    .split('\r\n');
  assert.equal(rows[0], 'time,channel,name,mean,least,most,unit');
  assert.equal(rows[1], '2026-11-21T12:00:00.000Z,F.3,Input 3,120,120,120,');
  assert.equal(rows[2], '2026-11-21T12:00:10.000Z,F.3,Input 3,133,133,133,');
});

test('a curve begins at the left edge where a value is known of then', async () => {
  await points(0.001, /Input 3: 120/);
});

test('a browser whose clock is hours off shows what the hub tells, when it was', async () => {
  for (const clock of [wrong, new Date(2 * end - Date.parse(wrong)).toISOString()]) {
    const ben = await Person.arrives({ at: `${hub.address}/#plots`, now: clock, plots: ['F.3'] });
    const edge = async (name: string) =>
      Number(
        await ben.page.getByRole('slider', { name: /^Curves/ }).getAttribute(`aria-value${name}`),
      );
    const isNow = async (at: number) => Math.abs((await edge('max')) - at) <= 1100;
    await eventually("it ends at the hub's now", () => isNow(end));
    assert.ok(Math.abs((await edge('min')) - (end - 10 * minutes)) <= 1100);
    const later = new Date(end + 20_000).toISOString();
    hub.tell({ channels: [channel('F.3', { type: 'level', value: 77, raw: 77, since: later })] });
    await eventually('it goes on with what comes', () => isNow(end + 20_000));
    await ben.reads('77');
    await ben.leaves();
  }
});

test('what is drawn is there after a reload; a card that is gone draws nothing', async () => {
  const other = await Person.arrives({ at: `${hub.address}/#plots` });
  await other.page.getByText('Channels', { exact: true }).waitFor();
  await other.page.getByRole('checkbox', { name: 'Input 4' }).check();
  await other.page.getByRole('button', { name: '1 h', exact: true }).click();
  await other.page.reload();
  await other.page.getByRole('button', { name: 'Take Input 4 away' }).waitFor();
  await other.page.getByRole('button', { name: '1 h', exact: true, pressed: true }).waitFor();
  hub.show({ snapshot: snapshot(eightCards.filter(({ address }) => address !== 'F')) });
  await other.page.reload();
  await other.page.getByText('Channels', { exact: true }).waitFor();
  assert.equal(await other.page.getByRole('alert').innerText(), '');
  assert.deepEqual(other.complaints, []);
  await other.leaves();
});

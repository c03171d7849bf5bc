// A tab that nobody has looked at for an hour: its machine slept, and the connection has died without
// a word to either end.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { closeBrowser, Person } from './Person.js';
import { cardOf, scene } from './scenes.js';
import { StandIn } from './StandIn.js';
import { channel, snapshot } from '../unit/kit.js';

const bench = (isOn: boolean) => ({
  snapshot: snapshot([cardOf('5', 'digital-output', { value: isOn })]),
});
const lamp = 'Line 3';

let hub: StandIn;

before(async () => {
  hub = await StandIn.start(scene([], bench(false)));
});

after(async () => {
  await closeBrowser();
  await hub.stop();
});

test('a tab that slept for an hour finds its connection dead, and is true again', async () => {
  const anna = await Person.arrives({ at: hub.address, sleeps: true });
  await anna.sees(lamp, 'off');
  hub.forget();
  hub.show(bench(true));
  await anna.page.clock.fastForward('01:00:00');
  await anna.sees(lamp, 'on');
  await anna.doesNotRead(/Lost at/);
  hub.tell({ channels: [channel('5.3', { value: false })] });
  await anna.sees(lamp, 'off');
  assert.deepEqual(anna.complaints, []);
  await anna.leaves();
});

test('a tab that slept while its hub was away waits no longer than the hub does', async () => {
  const anna = await Person.arrives({ at: hub.address, sleeps: true });
  await anna.sees(lamp, 'on');
  hub.isAway = true;
  hub.drop();
  await anna.reads(/Lost at/);
  await anna.page.clock.fastForward('01:00:00');
  await anna.reads(/Lost at/);
  hub.isAway = false;
  await anna.page.clock.fastForward('00:00:30'); // the longest wait between two tries
  await anna.doesNotRead(/Lost at/);
  await anna.sees(lamp, 'on');
  await anna.leaves();
});

// Two people at one bench.
import { after, before, test } from 'node:test';

import { closeBrowser, eventually, Person } from './Person.js';
import { Site } from './Site.js';

const actions = 500;

let site: Site;
let anna: Person;

before(async () => {
  site = await Site.start();
  await site.cardsAnswer();
  anna = await Person.arrives();
});

after(async () => {
  await closeBrowser();
  await site.stop();
});

// All that can be switched and turned, as it is said to whoever does not see it.
function allValues(person: Person): Promise<string> {
  return person.page
    .locator('css=[aria-checked], [role="slider"]')
    .evaluateAll((parts) =>
      parts
        .map(
          (part) => part.getAttribute('aria-checked') ?? part.getAttribute('aria-valuetext') ?? '',
        )
        .join(' '),
    );
}

test('two browsers agree after 500 actions at random', async () => {
  const ben = await Person.arrives();
  let seed = 17;
  const random = (below: number) => {
    seed = (seed * 48271) % 2147483647;
    return seed % below;
  };
  const act = async (person: Person) => {
    const parts = person.page.locator('css=[aria-checked], [role="slider"]');
    await parts.nth(random(await parts.count())).evaluate(
      (part, key) => {
        if (part.hasAttribute('aria-checked')) (part as HTMLElement).click();
        else part.dispatchEvent(new KeyboardEvent('keydown', { key, bubbles: true }));
      },
      ['ArrowUp', 'PageUp', 'Home', 'End'][random(4)] ?? '',
    );
  };
  for (let count = 0; count < actions; count += 2) await Promise.all([act(anna), act(ben)]);
  await eventually(
    'both see the same',
    async () => (await allValues(anna)) === (await allValues(ben)),
  );
  await ben.leaves();
  const carl = await Person.arrives();
  await eventually(
    'as whoever comes',
    async () => (await allValues(anna)) === (await allValues(carl)),
  );
  await carl.leaves();
});

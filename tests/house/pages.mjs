// Opens pages in one browser and leaves them open. Says "ready", and for each line that it is given
// what each page shows now: [{"5.0":"on","0.3":"17"},...].
//
//   pages.mjs URL...
import { createRequire } from 'node:module';
import { createInterface } from 'node:readline';

const { chromium } = createRequire(new URL('../../web/package.json', import.meta.url))(
  'playwright-core',
);

const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: ['--no-sandbox', '--disable-renderer-backgrounding'],
});
const pages = [];
for (const url of process.argv.slice(2)) {
  const page = await browser.newPage();
  await page.goto(url);
  pages.push(page);
}
console.log('ready');

// As it is said to whoever does not see it.
const shown = (page) =>
  page.locator('css=[aria-checked], [role="slider"], [role="img"]').evaluateAll((parts) => {
    const values = {};
    for (const part of parts) {
      const id = part.getRootNode().host?.channel?.id;
      if (!id) continue;
      const checked = part.getAttribute('aria-checked');
      values[id] = checked
        ? checked === 'true' ? 'on' : 'off'
        : (part.getAttribute('aria-valuetext') ?? part.getAttribute('aria-label').split(': ').pop());
    }
    return values;
  });

for await (const _ of createInterface({ input: process.stdin }))
  console.log(JSON.stringify(await Promise.all(pages.map(shown))));
await browser.close();

// Measures the page in Debian's chromium, with a stand-in for the hub that tells as many changes as
// are wanted, and writes a report. Nothing here passes or fails.
import { writeFileSync } from 'node:fs';
import { cpus, loadavg } from 'node:os';

import { closeBrowser, openBrowser } from '../test/browser/Person.js';
import { StandIn } from '../test/browser/StandIn.js';
import { fullCards, scene } from '../test/browser/scenes.js';
import { firstBytes } from '../test/unit/firstLook.js';
import { Changing } from './Changing.js';
import { Look } from './Look.js';

const rounds = 3;
const rate = 1000; // changes a second
const beat = 20; // ms between two messages
const rateTime = 10_000; // ms
const million = 1_000_000;
const settled = 1000; // ms after the first switch, when the rest is drawn too
const weekSteps = 7 * 48; // of half an hour
const half = 30 * 60_000; // ms

const median = (values: number[]) => [...values].sort((a, b) => a - b)[values.length >> 1] ?? 0;
const pause = (time: number) => new Promise((resolve) => setTimeout(resolve, time));

type Row = [what: string, limit: string, found: string];

const hub = await StandIn.start(scene(fullCards));
const changing = new Changing(hub, fullCards);
const browser = await openBrowser();
const load = loadavg()[0] ?? 0;

async function firstLook(slowdown: number): Promise<{ usable: number; longest: number }> {
  const look = await Look.at(browser, hub.address, slowdown);
  const usable = await look.usableAfter();
  await pause(settled);
  const longest = await look.longestTask();
  await look.close();
  return { usable, longest };
}

async function loads(): Promise<Row[]> {
  const slow: number[] = [];
  const longest: number[] = [];
  for (let round = 0; round < rounds; ++round) {
    slow.push((await firstLook(4)).usable);
    longest.push((await firstLook(1)).longest);
  }
  const usable = median(slow);
  const most = median(longest); // of those that the browser tells of
  return [
    ['first load, compressed', '80 KB', `${(firstBytes() / 1024).toFixed(1)} KB`],
    ['usable, the processor slowed four times', '1,200 ms', `${usable.toFixed(0)} ms`],
    ['longest task while it loads', '100 ms', most > 0 ? `${most.toFixed(0)} ms` : 'below 50 ms'],
  ];
}

async function pace(): Promise<Row[]> {
  const look = await Look.at(browser, hub.address, 1);
  await look.usableAfter();
  const before = await look.counters();
  const begin = Date.now();
  for (let sent = 0; Date.now() - begin < rateTime; ) {
    const due = Math.floor(((Date.now() - begin) * rate) / 1000);
    changing.tell(due - sent);
    sent = due;
    await pause(beat);
  }
  const after = await look.counters();
  const seconds = (Date.now() - begin) / 1000;
  const busy = ((after.busy - before.busy) / seconds) * 100;
  await look.close();
  return [
    [
      'pictures a second, 1,000 changes a second',
      '50',
      ((after.frames - before.frames) / seconds).toFixed(0),
    ],
    ['main thread busy meanwhile', '60 %', `${busy.toFixed(0)} %`],
  ];
}

async function memory(): Promise<Row[]> {
  const look = await Look.at(browser, hub.address, 1);
  await look.usableAfter();
  const heaps: string[] = [];
  const each = 1000;
  for (let sent = 0; sent <= million; sent += each) {
    changing.tell(each);
    if (sent % (4 * each) === 0) await look.frame();
    if (sent % (million / 4) === 0) heaps.push(await look.heap());
  }
  await look.close();
  return [['heap at 0, 1/4, 1/2, 3/4 and all of a million changes, MB', 'flat', heaps.join(', ')]];
}

async function week(): Promise<Row[]> {
  const look = await Look.at(browser, hub.address, 1, true);
  await look.passes(1000);
  const heaps: string[] = [];
  for (let step = 0; step <= weekSteps; ++step) {
    changing.tell(100);
    await look.passes(half);
    if (step % (weekSteps / 4) === 0) heaps.push(await look.heap());
  }
  await look.close();
  return [['heap at the quarters of a simulated week, MB', 'flat', heaps.join(', ')]];
}

const rows: Row[] = [];
for (const part of [loads, pace, memory, week]) {
  const found = await part();
  console.error(found.map((row) => row.join(': ')).join('\n'));
  rows.push(...found);
}
const version = browser.version();
await closeBrowser();
await hub.stop();

const report = `# What the page costs

Sixteen cards, 1440 by 900, chromium ${version} without a graphics processor, ${cpus().length}
processors at a load of ${load.toFixed(1)} from elsewhere. A stand-in for the hub tells the changes; medians
of ${rounds} rounds. \`node bench/run.mjs ../docs/reports/page.md\` in \`web/\` measures it again.

| | at most, or at least | measured |
|---|---|---|
${rows.map((row) => `| ${row.join(' | ')} |`).join('\n')}
`;
console.log(report);
if (process.argv[2]) writeFileSync(process.argv[2], report);

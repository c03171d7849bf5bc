// A person at the page, in a browser of his own: what he does and what he sees. Things are found by
// their role and name, as a screen reader finds them.
import { strict as assert } from 'node:assert';

import { type Browser, chromium, type Locator, type Page } from 'playwright-core';

import { Coverage } from './Coverage.js';
import { address } from './Site.js';

// What is seen takes a tenth of a second, a daemon greets seven seconds after its last client went,
// and a busy machine takes many times that.
const patience = 60_000; // ms

let browser: Browser | undefined;
const coverage = new Coverage();

export async function openBrowser(): Promise<Browser> {
  browser ??= await chromium.launch({
    executablePath: process.env['CHROMIUM'] ?? '/usr/bin/chromium',
    // Pages that nobody looks at would be drawn when others leave time for it.
    args: ['--no-sandbox', '--disable-renderer-backgrounding'],
  });
  return browser;
}

export async function closeBrowser(): Promise<void> {
  await coverage.keepAll();
  await browser?.close();
  browser = undefined;
}

export interface Look {
  width?: number;
  height?: number;
  theme?: 'dark' | 'light';
  touch?: boolean;
  scale?: number; // dots a pixel
  at?: string; // a hub other than the site's, and a view of it
  now?: string; // the time stands still there
  sleeps?: boolean; // its clock can be put forward
  plots?: string[]; // channels that were drawn before
}

function escaped(name: string): string {
  return name.replace(/[.*+?^${}()|[\]\\]/g, '\\$&');
}

export async function eventually(what: string, holds: () => Promise<boolean>): Promise<void> {
  const end = Date.now() + patience;
  while (Date.now() < end) {
    if (await holds()) return;
    await new Promise((resolve) => setTimeout(resolve, 20));
  }
  assert.fail(`not within ${patience} ms: ${what}`);
}

export class Person {
  readonly complaints: string[] = []; // of the browser: scripts, styles, what the policy forbids

  private constructor(readonly page: Page) {
    page.on('pageerror', (error) => this.complaints.push(error.message));
    page.on('console', (message) => {
      if (/Content Security Policy|Refused to/.test(message.text()))
        this.complaints.push(message.text());
    });
  }

  static async arrives(look: Look = {}): Promise<Person> {
    const opened = await openBrowser();
    const { width = 1440, height = 900, theme = 'dark', touch = false, at = address } = look;
    const context = await opened.newContext({
      viewport: { width, height },
      colorScheme: theme,
      hasTouch: touch,
      deviceScaleFactor: look.scale ?? 1,
      reducedMotion: 'reduce',
      timezoneId: 'UTC',
    });
    const person = new Person(await context.newPage());
    person.page.setDefaultTimeout(patience);
    if (look.now !== undefined) await person.page.clock.setFixedTime(look.now);
    await coverage.begin(person.page);
    if (look.sleeps) await person.page.clock.install();
    if (look.plots)
      await person.page.addInitScript(
        (kept) => {
          localStorage.setItem('qelm-plots', kept);
        },
        JSON.stringify({ channels: look.plots }),
      );
    await person.page.goto(at);
    await person.page.getByRole('heading', { level: 1, name: /./ }).waitFor();
    return person;
  }

  async leaves(): Promise<void> {
    await coverage.keep(this.page);
    await this.page.context().close();
  }

  // A switch, a dial, a picture: "Lamp", "Lamp, assumed: ...", "Lamp: on".
  part(name: string): Locator {
    const label = new RegExp(`^${escaped(name)}(,[^:]*(: not sent[^:]*)?)?(: .*)?$`, 's');
    const { page } = this;
    return page
      .getByRole('switch', { name: label })
      .or(page.getByRole('slider', { name: label }))
      .or(page.getByRole('img', { name: label }))
      .or(page.getByRole('group', { name: label }));
  }

  async press(name: string): Promise<void> {
    await this.part(name).click();
  }

  async says(name: string): Promise<string> {
    const found = this.part(name);
    const count = await found.count();
    if (count !== 1) return `${count} of them`;
    const part = found.first(); // others may come meanwhile
    const checked = await part.getAttribute('aria-checked');
    if (checked !== null) return checked === 'true' ? 'on' : 'off';
    const value = await part.getAttribute('aria-valuetext');
    return value ?? ((await part.getAttribute('aria-label')) ?? '').replace(/^[^:]*: /, '').trim();
  }

  sees(name: string, value: string): Promise<void> {
    return eventually(`"${name}" is ${value}`, async () => (await this.says(name)) === value);
  }

  reads(text: string | RegExp): Promise<void> {
    return this.page.getByText(text).first().waitFor();
  }

  doesNotRead(text: string | RegExp): Promise<void> {
    return eventually(
      `no "${String(text)}"`,
      async () => (await this.page.getByText(text).count()) === 0,
    );
  }

  async presses(button: string | RegExp): Promise<void> {
    await this.page.getByRole('button', { name: button }).click();
  }

  // Till it has done what it is held for, and offers to undo it.
  async holds(button: string): Promise<void> {
    const held = this.page.getByRole('button', { name: button });
    await held.hover();
    await this.page.mouse.down();
    await this.page.getByRole('button', { name: 'Undo', exact: true }).waitFor();
    await this.page.mouse.up();
  }

  async renames(from: string, to: string): Promise<void> {
    await this.page.getByRole('button', { name: `Rename ${from}`, exact: true }).click();
    const field = this.page.getByRole('textbox', { name: `New name of ${from}`, exact: true });
    await field.fill(to);
    await field.press('Enter');
  }

  async writes(row: number, text: string): Promise<void> {
    await this.page.getByRole('button', { name: `Row ${row}`, exact: true }).click();
    await this.page.getByRole('textbox', { name: `Text of row ${row}` }).fill(text);
    await this.presses('Write');
  }

  async keys(name: string, ...keys: string[]): Promise<void> {
    for (const key of keys) await this.part(name).press(key);
  }

  // Turns a dial by the hand at an angle, 0 is up, as far from its middle as its scale.
  async turns(name: string, angle: number): Promise<void> {
    const { x, y, radius } = await this.middle(name);
    const turn = (angle * Math.PI) / 180;
    await this.page.mouse.move(x, y - radius);
    await this.page.mouse.down();
    await this.page.mouse.move(x + radius * Math.sin(turn), y - radius * Math.cos(turn), {
      steps: 8,
    });
    await this.page.mouse.up();
  }

  // The same with a finger, which follows the scale: what goes down at first would scroll.
  async turnsByFinger(name: string, angle: number): Promise<void> {
    const { x, y, radius } = await this.middle(name);
    const turn = (angle * Math.PI) / 180;
    const path = Array.from({ length: 13 }, (_, step): [number, number] => {
      const part = (turn * step) / 12;
      return [x + radius * Math.sin(part), y - radius * Math.cos(part)];
    });
    await this.strokes(path);
  }

  // A finger that goes straight from one point of the screen to another.
  async drags([fromX, fromY]: [number, number], [toX, toY]: [number, number]): Promise<void> {
    const path = Array.from({ length: 13 }, (_, step): [number, number] => [
      fromX + ((toX - fromX) * step) / 12,
      fromY + ((toY - fromY) * step) / 12,
    ]);
    await this.strokes(path);
  }

  private async strokes(path: readonly [number, number][]): Promise<void> {
    const session = await this.page.context().newCDPSession(this.page);
    const touch = (type: 'touchStart' | 'touchMove' | 'touchEnd', at?: [number, number]) =>
      session.send('Input.dispatchTouchEvent', {
        type,
        touchPoints: at ? [{ x: at[0], y: at[1] }] : [],
      });
    for (const [step, at] of path.entries())
      await touch(step === 0 ? 'touchStart' : 'touchMove', at);
    await touch('touchEnd');
  }

  // Where a dial's axis is, and how far its scale, on the screen.
  private async middle(name: string): Promise<{ x: number; y: number; radius: number }> {
    await this.part(name).waitFor();
    const svg = this.part(name).locator('svg');
    await svg.scrollIntoViewIfNeeded();
    return svg.evaluate((element) => {
      const matrix = (element as unknown as SVGGraphicsElement).getScreenCTM();
      if (!matrix) throw new Error('it is not drawn');
      return { x: matrix.e, y: matrix.f, radius: 40 * matrix.a };
    });
  }
}

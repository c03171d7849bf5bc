// A look at the page that is measured: when it can be used, its tasks, pictures and memory.
import type { Browser, CDPSession, Page } from 'playwright-core';

interface Measured {
  usable: number | null; // ms since the navigation began
  frames: number;
  longest: number; // ms, of the tasks that took more than 50
}

declare const window: Window & { measured: Measured };

// In the page: when the first switch is drawn and can be pressed, each picture, each long task.
function measure(): void {
  const measured: Measured = { usable: null, frames: 0, longest: 0 };
  window.measured = measured;
  const inside = (root: ParentNode | null | undefined, path: string[]): Element | null => {
    const [first = '', ...rest] = path;
    const found = root?.querySelector(first) ?? null;
    return rest.length === 0 ? found : inside(found?.shadowRoot, rest);
  };
  const path = ['qelm-page', 'qelm-bench', 'qelm-plate.digital-output', 'qelm-switch', 'button'];
  const look = () => {
    ++measured.frames;
    if (measured.usable === null && inside(document, path)) measured.usable = performance.now();
    requestAnimationFrame(look);
  };
  requestAnimationFrame(look);
  new PerformanceObserver((list) => {
    for (const { duration } of list.getEntries())
      measured.longest = Math.max(measured.longest, duration);
  }).observe({ type: 'longtask', buffered: true });
}

export class Look {
  private constructor(
    private readonly page: Page,
    private readonly session: CDPSession,
  ) {}

  static async at(browser: Browser, address: string, slowdown: number, isPlayed = false) {
    const page = await browser.newPage({ viewport: { width: 1440, height: 900 } });
    const session = await page.context().newCDPSession(page);
    await session.send('Emulation.setCPUThrottlingRate', { rate: slowdown });
    await session.send('Performance.enable');
    if (isPlayed) await page.clock.install();
    await page.addInitScript(measure);
    await page.goto(address);
    return new Look(page, session);
  }

  async usableAfter(): Promise<number> {
    await this.page.waitForFunction(() => window.measured.usable !== null, null, {
      timeout: 120_000,
    });
    return this.page.evaluate(() => window.measured.usable ?? 0);
  }

  longestTask(): Promise<number> {
    return this.page.evaluate(() => window.measured.longest);
  }

  // Pictures so far, and seconds that the main thread has worked.
  async counters(): Promise<{ frames: number; busy: number }> {
    const frames = await this.page.evaluate(() => window.measured.frames);
    const { metrics } = await this.session.send('Performance.getMetrics');
    return { frames, busy: metrics.find(({ name }) => name === 'TaskDuration')?.value ?? 0 };
  }

  // Returns when the page has taken what was sent, and drawn it.
  async frame(): Promise<void> {
    await this.page.evaluate(
      () => new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve))),
    );
  }

  async heap(): Promise<string> {
    await this.session.send('HeapProfiler.collectGarbage');
    const { metrics } = await this.session.send('Performance.getMetrics');
    const used = metrics.find(({ name }) => name === 'JSHeapUsedSize')?.value ?? 0;
    return (used / 1e6).toFixed(1);
  }

  // Where the clock is played: time goes by.
  passes(time: number): Promise<void> {
    return this.page.clock.fastForward(time);
  }

  close(): Promise<void> {
    return this.page.close();
  }
}

// What of the page has run, where QELM_COVERAGE names a folder: a file a page, for test/coverage.
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';

import type { Page } from 'playwright-core';

const folder = process.env['QELM_COVERAGE'];

export class Coverage {
  private readonly pages = new Set<Page>();
  private count = 0;

  async begin(page: Page): Promise<void> {
    if (folder === undefined) return;
    this.pages.add(page);
    await page.coverage.startJSCoverage({ resetOnNavigation: false });
  }

  async keep(page: Page): Promise<void> {
    if (folder === undefined || !this.pages.delete(page) || page.isClosed()) return;
    const entries = await page.coverage.stopJSCoverage();
    const result = entries
      .filter(({ url }) => url.endsWith('.js'))
      .map(({ url, functions }) => ({ url, functions }));
    const name = `coverage-page-${process.pid}-${++this.count}.json`;
    writeFileSync(join(folder, name), JSON.stringify({ result }));
  }

  async keepAll(): Promise<void> {
    for (const page of this.pages) await this.keep(page);
  }
}

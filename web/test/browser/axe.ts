// What axe-core finds wrong with what a person has before him.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

import type { Person } from './Person.js';

const source = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

interface Finding {
  id: string;
  nodes: { html: string }[];
}

export async function axeFindings({ page }: Person): Promise<string[]> {
  await page.evaluate(source);
  const found = await page.evaluate(async () => {
    const { axe } = window as unknown as { axe: { run: () => Promise<{ violations: Finding[] }> } };
    return (await axe.run()).violations;
  });
  return found.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(' | ')}`);
}

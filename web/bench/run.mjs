// What the page costs: bundles page.ts and runs it. The page must stand in dist/.
//
//   node bench/run.mjs [REPORT]     the report goes to standard output, and to a file
import { spawnSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';
import { join } from 'node:path';

import { build } from 'esbuild';

const here = fileURLToPath(new URL('.', import.meta.url));
const outfile = join(here, '../test/out/bench/page.mjs');

await build({
  entryPoints: [join(here, 'page.ts')],
  outfile,
  bundle: true,
  platform: 'node',
  format: 'esm',
  target: 'node18',
  packages: 'external',
});
const env = { ...process.env, QELM_ROOT: process.env.QELM_ROOT ?? join(here, '../..') };
const { status } = spawnSync(process.execPath, [outfile, ...process.argv.slice(2)], {
  stdio: 'inherit',
  env,
});
process.exit(status ?? 1);

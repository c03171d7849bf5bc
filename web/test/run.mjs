// Runs the tests: bundles them into test/out/ and gives them to Node's own runner.
//
//   node test/run.mjs unit | browser [FILE...] [node --test option...]
//
// FILE is "bench" for bench.test.ts; without one all run.
//
// The browser tests need the programs of build-release/ (QELM_BUILD says where else), the page in
// dist/, and Debian's chromium; they run in a network namespace of their own.
import { spawnSync } from 'node:child_process';
import { readdirSync, rmSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { join } from 'node:path';

import { build } from 'esbuild';

const here = fileURLToPath(new URL('.', import.meta.url));
const [suite = 'unit', ...options] = process.argv.slice(2);
const flags = options.filter((option) => option.startsWith('-'));
const chosen = options.filter((option) => !option.startsWith('-'));
const folder = join(here, suite);
const out = join(here, 'out', suite);

rmSync(out, { recursive: true, force: true });
await build({
  entryPoints: readdirSync(folder)
    .filter((name) => name.endsWith('.test.ts'))
    .filter((name) => chosen.length === 0 || chosen.includes(name.replace('.test.ts', '')))
    .map((name) => join(folder, name)),
  outdir: out,
  outExtension: { '.js': '.mjs' },
  bundle: true,
  platform: 'node',
  format: 'esm',
  target: 'node18',
  sourcemap: 'inline',
  packages: 'external',
});

const files = readdirSync(out).map((name) => join(out, name));
const inNamespace = ['unshare', process.getuid() === 0 ? '-n' : '-rn', 'sh', '-c'];
const env = { ...process.env, QELM_ROOT: process.env.QELM_ROOT ?? join(here, '../..') };

function run(tests) {
  const node = [process.execPath, '--enable-source-maps', '--test', ...flags, ...tests];
  const alone = [...inNamespace, 'ip link set lo up && exec "$@"', 'sh', ...node];
  const [program, ...rest] = suite === 'browser' ? alone : node;
  return spawnSync(program, rest, { stdio: 'inherit', env }).status ?? 1;
}

// Sites have fixed ports: one after the other, each in a namespace of its own.
const results = suite === 'browser' ? files.map((file) => run([file])) : [run(files)];
process.exit(Math.max(...results));

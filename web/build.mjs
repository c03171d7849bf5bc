// Builds the page into dist/: names with a hash of what is in them, each file also compressed.
import { mkdir, readFile, rm, writeFile } from 'node:fs/promises';
import { brotliCompressSync, constants, gzipSync } from 'node:zlib';
import { fileURLToPath } from 'node:url';
import { basename, join, relative } from 'node:path';

import { build } from 'esbuild';

const here = fileURLToPath(new URL('.', import.meta.url));
const dist = join(here, 'dist');
const isWhole = Boolean(process.env.QELM_WHOLE); // with maps, for test/coverage

await rm(dist, { recursive: true, force: true });
await mkdir(dist);

const project = await readFile(join(here, '../CMakeLists.txt'), 'utf8');
const version = /project\(qelm VERSION ([\d.]+)/.exec(project)[1];

const result = await build({
  absWorkingDir: here,
  entryPoints: ['src/main.ts', 'src/theme/page.css', 'src/theme/icon.svg'],
  entryNames: '[name]-[hash]',
  chunkNames: '[name]-[hash]',
  assetNames: '[name]-[hash]',
  outdir: dist,
  bundle: true,
  splitting: true,
  format: 'esm',
  target: ['es2022'],
  minify: !isWhole,
  sourcemap: isWhole && 'inline',
  legalComments: 'none',
  metafile: true,
  write: false,
  loader: { '.svg': 'copy' },
  define: { 'process.env.NODE_ENV': '"production"', QELM_VERSION: JSON.stringify(version) },
});

const files = new Map(result.outputFiles.map((file) => [relative(dist, file.path), file.contents]));
const nameOf = (entry) =>
  basename(
    Object.entries(result.metafile.outputs).find(([, output]) => output.entryPoint === entry)[0],
  );

// What main.js begins with is fetched together with it, not after it.
const { imports } = result.metafile.outputs[`dist/${nameOf('src/main.ts')}`];
const preloads = imports
  .filter(({ kind }) => kind === 'import-statement')
  .map(({ path }) => `<link rel="modulepreload" href="${basename(path)}" />`);

const icon = [...files.keys()].find((name) => name.startsWith('icon-'));
const index = (await readFile(join(here, 'src/index.html'), 'utf8'))
  .replace('main.js', nameOf('src/main.ts'))
  .replace('page.css', nameOf('src/theme/page.css'))
  .replace('icon.svg', icon)
  .replace('</head>', `  ${preloads.join('\n    ')}\n  </head>`);
files.set('index.html', new TextEncoder().encode(index));

for (const [name, bytes] of files) {
  await writeFile(join(dist, name), bytes);
  const parameters = { [constants.BROTLI_PARAM_QUALITY]: 11 };
  await writeFile(join(dist, `${name}.br`), brotliCompressSync(bytes, { params: parameters }));
  await writeFile(join(dist, `${name}.gz`), gzipSync(bytes, { level: 9 }));
}

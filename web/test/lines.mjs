// Which lines of src/ have run, from what test/coverage has gathered in a folder: a line a file, with
// the numbers of those that have not, and all. Bundles tell by their maps where each line went.
//
//   node test/lines.mjs FOLDER
import { Buffer } from 'node:buffer';
import { readdirSync, readFileSync } from 'node:fs';
import { SourceMap } from 'node:module';
import { basename, dirname, join, relative } from 'node:path';
import { fileURLToPath } from 'node:url';

const web = fileURLToPath(new URL('..', import.meta.url));
const [folder] = process.argv.slice(2);

class Bundle {
  constructor(path) {
    this.path = path;
    this.text = readFileSync(path, 'utf8');
    this.hasRun = new Uint8Array(this.text.length); // a character
  }

  // An inner range corrects the one that it is in, and comes after it.
  take(functions) {
    const hasRun = new Uint8Array(this.text.length);
    for (const { ranges } of functions)
      for (const { startOffset, endOffset, count } of ranges)
        hasRun.fill(count > 0 ? 1 : 0, startOffset, endOffset);
    for (const [at, run] of hasRun.entries()) this.hasRun[at] |= run;
  }

  // Calls with each character's file below web/, its line there, and whether it has run.
  forEach(visit) {
    const [code, map] = this.text.split('//# sourceMappingURL=data:application/json;base64,');
    const places = new SourceMap(JSON.parse(Buffer.from(map, 'base64').toString()));
    let offset = 0;
    for (const [row, line] of code.split('\n').entries()) {
      for (let column = 0; column < line.length; ++column) {
        if (line[column] === ' ') continue;
        const { originalSource, originalLine } = places.findEntry(row, column);
        if (originalSource === undefined) continue;
        const file = relative(web, join(dirname(this.path), originalSource));
        visit(file, originalLine + 1, this.hasRun[offset + column] === 1);
      }
      offset += line.length + 1;
    }
  }
}

const bundles = ['dist', 'test/out/unit'].flatMap((place) =>
  readdirSync(join(web, place))
    .filter((name) => /\.m?js$/.test(name))
    .map((name) => new Bundle(join(web, place, name))),
);
const byName = new Map(bundles.map((bundle) => [basename(bundle.path), bundle]));

for (const name of readdirSync(folder).filter((each) => each.endsWith('.json'))) {
  const { result } = JSON.parse(readFileSync(join(folder, name), 'utf8'));
  for (const { url, functions } of result) byName.get(basename(url))?.take(functions);
}

const files = new Map(); // by name: of each line, whether it has run
for (const bundle of bundles)
  bundle.forEach((file, line, run) => {
    if (!file.startsWith('src/')) return;
    const lines = files.get(file) ?? new Map();
    lines.set(line, run || lines.get(line) === true);
    files.set(file, lines);
  });

function tell(all, run, what) {
  const share = `${Math.floor((100 * run) / all)} %`.padStart(5);
  console.log(`${share}  ${`${run}/${all}`.padStart(9)}  ${what}`);
}

const sum = { all: 0, run: 0 };
for (const [name, lines] of [...files].sort()) {
  const missing = [...lines].filter(([, run]) => !run).map(([line]) => line);
  const run = lines.size - missing.length;
  tell(lines.size, run, [name, ...missing.sort((a, b) => a - b)].join(' '));
  sum.all += lines.size;
  sum.run += run;
}
tell(sum.all, sum.run, 'lines of src/ that have run');

// Which functions of src/ the browser has called, from what test/coverage has gathered in a folder:
// a line a file, and all. A bundle that is not squeezed says before each module where it is from.
//
//   node test/functions.mjs FOLDER DIST
import { readdirSync, readFileSync } from 'node:fs';
import { basename, join } from 'node:path';

const [folder, dist] = process.argv.slice(2);
const calls = new Map(); // by "source offset": how often

// The module that an offset of a bundle is in.
function moduleAt(marks, offset) {
  return marks.findLast(({ index }) => index < offset)?.[1] ?? '';
}

for (const name of readdirSync(folder).filter((each) => each.startsWith('coverage-page'))) {
  const { result } = JSON.parse(readFileSync(join(folder, name), 'utf8'));
  for (const { url, functions } of result) {
    const bundle = readFileSync(join(dist, basename(url)), 'utf8');
    const marks = [...bundle.matchAll(/^ *\/\/ ((?:src|node_modules)\/\S+)$/gm)];
    for (const { ranges, functionName } of functions) {
      const [{ startOffset: start, count }] = ranges;
      const module = moduleAt(marks, start);
      if (!module.startsWith('src/') || functionName.startsWith('<')) continue;
      const key = `${module} ${basename(url)} ${start}`;
      calls.set(key, (calls.get(key) ?? 0) + count);
    }
  }
}

const files = new Map();
for (const [key, count] of calls) {
  const file = key.split(' ', 1)[0];
  const { all = 0, called = 0 } = files.get(file) ?? {};
  files.set(file, { all: all + 1, called: called + (count > 0 ? 1 : 0) });
}
const line = (name, { all, called }) =>
  console.log(
    `${String(Math.round((100 * called) / all)).padStart(4)} %  ${called}/${all}  ${name}`,
  );
const sum = { all: 0, called: 0 };
for (const [name, each] of [...files].sort()) {
  line(name, each);
  sum.all += each.all;
  sum.called += each.called;
}
line('functions of src/ that the browser has called', sum);

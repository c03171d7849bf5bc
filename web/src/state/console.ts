// What was said at the daemon's console, and the commands its HELP tells of. Pure.
export interface Said {
  id: number;
  line: string;
  answer: readonly string[] | null; // null: not yet
  problem: string | null;
}

export interface Command {
  form: string; // "POLLON:x"
  stem: string; // what is typed as it stands: "POLLON:"
  what: string;
}

export interface ConsoleLog {
  said: readonly Said[]; // oldest first
  commands: readonly Command[] | null; // null: HELP was not asked
}

const mostSaid = 200;

export const emptyConsole: ConsoleLog = { said: [], commands: null };

export function withLine(log: ConsoleLog, line: string): ConsoleLog {
  const id = (log.said.at(-1)?.id ?? 0) + 1;
  const said = [...log.said, { id, line, answer: null, problem: null }];
  return { ...log, said: said.slice(-mostSaid) };
}

export function withAnswer(log: ConsoleLog, id: number, answer: Partial<Said>): ConsoleLog {
  return { ...log, said: log.said.map((said) => (said.id === id ? { ...said, ...answer } : said)) };
}

// Rows of HELP such as " - POLLON:x           activates polling on ...".
export function commandsIn(help: readonly string[]): Command[] {
  const found = new Map<string, Command>();
  for (const line of help) {
    const [, form, what] = /^\s*- ([A-Z]\S*)\s+(.*)$/.exec(line) ?? [];
    if (form === undefined || what === undefined || found.has(form)) continue;
    const stem = /^[A-Z]+[:=]?/.exec(form)?.[0] ?? form;
    found.set(form, { form, stem, what: what.trim().replace(/\s+/g, ' ') });
  }
  return [...found.values()];
}

// The commands that what was typed can become, or is one of.
export function completions(commands: readonly Command[], typed: string): Command[] {
  const begun = typed.toUpperCase();
  if (begun === '') return [];
  const longer = commands.filter(({ stem }) => stem.startsWith(begun));
  return longer.length > 0 ? longer : commands.filter(({ stem }) => begun.startsWith(stem));
}

// As far as all of them agree; what was typed where they agree on no more.
export function completed(candidates: readonly Command[], typed: string): string {
  const [first, ...others] = candidates.map(({ stem }) => stem);
  if (first === undefined) return typed;
  let length = first.length;
  for (const other of others) while (!other.startsWith(first.slice(0, length))) --length;
  return length > typed.length ? first.slice(0, length) : typed;
}

// Lines typed before, newest first, each once.
export function linesBefore({ said }: ConsoleLog): string[] {
  return [...new Set(said.map(({ line }) => line).reverse())];
}

// The daemon's console.
import { Refusal } from '../../api/Refusal.js';
import { commandsIn, type ConsoleLog, withAnswer, withLine } from '../console.js';
import type { ConsoleIntent } from '../Intent.js';
import type { Deeds, Hub } from './Deeds.js';

export const consoleDeeds: Deeds<ConsoleIntent> = {
  'console-help': async (hub) => {
    if (hub.state.console.commands) return;
    const { lines } = await run(hub, 'HELP');
    put(hub, { ...hub.state.console, commands: commandsIn(lines) });
  },
  'console-run': async (hub, { line }) => {
    put(hub, withLine(hub.state.console, line));
    const id = hub.state.console.said.at(-1)?.id ?? 0;
    try {
      const { lines } = await run(hub, line);
      put(hub, withAnswer(hub.state.console, id, { answer: lines }));
    } catch (reason) {
      if (!(reason instanceof Refusal)) throw reason;
      const { detail } = reason.problem;
      put(hub, withAnswer(hub.state.console, id, { answer: [], problem: detail }));
    }
  },
};

function put(hub: Hub, console: ConsoleLog): void {
  hub.dispatch({ type: 'view', part: { console } });
}

async function run(hub: Hub, line: string): Promise<{ lines: string[] }> {
  return (await hub.ask('console.run', { line })) as { lines: string[] };
}

// The cards of another board: read when somebody looks at it, and set over the broker.
import type { Card, Value } from '../../api/Shapes.js';
import { byAddress } from '../boards.js';
import type { BoardIntent } from '../Intent.js';
import type { Deeds, Hub } from './Deeds.js';

export const boardDeeds: Deeds<BoardIntent> = {
  'board-read': async (hub, { board }) => {
    const { cards } = (await hub.ask('boards.cards.list', { board })) as { cards: Card[] };
    hub.dispatch({ type: 'board', board, cards: byAddress(cards) });
  },
  'board-set': (hub, { board, id, value }) =>
    hub.latest.run(`${board} ${id}`, () => set(hub, board, id, value)),
  'board-write': (hub, { board, address, row, column, text }) =>
    hub.ask('boards.lcd.write', { board, address, row, column, text }),
  'board-control': (hub, { board, address, what }) =>
    hub.ask('boards.lcd.control', { board, address, do: what }),
  'board-infrared': (hub, { board, address, bytes }) =>
    hub.ask('boards.ir.send', { board, address, bytes }),
};

// The new value comes as a change; what is refused is as before.
async function set(hub: Hub, board: string, id: string, value: Value): Promise<void> {
  try {
    await hub.ask('boards.channels.set', { board, id, value });
  } catch (reason) {
    hub.refuse(reason);
  }
}

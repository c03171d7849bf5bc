// The journal: read once, then what is new; older pages by reading more of it.
import type { Journal } from '../../api/Past.js';
import type { JournalIntent } from '../Intent.js';
import { journalAfter, type JournalLog, mostEntries, page, wholeJournal } from '../journal.js';
import type { Deeds, Hub } from './Deeds.js';

export const journalDeeds: Deeds<JournalIntent> = {
  'journal-read': (hub) => hub.latest.run('journal', () => read(hub)),
  'journal-older': (hub) => {
    const { journal } = hub.state;
    const asked = Math.min(mostEntries, journal.asked + 2 * page);
    put(hub, { ...journal, asked, isRead: false });
    return hub.latest.run('journal', () => read(hub));
  },
};

function put(hub: Hub, journal: JournalLog): void {
  hub.dispatch({ type: 'view', part: { journal } });
}

async function read(hub: Hub): Promise<void> {
  const { entries, asked, isRead } = hub.state.journal;
  const newest = { limit: asked };
  const fresh = { after: entries.at(-1)?.seq ?? 0, limit: mostEntries };
  try {
    const answer = (await hub.ask('journal.get', isRead ? fresh : newest)) as Journal;
    const take = isRead ? journalAfter : wholeJournal;
    put(hub, take(hub.state.journal, answer));
  } catch {
    // The connection says so already. What is there may be another hub's next time: all of it again.
    put(hub, { ...hub.state.journal, isRead: false });
  }
}

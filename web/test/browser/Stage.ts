// What a suite of looks has: a stand-in for the hub, for as long as its tests run, and people who come
// to see a scene of theirs.
import { after, before } from 'node:test';

import { closeBrowser, type Look, Person } from './Person.js';
import { fullCards, scene } from './scenes.js';
import { type Scene, StandIn } from './StandIn.js';

export class Stage {
  private standIn: StandIn | undefined;

  constructor() {
    before(async () => {
      this.standIn = await StandIn.start(scene(fullCards));
    });
    after(async () => {
      await closeBrowser();
      await this.standIn?.stop();
    });
  }

  get hub(): StandIn {
    if (!this.standIn) throw new Error('the tests have not begun');
    return this.standIn;
  }

  // Sixteen cards, where nothing else is shown.
  arrives(shown: Partial<Scene> = {}, look: Look = {}, view = 'bench'): Promise<Person> {
    this.hub.now = look.now ?? null;
    this.hub.show({ ...scene(fullCards), ...shown });
    return Person.arrives({ at: `${this.hub.address}/#${view}`, ...look });
  }
}

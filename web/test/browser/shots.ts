// What docs/screens has pictures of: each view as it can be met, and its sizes.
import { bus, snapshot } from '../unit/kit.js';
import type { Look, Person } from './Person.js';
import { eightCards, scene, twoBoards, virtualBus } from './scenes.js';
import type { Scene, StandIn } from './StandIn.js';

export interface Shot {
  name: string;
  shown: Partial<Scene>;
  view: string;
  does?: (person: Person, hub: StandIn) => Promise<unknown>;
  shows: string | RegExp; // when it is ready
  sizes: Look[];
  isWhole?: boolean; // what is below the screen, too
}

const phone = { width: 320, height: 640 };
const desk = { width: 1440, height: 900 };
const wall = { width: 2560, height: 1440, scale: 0.5 };
const sizes = [phone, { width: 768, height: 1024 }, desk];
const two = [phone, desk];

const eight = { snapshot: snapshot([...eightCards]) };
const nobody = { who: { account: null, role: null } };
const viewer = { ...eight, who: { account: 'vera', role: 'view' as const } };
const daemon = { ...bus.daemon, state: 'absent' as const, version: null };
const gone = { snapshot: snapshot([...eightCards], { bus: { ...bus, daemon } }) };

const people = {
  ...eight,
  answers: {
    ...scene([]).answers,
    'accounts.list': {
      accounts: [
        { account: 'ada', role: 'admin' },
        { account: 'operator', role: 'use' },
        { account: 'vera', role: 'view' },
      ],
    },
    'tokens.list': { tokens: [{ name: 'doorbell', role: 'use' }] },
    'tokens.add': { name: 'script', role: 'view', token: '7f3a9c1e5b2d4086a1c3e5f708192a3b' },
  },
};

const presses = (button: string) => (person: Person) => person.presses(button);

// A setting that is opened by its name in the list.
function section(name: string, button: string, shows: string | RegExp, shown = people): Shot {
  return { name, shown, view: 'settings', does: presses(button), shows, sizes: two };
}

// No further try comes while the picture is taken.
async function loses({ page }: Person, hub: StandIn): Promise<void> {
  await page.evaluate(() => {
    const real = window.setTimeout.bind(window);
    Object.assign(window, {
      setTimeout: (act: () => void, after = 0) => (after < 700 ? real(act, after) : 0),
    });
  });
  hub.isAway = true;
  hub.drop();
}

async function makesToken(person: Person): Promise<void> {
  await person.presses('Tokens');
  await person.page.getByRole('textbox', { name: 'Name' }).fill('script');
  await person.presses('Make token');
}

export const shots: Shot[] = [
  {
    name: 'bench',
    shown: eight,
    view: 'bench',
    shows: 'Servos',
    sizes: [...sizes, wall],
    isWhole: true,
  },
  { name: 'full', shown: {}, view: 'bench', shows: 'Servos', sizes: [desk, wall] },
  { name: 'first-run', shown: { snapshot: snapshot([]) }, view: 'bench', shows: /empty/, sizes },
  { name: 'log-in', shown: nobody, view: 'bench', shows: 'Password', sizes },
  { name: 'viewer', shown: viewer, view: 'bench', shows: 'vera', sizes: two },
  { name: 'lost', shown: eight, view: 'bench', does: loses, shows: /Lost at/, sizes: two },
  { name: 'stale', shown: gone, view: 'bench', shows: /daemon is gone/, sizes: two },
  {
    name: 'virtual',
    shown: virtualBus,
    view: 'bench',
    shows: 'Pull the cable',
    sizes: two,
    isWhole: true,
  },
  {
    name: 'arranging',
    shown: eight,
    view: 'bench',
    does: presses('Arrange'),
    shows: 'Arrange the bench',
    sizes: two,
  },
  { name: 'boards', shown: twoBoards, view: 'boards/shed', shows: 'Relays', sizes },
  { name: 'plots', shown: eight, view: 'plots', shows: 'F.3', sizes },
  { name: 'console', shown: eight, view: 'console', shows: /Nothing said/, sizes },
  { name: 'journal', shown: eight, view: 'journal', shows: 'started', sizes },
  { name: 'settings', shown: eight, view: 'settings', shows: 'Cards and channels', sizes },
  section('accounts', 'Accounts', '8 characters or more'),
  { ...section('tokens', 'Tokens', /is shown only now/), does: makesToken },
  section('backup', 'Backup', 'Put a backup back'),
  { ...section('boards-settings', 'Other boards', 'Shed (shed)'), shown: twoBoards },
  section('appearance', 'Appearance', 'This browser only.'),
  section('about', 'About', 'Inputs polled'),
];

// Settings: set-up, what cards keep, accounts and tokens, backups.
import type { Account, CardSettings, NewToken, Setup, Token } from '../../api/Settled.js';
import type { SettingsIntent } from '../Intent.js';
import { may } from '../select.js';
import type { KeptByCard, Settings } from '../settings.js';
import type { Deeds, Hub } from './Deeds.js';
import { askWho } from './session.js';

export const settingsDeeds: Deeds<SettingsIntent> = {
  'settings-read': readAll,
  'setup-card': (hub, { address, setup }) =>
    mergeSetup(hub, { cards: { [address]: setup }, channels: {} }),
  'setup-channel': (hub, { id, setup }) =>
    mergeSetup(hub, { cards: {}, channels: { [id]: setup } }),
  'card-ask': (hub, { address, ask }) =>
    withCard(hub, address, ask ? 'asking' : null, 'card.settings.get', ask ? { ask } : {}),
  'card-set': (hub, { address, settings }) =>
    withCard(hub, address, 'setting', 'card.settings.set', settings),
  'card-store': (hub, { address }) => withCard(hub, address, 'storing', 'card.settings.store', {}),
  'account-add': async (hub, { account, password, role }) => {
    takeAccounts(hub, await hub.ask('accounts.add', { account, password, role }));
    await askWho(hub); // the first account ends the time without a login
  },
  'account-change': async (hub, { account, password, role }) => {
    const change = { account, ...(password ? { password } : {}), ...(role ? { role } : {}) };
    takeAccounts(hub, await hub.ask('accounts.change', change));
  },
  'account-remove': async (hub, { account }) => {
    takeAccounts(hub, await hub.ask('accounts.remove', { account }));
  },
  'token-add': async (hub, { name, role }) => {
    const newToken = (await hub.ask('tokens.add', { name, role })) as NewToken;
    put(hub, { newToken });
    await readTokens(hub);
  },
  'token-remove': async (hub, { name }) => {
    takeTokens(hub, await hub.ask('tokens.remove', { name }));
  },
  'token-seen': (hub) => {
    put(hub, { newToken: null });
    return undefined;
  },
  'backup-read': async (hub) => {
    put(hub, { backup: (await hub.ask('backup.get', {})) as object });
  },
  'backup-put': async (hub, { backup }) => {
    await hub.ask('backup.put', backup);
    put(hub, { restored: Date.now() });
    await readSetup(hub);
  },
};

function put(hub: Hub, part: Partial<Settings>): void {
  hub.dispatch({ type: 'view', part: { settings: { ...hub.state.settings, ...part } } });
}

async function readAll(hub: Hub): Promise<void> {
  await readSetup(hub);
  if (!may(hub.state, 'admin')) return;
  takeAccounts(hub, await hub.ask('accounts.list', {}));
  await readTokens(hub);
}

async function readSetup(hub: Hub): Promise<void> {
  put(hub, { setup: (await hub.ask('setup.get', {})) as Setup });
}

async function readTokens(hub: Hub): Promise<void> {
  takeTokens(hub, await hub.ask('tokens.list', {}));
}

async function mergeSetup(hub: Hub, patch: Setup): Promise<void> {
  put(hub, { setup: (await hub.ask('setup.merge', patch)) as Setup });
}

function takeAccounts(hub: Hub, answer: unknown): void {
  put(hub, { accounts: (answer as { accounts: Account[] }).accounts });
}

function takeTokens(hub: Hub, answer: unknown): void {
  put(hub, { tokens: (answer as { tokens: Token[] }).tokens });
}

async function withCard(
  hub: Hub,
  address: string,
  doing: KeptByCard['doing'],
  method: string,
  params: object,
): Promise<void> {
  const note = (change: Partial<KeptByCard>) => {
    const { cards } = hub.state.settings;
    const card = { ...(cards[address] ?? { settings: {}, doing: null }), ...change };
    put(hub, { cards: { ...cards, [address]: card } });
  };
  note({ doing });
  try {
    const settings = (await hub.ask(method, { address, ...params })) as CardSettings;
    note({ settings, doing: null });
  } catch (reason) {
    note({ doing: null });
    throw reason;
  }
}

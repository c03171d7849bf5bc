// The next state after an action. Pure.
import type { Card, Changes, Problem, Snapshot } from '../api/Shapes.js';
import type { Action } from './Actions.js';
import { boardCardsAfter, boardsAfter, boardsOf, byAddress } from './boards.js';
import { withChannels } from './cards.js';
import { aheadAfterAnswer, aheadAfterChanges } from './clock.js';
import { addKeys, addTurns, codesAfter, keysBefore, trailsAfter } from './memory.js';
import { paceAfter } from './pace.js';
import { plotsAfter } from './plots.js';
import type { State } from './State.js';

const mostNotices = 3;

export function reduce(state: State, action: Action): State {
  switch (action.type) {
    case 'connection':
      return connected(state, action);
    case 'who':
      return { ...state, who: action.who };
    case 'dated':
      return { ...state, ahead: aheadAfterAnswer(state.ahead, action) };
    case 'snapshot':
      return takeSnapshot(state, action.snapshot);
    case 'changes':
      return takeChanges(state, action.changes, action.now);
    case 'counted':
      return counted(state, []);
    case 'card':
      return takeCards(state, [action.card]);
    case 'channel':
      return takeChannels(state, [action.channel]);
    case 'board':
      return { ...state, boardCards: { ...state.boardCards, [action.board]: action.cards } };
    case 'virtual':
      return { ...state, virtual: action.virtual };
    case 'arrangement':
      return { ...state, arrangement: action.arrangement };
    case 'refused':
      return addNotice(state, action.id, action.problem);
    case 'noticed':
      return { ...state, notices: state.notices.filter(({ id }) => id !== action.id) };
    case 'missed-seen':
      return { ...state, missed: 0 };
    case 'all-off':
      return { ...state, allOff: action.allOff };
    case 'view':
      return { ...state, ...action.part };
  }
}

function connected(state: State, action: Action & { type: 'connection' }): State {
  const lostSince =
    action.state === 'open' ? null : (state.lostSince ?? action.heard ?? action.now);
  const nextTry = action.nextTry === null ? null : action.now + action.nextTry;
  return { ...state, connection: action.state, nextTry, lostSince };
}

// A hub that begins anew has no card before the daemon has greeted it: then all at once.
// What values were meanwhile, nobody here knows: trails begin anew with what they have been since.
function takeSnapshot(state: State, snapshot: Snapshot): State {
  const isSameBus = state.bus?.id === snapshot.bus.id;
  const base: State = isSameBus
    ? { ...state, trails: {} }
    : { ...state, cards: {}, keys: {}, turns: {}, codes: {}, trails: {} };
  const isCounting = snapshot.cards.length === 0 && Object.keys(base.cards).length > 0;
  const next = takeCards(isCounting ? base : counted(base, snapshot.cards), snapshot.cards);
  return {
    ...next,
    isCounting,
    bus: snapshot.bus,
    arrangement: snapshot.page,
    boards: boardsOf(snapshot.boards),
    keys: addKeys(keysBefore(next.keys, snapshot.seq), snapshot.events),
    turns: addTurns(next.turns, snapshot.events),
    missed: next.missed + snapshot.lost,
  };
}

function takeChanges(state: State, changes: Changes, now: number): State {
  const isCounted = state.isCounting && changes.cards.length > 0;
  let next = takeCards(isCounted ? counted(state, changes.cards) : state, changes.cards);
  next = takeChannels(next, changes.channels);
  return {
    ...next,
    ahead: aheadAfterChanges(state.ahead, changes, now),
    pace: paceAfter(state.pace, changes.channels.length, now),
    bus: changes.bus ?? next.bus,
    arrangement: changes.page ?? next.arrangement,
    boards: boardsAfter(next.boards, changes.boards),
    boardCards: boardCardsAfter(next.boardCards, changes.boards),
    keys: addKeys(next.keys, changes.events),
    turns: addTurns(next.turns, changes.events),
    missed: next.missed + changes.lost,
  };
}

// Cards that were here and are not any more are kept as absent: the bench shows that they are
// missing.
function counted(state: State, present: readonly Card[]): State {
  const found = new Set(present.map(({ address }) => address));
  const cards = Object.values(state.cards).map(
    (card): Card => (found.has(card.address) ? card : { ...card, state: 'absent' }),
  );
  return { ...state, cards: byAddress(cards), isCounting: false };
}

function takeCards(state: State, fresh: readonly Card[]): State {
  if (fresh.length === 0) return state;
  const cards = { ...state.cards };
  for (const card of fresh) cards[card.address] = card;
  const channels = fresh.flatMap((card) => card.channels);
  return remember({ ...state, cards }, channels);
}

function takeChannels(state: State, fresh: Changes['channels']): State {
  if (fresh.length === 0) return state;
  return remember({ ...state, cards: withChannels(state.cards, fresh) }, fresh);
}

function remember(state: State, channels: Changes['channels']): State {
  const trails = trailsAfter(state.trails, channels);
  const codes = codesAfter(state.codes, channels);
  return { ...state, trails, codes, plots: plotsAfter(state.plots, channels) };
}

function addNotice(state: State, id: number, problem: Problem): State {
  const others = state.notices.filter((notice) => notice.problem.detail !== problem.detail);
  return { ...state, notices: [...others, { id, problem }].slice(-mostNotices) };
}

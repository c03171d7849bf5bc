// The cards as somebody arranges them: groups, then those in none, then those that are hidden. Pure.
import type { Arrangement } from '../../api/Shapes.js';

export interface Section {
  kind: 'group' | 'rest' | 'hidden';
  name: string; // of a group
  cards: readonly string[]; // addresses, in their order
}

export interface Spot {
  section: number;
  place: number; // in the section
}

export const mostGroups = 16;

export function sectionsOf(present: readonly string[], arrangement: Arrangement): Section[] {
  const { order = [], hidden = [], groups = [] } = arrangement;
  const all = [...new Set([...order, ...[...present].sort()])].filter(
    (address) => present.includes(address) || order.includes(address),
  );
  const shown = all.filter((address) => !hidden.includes(address));
  const grouped = new Set(groups.flatMap(({ cards }) => cards));
  const members = groups.map(
    ({ name, cards }): Section => ({
      kind: 'group',
      name,
      cards: shown.filter((address) => cards.includes(address)),
    }),
  );
  const rest = shown.filter((address) => !grouped.has(address));
  return [
    ...members,
    { kind: 'rest', name: '', cards: rest },
    { kind: 'hidden', name: '', cards: all.filter((address) => hidden.includes(address)) },
  ];
}

export function arrangementOf(sections: readonly Section[]): Arrangement {
  const cardsOf = (kind: Section['kind']) =>
    sections.filter((section) => section.kind === kind).flatMap(({ cards }) => cards);
  return {
    order: sections.flatMap(({ cards }) => cards),
    hidden: cardsOf('hidden'),
    groups: sections
      .filter(({ kind }) => kind === 'group')
      .map(({ name, cards }) => ({ name, cards: [...cards] })),
  };
}

export function spotOf(sections: readonly Section[], address: string): Spot | null {
  const section = sections.findIndex(({ cards }) => cards.includes(address));
  if (section === -1) return null;
  return { section, place: sections[section]?.cards.indexOf(address) ?? 0 };
}

export function placed(sections: readonly Section[], address: string, spot: Spot): Section[] {
  return sections.map((section, at) => {
    const cards = section.cards.filter((card) => card !== address);
    if (at === spot.section) cards.splice(spot.place, 0, address);
    return { ...section, cards };
  });
}

// One place further; from the end of a section into the next one.
export function stepped(sections: readonly Section[], address: string, by: 1 | -1): Section[] {
  const spot = spotOf(sections, address);
  if (!spot) return [...sections];
  const place = spot.place + by;
  if (place >= 0 && place < (sections[spot.section]?.cards.length ?? 0))
    return placed(sections, address, { ...spot, place });
  const section = spot.section + by;
  const next = sections[section];
  if (!next) return [...sections];
  return placed(sections, address, { section, place: by === 1 ? 0 : next.cards.length });
}

export function withGroup(sections: readonly Section[], name: (number: number) => string) {
  const names = new Set(sections.map((section) => section.name));
  let number = 1;
  while (names.has(name(number))) ++number;
  const groups = sections.filter(({ kind }) => kind === 'group');
  const group: Section = { kind: 'group', name: name(number), cards: [] };
  return [...groups, group, ...sections.slice(groups.length)];
}

export function renamed(sections: readonly Section[], at: number, name: string): Section[] {
  return sections.map((section, place) => (place === at ? { ...section, name } : section));
}

// Its cards are in no group then.
export function withoutGroup(sections: readonly Section[], at: number): Section[] {
  const freed = sections[at]?.cards ?? [];
  return sections
    .filter((_, place) => place !== at)
    .map((section) =>
      section.kind === 'rest' ? { ...section, cards: [...freed, ...section.cards] } : section,
    );
}

// A group one place earlier.
export function raised(sections: readonly Section[], at: number): Section[] {
  const next = [...sections];
  next.splice(at - 1, 0, ...next.splice(at, 1));
  return next;
}

// What a field of a form holds.
export function textIn(form: FormData, name: string): string {
  const value = form.get(name);
  return typeof value === 'string' ? value.trim() : '';
}

// null: it is empty, which is as usual. NaN: it is no number.
export function numberIn(content: string): number | null {
  const trimmed = content.trim().replace(',', '.').replace('\u2212', '-');
  return trimmed === '' ? null : Number(trimmed);
}

// The list with another value at a place.
export function withAt<Item>(list: readonly Item[], place: number, value: Item): Item[] {
  return list.map((each, at) => (at === place ? value : each));
}

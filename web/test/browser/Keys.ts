// A person who has only keys: where the focus is, and the way it takes.
import assert from 'node:assert/strict';

import { eventually, type Person } from './Person.js';

export interface Place {
  name: string; // as it is said
  key: string; // tells it from all others
  isMarked: boolean; // whoever looks sees that the focus is there
  isCovered: boolean; // by a bar that stays in its place
}

// What the Tab key stops at. One of a group of radio buttons stands for all.
const stops = 'a[href], button, input, select, summary, [tabindex="0"]';

export class Keys {
  constructor(private readonly person: Person) {}

  async count(): Promise<number> {
    return this.person.page.locator(`css=${stops}`).evaluateAll((all) => {
      const isStop = (each: Element) =>
        each.checkVisibility() &&
        !each.matches(':disabled') &&
        !(each instanceof HTMLInputElement && each.type === 'radio' && !each.checked);
      return all.filter(isStop).length;
    });
  }

  // As if the page had just been opened.
  async begin(): Promise<void> {
    await this.person.page.evaluate(() => {
      document.body.tabIndex = -1;
      document.body.focus();
      document.body.removeAttribute('tabindex');
    });
  }

  async press(...keys: string[]): Promise<void> {
    for (const key of keys) await this.person.page.keyboard.press(key);
  }

  async types(text: string): Promise<void> {
    await this.person.page.keyboard.type(text);
  }

  async place(): Promise<Place | null> {
    return this.person.page.evaluate(() => {
      let at = document.activeElement;
      while (at?.shadowRoot?.activeElement) at = at.shadowRoot.activeElement;
      if (!at || at === document.body) return null;
      const known = ((window as { stops?: Map<Element, string> }).stops ??= new Map());
      if (!known.has(at)) known.set(at, `stop ${known.size}`);
      const top = (x: number, y: number) => {
        let found = document.elementFromPoint(x, y);
        for (;;) {
          const inner = found?.shadowRoot?.elementFromPoint(x, y);
          if (!inner || inner === found) return found;
          found = inner;
        }
      };
      const { left, right, top: upper, bottom, height } = at.getBoundingClientRect();
      const isOf = (whole: Element) => (found: Element | null) => {
        for (let each: Node | null = found; each; ) {
          if (each === whole) return true;
          const outer: Node | null = each instanceof ShadowRoot ? each.host : each.parentNode;
          each = (each instanceof Element ? each.assignedSlot : null) ?? outer;
        }
        return false;
      };
      const x = (left + right) / 2;
      const heights = [upper + height / 4, upper + height / 2, bottom - height / 4];
      const drawn = heights.map((y) => top(x, y));
      const seen = drawn.some(isOf(at)) || drawn.some((found) => found?.contains(at));
      const outlined = (each: Element | null) =>
        each !== null && !['none', ''].includes(getComputedStyle(each).outlineStyle);
      const label = (at as HTMLInputElement).labels?.[0];
      const words = [...(label ?? at).childNodes].flatMap((node) =>
        node instanceof HTMLSlotElement ? node.assignedNodes() : node,
      );
      const isSaid = (node: Node) =>
        node.nodeType !== Node.COMMENT_NODE &&
        node !== at &&
        !(node instanceof Element && node.ariaHidden === 'true');
      const said = words.filter(isSaid);
      const name = at.getAttribute('aria-label') ?? said.map((node) => node.textContent).join('');
      return {
        name: name.trim().replace(/\s+/g, ' '),
        key: known.get(at) ?? '',
        isMarked: outlined(at) || outlined(at.nextElementSibling),
        isCovered: !seen,
      };
    });
  }

  isAt(name: string): Promise<void> {
    return eventually(`"${name}" has the focus`, async () => (await this.place())?.name === name);
  }

  // In the one line of the view.
  hasTyped(line: string): Promise<void> {
    const field = this.person.page.getByRole('textbox');
    return eventually(`the line is "${line}"`, async () => (await field.inputValue()) === line);
  }

  // On to the next thing of that name.
  async to(name: string | RegExp): Promise<void> {
    const passed: string[] = [];
    for (let left = (await this.count()) + 1; left > 0; --left) {
      await this.press('Tab');
      const place = (await this.place())?.name ?? '';
      if (typeof name === 'string' ? place === name : name.test(place)) return;
      passed.push(place);
    }
    assert.fail(`the Tab key does not come to ${String(name)}, but to ${passed.join(', ')}`);
  }
}

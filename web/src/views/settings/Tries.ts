// What a person has tried to set in vain: why, by field, till it is mended or given up.
import type { ReactiveControllerHost } from 'lit';

import { type Intent, want } from '../../state/Intent.js';
import { text } from '../../text/text.js';
import { numberIn } from './fields.js';

export class Tries {
  private readonly whys = new Map<string, string>();

  constructor(private readonly host: ReactiveControllerHost & EventTarget) {}

  why(field: string): string | null {
    return this.whys.get(field) ?? null;
  }

  want(field: string, intent: Intent): void {
    this.forget(field);
    want(this.host, intent, ({ detail }) => {
      this.refuse(field, detail);
    });
  }

  // null: the field is empty. What is no number goes nowhere.
  wantNumber(field: string, content: string, intent: (value: number | null) => Intent): void {
    const value = numberIn(content);
    if (Number.isNaN(value)) this.refuse(field, text.settings.noNumber);
    else this.want(field, intent(value));
  }

  forget(field: string): void {
    this.whys.delete(field);
    this.host.requestUpdate();
  }

  forgetAll(): void {
    this.whys.clear();
  }

  refuse(field: string, why: string): void {
    this.whys.set(field, why);
    this.host.requestUpdate();
  }
}

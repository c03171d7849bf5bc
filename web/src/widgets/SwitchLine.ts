// A line that is switched: a rocker and its lamp.
import { customElement } from 'lit/decorators.js';

import { lampStyle } from '../cards/lamp.js';
import { drawRocker, rockerStyle } from '../cards/rocker.js';
import { base } from '../theme/base.js';
import { LinePart } from './LinePart.js';
import { lineStyle } from './lineStyle.js';

@customElement('qelm-switch')
export class SwitchLine extends LinePart {
  static override styles = [base, lineStyle, lampStyle, rockerStyle];

  protected override readonly draw = drawRocker;

  protected override flip(): void {
    this.set(this.wanted !== true);
  }
}

import { customElement } from 'lit/decorators.js';

import { dialScaleStyle } from '../cards/dialScale.js';
import { round } from '../cards/geometry.js';
import { drawMotor, motorBox, motorStyle } from '../cards/motor.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { DialPart, dialStyle } from './DialPart.js';

@customElement('qelm-motor')
export class MotorDial extends DialPart {
  static override styles = [base, dialStyle, motorStyle, dialScaleStyle];

  protected override readonly dial = round;
  protected override readonly box = motorBox;

  protected override get label(): string {
    return text.motor(super.label);
  }

  protected override draw(value: number | null) {
    return drawMotor(value, this.min, this.max, this.certainty);
  }
}

import { customElement } from 'lit/decorators.js';

import { horn } from '../cards/geometry.js';
import { dialScaleStyle } from '../cards/dialScale.js';
import { drawServo, servoBox, servoStyle } from '../cards/servo.js';
import { text } from '../text/text.js';
import { base } from '../theme/base.js';
import { DialPart, dialStyle } from './DialPart.js';

@customElement('qelm-servo')
export class ServoHorn extends DialPart {
  static override styles = [base, dialStyle, servoStyle, dialScaleStyle];

  protected override readonly dial = horn;
  protected override readonly box = servoBox;

  protected override get label(): string {
    return text.servo(super.label);
  }

  protected override draw(value: number | null) {
    return drawServo(value, this.min, this.max, this.certainty);
  }
}

// Every widget, made known to the browser.
import './AllOff.js';
import './ContactLine.js';
import './ControlByte.js';
import './GlassPane.js';
import './HoldButton.js';
import './InfraredEye.js';
import './KeyPad.js';
import './Legend.js';
import './LevelKnob.js';
import './MotorDial.js';
import './Name.js';
import './Plug.js';
import './ServoHorn.js';
import './SwitchLine.js';

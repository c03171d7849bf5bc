// Wires the page: the store, what fills it, and the components that read it.
import { IntentEvent } from './state/Intent.js';
import { Performer } from './state/Performer.js';
import { store } from './state/Store.js';
import { applyTheme, chosenTheme } from './theme/theme.js';
import './widgets/all.js';
import './views/all.js';

applyTheme(chosenTheme());

const scheme = location.protocol === 'https:' ? 'wss' : 'ws';
const performer = new Performer(store, `${scheme}://${location.host}/api/live`);

document.addEventListener(IntentEvent.type, (event) => {
  const { intent, refused } = event as IntentEvent;
  performer.perform(intent, refused);
});
document.addEventListener('visibilitychange', () => {
  if (!document.hidden) performer.wake();
});
window.addEventListener('online', () => {
  performer.wake();
});
performer.start();

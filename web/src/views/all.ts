// What is there at first sight; other views come when somebody goes there.
import './Bench.js';
import './CardTable.js';
import './ChannelMenu.js';
import './FirstRun.js';
import './FreeSlot.js';
import './LogIn.js';
import './Notices.js';
import './Page.js';
import './Plate.js';
import './StateBar.js';

// Lets a live strip move: often where a second is wide, each second where nobody sees it sooner or
// wants no motion. Also tells of another theme.
import type { ReactiveController, ReactiveControllerHost } from 'lit';

const pixels = 800; // of a usual strip
const most = 1000; // ms between two pictures

export class Pulse implements ReactiveController {
  theme = 0;
  private timer: ReturnType<typeof setTimeout> | undefined;
  private readonly dark = window.matchMedia('(prefers-color-scheme: dark)');
  private readonly calm = window.matchMedia('(prefers-reduced-motion: reduce)');
  private readonly chosen = new MutationObserver(() => {
    this.onTheme();
  });

  constructor(
    private readonly host: ReactiveControllerHost,
    private readonly span: () => number, // ms
  ) {
    host.addController(this);
  }

  hostConnected(): void {
    this.dark.addEventListener('change', this.onTheme);
    this.chosen.observe(document.documentElement, { attributeFilter: ['data-theme'] });
    this.beat();
  }

  hostDisconnected(): void {
    clearTimeout(this.timer);
    this.dark.removeEventListener('change', this.onTheme);
    this.chosen.disconnect();
  }

  private beat(): void {
    const apart = this.calm.matches ? most : Math.min(most, Math.max(66, this.span() / pixels));
    this.timer = setTimeout(() => {
      if (!document.hidden) this.host.requestUpdate();
      this.beat();
    }, apart);
  }

  private readonly onTheme = (): void => {
    ++this.theme;
    this.host.requestUpdate();
  };
}

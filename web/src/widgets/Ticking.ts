// Asks a component to draw itself again each second, as long as it is there and something of it moves.
import type { ReactiveController, ReactiveControllerHost } from 'lit';

export class Ticking implements ReactiveController {
  private timer: ReturnType<typeof setInterval> | undefined;

  constructor(
    private readonly host: ReactiveControllerHost,
    private readonly moves: () => boolean = () => true,
  ) {
    host.addController(this);
  }

  hostConnected(): void {
    this.timer = setInterval(() => {
      if (this.moves()) this.host.requestUpdate();
    }, 1000);
  }

  hostDisconnected(): void {
    clearInterval(this.timer);
  }
}

export function secondsTill(time: number): number {
  return Math.max(0, Math.ceil((time - Date.now()) / 1000));
}

// What is drawn, and how far back, outlives a reload: it is this browser's own.
import { mostPlots, noPlots, type Plots, withChannels } from '../plots.js';

const key = 'qelm-plots';

export function keepPlots({ channels, span }: Plots): void {
  try {
    localStorage.setItem(key, JSON.stringify({ channels, span }));
  } catch {
    // It holds till the page is closed.
  }
}

export function keptPlots(): Plots {
  try {
    const { channels, span } = JSON.parse(localStorage.getItem(key) ?? '{}') as Partial<Plots>;
    const plots = withChannels(noPlots, (channels ?? []).slice(0, mostPlots).map(String));
    return typeof span === 'number' && span > 0 ? { ...plots, span } : plots;
  } catch {
    return noPlots; // a browser that keeps nothing, or what is no longer read
  }
}

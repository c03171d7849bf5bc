// What outlives a reload and is this browser's own: what is drawn and how far back, and whose bench
// it was.
import { mostPlots, noPlots, type Plots, withChannels } from '../plots.js';

const key = 'qelm-plots';
const nameKey = 'qelm-bench';

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

export function keepName(name: string | null): void {
  try {
    if (name === null) localStorage.removeItem(nameKey);
    else localStorage.setItem(nameKey, name);
  } catch {
    // Then nobody reads it at the log-in.
  }
}

export function keptName(): string | null {
  try {
    return localStorage.getItem(nameKey);
  } catch {
    return null;
  }
}

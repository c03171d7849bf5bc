// Dark or light: the system's, unless somebody has chosen here. The choice is this browser's.
export type Theme = 'system' | 'dark' | 'light';

const key = 'qelm-theme';
export const themes: readonly Theme[] = ['system', 'dark', 'light'];

export function chosenTheme(): Theme {
  try {
    const kept = localStorage.getItem(key);
    return themes.find((theme) => theme === kept) ?? 'system';
  } catch {
    return 'system'; // a browser that keeps nothing
  }
}

export function applyTheme(theme: Theme): void {
  const root = document.documentElement;
  if (theme === 'system') delete root.dataset['theme'];
  else root.dataset['theme'] = theme;
}

export function chooseTheme(theme: Theme): void {
  applyTheme(theme);
  try {
    localStorage.setItem(key, theme);
  } catch {
    // It holds till the page is closed.
  }
}

// Light and dark: the system's choice until the reader makes one. Charts take their colours from the style.

type Theme = 'light' | 'dark';
const dark = matchMedia('(prefers-color-scheme: dark)');
let chosen: Theme | null = null;
const listeners: (() => void)[] = [];

export interface Colors {
  text: string;
  soft: string;
  line: string;
  back: string;
  bad: string;
}

export function theme(): Theme {
  return chosen ?? (dark.matches ? 'dark' : 'light');
}

function apply(): void {
  document.documentElement.dataset.theme = theme();
  listeners.forEach((listener) => listener());
}

export function startTheme(): void {
  document.documentElement.dataset.theme = theme();
  dark.addEventListener('change', apply);
}

export function toggleTheme(): Theme {
  chosen = theme() === 'dark' ? 'light' : 'dark';
  apply();
  return chosen;
}

export function onTheme(listener: () => void): void {
  listeners.push(listener);
}

export function colors(): Colors {
  const style = getComputedStyle(document.documentElement);
  const get = (name: string) => style.getPropertyValue(name).trim();
  return { text: get('--text'), soft: get('--soft'), line: get('--line'), back: get('--card'), bad: get('--bad') };
}

let printing = false;

export function onPaper(): boolean {
  return printing;
}

/** On paper every chart is light, whatever the screen shows. */
export function forPaper(on: boolean): void {
  printing = on;
  document.documentElement.classList.toggle('paper', on);
  document.documentElement.dataset.theme = on ? 'light' : theme();
}

const SYSTEMS: Record<string, string> = { G: '#3b82d6', R: '#d9534f', C: '#d99a1c', E: '#22a18a', J: '#9a6fd0' };

export function systemColor(letter: string): string {
  return SYSTEMS[letter] ?? '#888888';
}

/** Low to high, readable on light and dark and without red against green. */
export const SCALE = ['#5b3a8c', '#4668a8', '#2f8fa3', '#2fae82', '#7cc353', '#d8c22e', '#f08c2e'];

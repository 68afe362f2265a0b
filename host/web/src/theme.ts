// Light and dark: the system's choice until the reader makes one. Charts take their colours from the style.
import { SYSTEMS } from './palette';

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
  accent: string;
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
  return { text: get('--text'), soft: get('--soft'), line: get('--line'), back: get('--card'), bad: get('--bad'), accent: get('--accent') };
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

export function systemColor(letter: string): string {
  return SYSTEMS[letter] ?? SYSTEMS.S;
}

// Colours that stay apart under deuteranopia and protanopia, on light and on dark; tests/web/colors.test.mjs
// measures how far.

export const SYSTEMS: Record<string, string> = {
  G: '#2277dd',
  R: '#bb3311',
  E: '#66bb77',
  C: '#dd9911',
  J: '#993388',
  I: '#55aadd',
  S: '#888888',
};

/** Letters of systems in the order of every table. */
export function inOrder(letters: string[]): string[] {
  const order = Object.keys(SYSTEMS);
  return [...letters].sort((a, b) => order.indexOf(a) - order.indexOf(b));
}

/** Low to high, each lighter than the one before. */
export const SCALE = ['#55207c', '#4a50a8', '#2f79b5', '#2a9da4', '#52bf83', '#a5d95a', '#f4e94c'];

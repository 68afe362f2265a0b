// Pieces that the pages share: head, tiles, sections.
import { button, el } from './dom';
import { onTheme, theme, toggleTheme } from './theme';

/** The text of a data element of this file. */
export function dataOf(id: string): string {
  return document.getElementById(id)!.textContent!;
}

function themeButton(): HTMLButtonElement {
  const label = () => (theme() === 'dark' ? 'Light' : 'Dark');
  const b = button(label(), () => toggleTheme(), { id: 'theme', title: 'Switch between light and dark' });
  onTheme(() => (b.textContent = label()));
  return b;
}

/** Title, buttons and facts at the top of a page. @param index  a link to the index of the pages, or null */
export function head(over: string, title: string, facts: [string, string][], index: string | null = null): void {
  const list = el('dl', { class: 'facts' });
  for (const [what, value] of facts) list.append(el('div', {}, el('dt', {}, what), el('dd', {}, value)));
  document.getElementById('top')!.append(
    el(
      'div',
      { class: 'title' },
      el('div', {}, el('p', { class: 'over' }, over), el('h1', {}, title)),
      el('div', { class: 'actions' }, index === null ? null : el('a', { href: index, id: 'index' }, 'All files'), themeButton(), button('Print', () => print())),
    ),
    list,
  );
}

export function tile(name: string, value: string, help: string): HTMLElement {
  return el('div', { class: 'tile', title: help }, el('dt', {}, name), el('dd', {}, value));
}

export function section(id: string, title: string, ...children: (HTMLElement | null)[]): HTMLElement {
  return el('section', { id, 'aria-labelledby': `${id}-heading` }, el('h2', { id: `${id}-heading` }, title), ...children);
}

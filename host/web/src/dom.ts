// Elements made of text: nothing from a file is ever read as markup.

type Child = Node | string | null | undefined;
type Attributes = Record<string, string | number | boolean | undefined>;

export function el<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: Child[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === false) continue;
    element.setAttribute(name, value === true ? '' : String(value));
  }
  for (const child of children) {
    if (child !== null && child !== undefined) element.append(child);
  }
  return element;
}

export function button(label: string, act: () => void, attributes: Attributes = {}): HTMLButtonElement {
  const b = el('button', { type: 'button', ...attributes }, label);
  b.addEventListener('click', act);
  return b;
}

export function select(
  label: string,
  options: [string, string][],
  value: string,
  change: (value: string) => void,
): HTMLLabelElement {
  const list = el('select', {}, ...options.map(([v, text]) => el('option', { value: v, selected: v === value }, text)));
  list.addEventListener('change', () => change(list.value));
  return el('label', { class: 'control' }, el('span', {}, label), list);
}

/** A text in which no line ends within the name of a signal, "G 1C". */
export function prose(text: string): HTMLElement {
  const parts = text.split(/\b([GREJCIS] \d[A-Z])\b/);
  return el('span', {}, ...parts.map((part, i) => (i % 2 === 1 ? el('span', { class: 'name' }, part) : part)));
}

/** A tooltip: a title and lines of name and value. */
export function tip(title: string, lines: [string, string][]): HTMLElement {
  const box = el('div', { class: 'tip' }, el('strong', {}, title));
  for (const [name, value] of lines) box.append(el('div', {}, el('span', {}, name), el('b', {}, value)));
  return box;
}

export function save(name: string, type: string, bytes: BlobPart): void {
  const url = URL.createObjectURL(new Blob([bytes], { type }));
  const link = el('a', { href: url, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 1000);
}

// Tables that sort by any column, with the keyboard too.
import { button, el } from './dom';
import { fixed, whole } from './format';

export type Cell = string | number | null;

export interface Column {
  name: string;
  /** Explains the name. */
  title?: string;
  numeric?: boolean;
  text?: (value: Cell) => string;
  /** Draws a bar under the figure: its length from 0 to 1. */
  bar?: (value: number) => number;
  /** The cell's contents in place of its text. */
  show?: (value: Cell) => Node;
}

export interface TableOptions {
  /** Column that names a row; the first one without it. */
  rowHead?: number;
  /** Column by which the rows come sorted, upwards. */
  sorted?: number;
  /** Rows shown before the button for more. */
  page?: number;
}

export const digits = (n: number) => (value: Cell) => fixed(value as number, n);
export const count = (value: Cell) => whole(value as number);
export const text = (name: string, title?: string): Column => ({ name, title });
export const number = (name: string, shown: (value: Cell) => string, title?: string): Column => ({ name, title, numeric: true, text: shown });
export const hundred = (ratio: number | null): number | null => (ratio === null ? null : 100 * ratio);

const PAGE = 200;

function compare(a: Cell, b: Cell): number {
  if (typeof a === 'number' && typeof b === 'number') return a - b;
  return String(a) < String(b) ? -1 : String(a) > String(b) ? 1 : 0;
}

export class SortTable {
  readonly element: HTMLElement;
  private readonly columns: Column[];
  private rows: Cell[][];
  private readonly rowHead: number;
  private readonly page: number;
  private sorted = -1;
  private descending = false;
  private shown: number;
  private readonly heads: HTMLTableCellElement[] = [];
  private readonly body = el('tbody');
  private readonly more: HTMLButtonElement;

  constructor(caption: string, columns: Column[], rows: Cell[][], options: TableOptions = {}) {
    this.columns = columns;
    this.rows = rows;
    this.rowHead = options.rowHead ?? 0;
    this.sorted = options.sorted ?? -1;
    this.page = options.page ?? PAGE;
    this.shown = this.page;
    const head = el('tr');
    columns.forEach((column, i) => {
      const cell = el(
        'th',
        { scope: 'col', class: column.numeric ? 'number' : undefined, 'aria-sort': i === this.sorted ? 'ascending' : 'none' },
        button(column.name, () => this.sort(i), { title: column.title ?? `Sort by ${column.name}` }),
      );
      this.heads.push(cell);
      head.append(cell);
    });
    this.more = button('', () => {
      this.shown += 5 * this.page;
      this.fill();
    });
    const table = el('table', {}, el('caption', {}, caption), el('thead', {}, head), this.body);
    this.element = el('div', { class: 'table' }, el('div', { class: 'scroll', tabindex: 0, role: 'region', 'aria-label': caption }, table), this.more);
    this.fill();
  }

  set(rows: Cell[][]): void {
    this.rows = rows;
    this.shown = this.page;
    if (this.sorted >= 0) this.arrange();
    this.fill();
  }

  /** No row is left for the button, as on paper. */
  showAll(): void {
    this.shown = this.rows.length;
    this.fill();
  }

  private sort(column: number): void {
    this.descending = this.sorted === column ? !this.descending : this.columns[column].numeric === true;
    this.sorted = column;
    this.heads.forEach((head, i) => {
      head.setAttribute('aria-sort', i !== column ? 'none' : this.descending ? 'descending' : 'ascending');
    });
    this.arrange();
    this.fill();
  }

  /** Missing values come last, whichever the direction. */
  private arrange(): void {
    const i = this.sorted;
    const sign = this.descending ? -1 : 1;
    this.rows = [...this.rows].sort((a, b) => {
      if (a[i] === null || b[i] === null) return a[i] === b[i] ? 0 : a[i] === null ? 1 : -1;
      return sign * compare(a[i], b[i]);
    });
  }

  private fill(): void {
    this.body.replaceChildren(...this.rows.slice(0, this.shown).map((row) => this.line(row)));
    const left = this.rows.length - this.shown;
    this.more.hidden = left <= 0;
    this.more.textContent = `Show more (${Math.max(left, 0)} rows left)`;
  }

  private line(row: Cell[]): HTMLTableRowElement {
    const line = el('tr');
    row.forEach((value, i) => {
      const column = this.columns[i];
      const text = value === null ? '-' : column.text ? column.text(value) : String(value);
      const shown = value !== null && column.show ? column.show(value) : text;
      const kind = column.numeric ? 'number' : undefined;
      const cell = i === this.rowHead ? el('th', { scope: 'row' }, shown) : el('td', { class: kind }, shown);
      if (column.bar && typeof value === 'number') {
        cell.classList.add('measured');
        cell.style.setProperty('--part', `${(100 * Math.min(Math.max(column.bar(value), 0), 1)).toFixed(1)}%`);
      }
      line.append(cell);
    });
    return line;
  }
}

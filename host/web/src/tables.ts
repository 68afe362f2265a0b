// The tables of the report.
import type { Detail } from './detail';
import { el, select } from './dom';
import { eventName, EVENTS, HARD } from './events';
import { type FigureColumn, SIGNAL, WHOLE } from './figures';
import { baseName, fixed, percent, timeText } from './format';
import type { Report } from './report';
import { type Cell, type Column, count, digits, hundred, number, SortTable, text } from './table';

/** The columns of the figures that have one, and how to read their cells. */
export function figureColumns(figures: FigureColumn[]): { columns: Column[]; cells: (owner: object) => Cell[] } {
  const shown = figures.filter((f) => f.column !== '');
  return {
    columns: shown.map((f) => number(f.column, f.unit === '1' || f.digits > 0 ? digits(f.unit === '1' ? 2 : f.digits) : count, f.title)),
    cells: (owner) =>
      shown.map((f) => {
        const value = (owner as Record<string, number | null>)[f.key];
        return f.unit === '1' ? hundred(value) : value;
      }),
  };
}

export function systemTable(report: Report): HTMLElement {
  const figures = figureColumns(WHOLE);
  const columns = [text('System'), text('Combination', 'Optimal combination of signals'), ...figures.columns];
  const rows = report.library.systems.map((s): Cell[] => [s.name, s.optimal_combination.join(' '), ...figures.cells(s)]);
  return new SortTable('Systems', columns, rows).element;
}

export function signalTable(report: Report): HTMLElement {
  const figures = figureColumns(SIGNAL);
  const columns = [text('Signal'), text('Band'), ...figures.columns];
  const rows = report.library.signals.map((s): Cell[] => [`${s.letter} ${s.signal}`, s.band, ...figures.cells(s)]);
  return new SortTable('Signals', columns, rows).element;
}

export function satelliteTable(report: Report, detail: Detail): HTMLElement {
  const figures = figureColumns(WHOLE);
  const happened = new Map(detail.satellites.map((s) => [s.name, s]));
  const columns = [
    text('Satellite'),
    text('State'),
    ...figures.columns,
    number('GF slips', count, 'Slips of the geometry-free phase, those of the whole receiver apart'),
    number('Code jumps', count, 'Epochs at which the multipath combination departed from its running mean, without those of the whole receiver'),
  ];
  const rows = (report.library.satellites ?? []).map((s): Cell[] => [
    s.satellite,
    s.state,
    ...figures.cells(s),
    happened.get(s.satellite)?.geometryFreeSlips ?? null,
    happened.get(s.satellite)?.codeJumps ?? null,
  ]);
  return new SortTable('Satellites', columns, rows).element;
}

/** A figure as a change shows it. */
function shown(value: number | null, unit: string, figure: string): string {
  if (value === null) return 'none';
  if (unit === '1' && figure.includes('ratio')) return percent(value);
  return `${fixed(value, Number.isInteger(value) ? 0 : 3)}${unit === '1' ? '' : ` ${unit}`}`;
}

/** What differs from an earlier report; null without one. */
export function changesTable(report: Report): HTMLElement | null {
  const changes = report.comparison;
  if (changes === null) return null;
  const words = (worse: boolean | null) => (worse === null ? '' : worse ? 'worse' : 'better');
  const rows: Cell[][] = [
    ...changes.statements.map((s): Cell[] => ['', s.what, s.before ?? 'none', s.after ?? 'none', '']),
    ...changes.signals_gone.map((s): Cell[] => [s, 'signal', 'there', 'gone', 'worse']),
    ...changes.signals_appeared.map((s): Cell[] => [s, 'signal', 'none', 'there', '']),
    ...changes.figures.map((f): Cell[] => [
      [f.subject, f.signal].filter((t) => t !== null).join(' '),
      f.figure,
      shown(f.before, f.unit, f.figure),
      shown(f.after, f.unit, f.figure),
      words(f.worse),
    ]),
  ];
  const columns = [text('Of'), text('What'), text('Before'), text('Now'), text('That is')];
  const table = new SortTable('Changes', columns, rows, { page: 20 });
  const of = `${baseName(changes.observation_file)} from ${changes.first_epoch_gpst?.replace(/\.000$/, '') ?? '-'} on`;
  const help = `Against the earlier report ${baseName(changes.file)}, of ${of}: ${changes.figures_compared} figures compared.`;
  return el('div', { id: 'changes' }, el('h3', {}, 'Changes since an earlier report'), el('p', { class: 'help' }, help), table.element);
}

const STATES: Record<string, string> = {
  judged: 'judged',
  excluded: 'excluded on request',
  unhealthy: 'unhealthy',
  no_record: 'no broadcast record',
  no_position: 'no record of its time, or no known kind of orbit',
  below_cutoff: 'never above the cut-off',
};

/** The satellites observed that have no figures, with the reason. */
export function notJudgedTable(report: Report): HTMLElement | null {
  const rows = report.run.navigation_coverage
    .filter((c) => c.state !== 'judged')
    .map((c): Cell[] => [c.satellite, STATES[c.state], c.epochs_seen, c.navigation_records, hundred(c.navigation_covered_ratio)]);
  if (rows.length === 0) return null;
  const columns = [text('Satellite'), text('Why'), number('Epochs seen', count), number('Records', count), number('Covered %', digits(1), 'Part of its epochs with a usable broadcast record')];
  return new SortTable('Satellites observed and not judged', columns, rows).element;
}

export function eventTable(detail: Detail): HTMLElement {
  const columns = [
    { name: 'Time', text: (value: Cell) => timeText(value as number) },
    text('Satellite'),
    text('What and why'),
    text('Signals'),
    number('Elevation \u00b0', digits(1)),
  ];
  const rowsOf = (wanted: string): Cell[][] =>
    detail.events
      .filter((e) => (wanted === 'hard' ? HARD.has(e.kind) : wanted === '*' || e.kind === wanted))
      .map((e) => [e.time, e.satellite, eventName(e.kind), e.signals.join(' '), e.elevation]);
  const counts = new Map<string, number>();
  for (const e of detail.events) counts.set(e.kind, (counts.get(e.kind) ?? 0) + 1);
  const kinds = EVENTS.filter((e) => counts.has(e.kind)).map((e): [string, string] => [e.kind, `${e.name} (${counts.get(e.kind)})`]);
  const start = detail.events.some((e) => HARD.has(e.kind)) ? 'hard' : '*';
  const table = new SortTable('Slips and restarts', columns, rowsOf(start));
  const control = select(
    'Show',
    [['hard', 'Slips and code jumps of the receiver'], ['*', `Everything (${detail.events.length})`], ...kinds],
    start,
    (value) => table.set(rowsOf(value)),
  );
  const meanings = el('dl', { class: 'meanings' });
  for (const e of EVENTS) meanings.append(el('dt', {}, e.name), el('dd', {}, e.help));
  const left = detail.eventsLeftOut > 0 ? el('p', { class: 'note' }, `${detail.eventsLeftOut} further events are left out.`) : null;
  return el('div', {}, el('div', { class: 'bar' }, control), table.element, left, el('details', {}, el('summary', {}, 'What the reasons mean'), meanings));
}

export function noticeTable(report: Report): HTMLElement | null {
  if (report.notices.length === 0) return null;
  const columns = [text('File'), number('Line', count), text('What was found'), number('Times', count), text('Repaired')];
  const rows = report.notices.map((n): Cell[] => [baseName(n.file), n.line, n.text, n.count, n.recovered ? 'yes' : 'no']);
  return new SortTable('Notices of the readers', columns, rows).element;
}

// The analysis: tables of systems and signals, what the data contradict, and events.
import { el, select } from './dom';
import { ANALYSIS_SIGNAL, ANALYSIS_SYSTEM } from './figures';
import { type EventData, kindText, SLIPS } from './happenings';
import type { Report } from './report';
import { type Cell, digits, number, SortTable, text } from './table';
import { figureColumns } from './tables';

const NAMES: Record<string, string> = { G: 'GPS', R: 'GLONASS', E: 'Galileo', C: 'BDS', J: 'QZSS', I: 'NavIC', S: 'SBAS' };

function systemTable(report: Report): HTMLElement {
  const figures = figureColumns(ANALYSIS_SYSTEM);
  const rows = report.analysis.systems.map((s): Cell[] => [NAMES[s.letter] ?? s.letter, ...figures.cells(s)]);
  return new SortTable('Systems of the analysis', [text('System'), ...figures.columns], rows).element;
}

function signalTable(report: Report): HTMLElement {
  const figures = figureColumns(ANALYSIS_SIGNAL);
  const columns = [text('Signal'), text('Partner', 'The signal whose phase takes the ionosphere off the multipath'), ...figures.columns];
  const rows = report.analysis.signals.map((s): Cell[] => [`${s.letter} ${s.signal}`, s.multipath_partner, ...figures.cells(s)]);
  return new SortTable('Signals of the analysis', columns, rows).element;
}

/** What no table shows: gaps, contradictions, satellites without an orbit. */
function remarks(report: Report): HTMLElement | null {
  const { gaps, contradiction_list, without_orbit } = report.analysis;
  const lines = contradiction_list.map((c) => `${c.id}: stated ${c.stated}, found ${c.found}.`);
  if (gaps.length > 0) {
    const first = gaps[0];
    lines.push(`${gaps.length} gaps, the first from ${first.last_before_gpst} to ${first.first_after_gpst} (${first.missing_epochs} epochs).`);
  }
  if (without_orbit.length > 0) lines.push(`${without_orbit.length} satellites without an orbit: ${without_orbit.join(', ')}.`);
  return lines.length === 0 ? null : el('ul', { class: 'notes' }, ...lines.map((line) => el('li', {}, line)));
}

export function analysisTables(report: Report): HTMLElement {
  return el('div', {}, remarks(report), systemTable(report), signalTable(report));
}

export function analysisEvents(data: EventData): HTMLElement {
  const columns = [
    text('Time'),
    text('Satellite'),
    text('Kind'),
    text('Signals'),
    text('Cycles'),
    text('Sure'),
    number('Elevation \u00b0', digits(1)),
    text('Evidence'),
  ];
  const rowsOf = (wanted: string): Cell[][] =>
    data.events
      .filter((e) => (wanted === 'slips' ? SLIPS.has(e.kind) : wanted === '*' || e.kind === wanted))
      .map((e) => [
        e.time_gpst.replace(/\.000$/, ''),
        e.satellite,
        kindText(e.kind),
        e.signals,
        e.size_cycles?.join(' ') ?? null,
        e.sure ? 'yes' : 'no',
        e.elevation_deg,
        e.evidence,
      ]);
  const counts = new Map<string, number>();
  for (const e of data.events) counts.set(e.kind, (counts.get(e.kind) ?? 0) + 1);
  const kinds = [...counts].sort().map(([kind, n]): [string, string] => [kind, `${kindText(kind)} (${n})`]);
  const table = new SortTable('Events of the analysis', columns, rowsOf('slips'), { page: 50 });
  const control = select('Show', [['slips', 'Slips'], ['*', `Everything (${data.events.length})`], ...kinds], 'slips', (value) =>
    table.set(rowsOf(value)),
  );
  const left = data.further > 0 ? el('p', { class: 'note' }, `${data.further} further events are left out: --events lists them all.`) : null;
  return el('div', {}, el('div', { class: 'bar' }, control), table.element, left);
}

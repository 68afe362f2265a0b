// The tables of the report.
import type { Detail } from './detail';
import { el, select } from './dom';
import { eventName, EVENTS, HARD } from './events';
import { baseName, timeText } from './format';
import type { Report } from './report';
import { type Cell, count, digits, hundred, number, SortTable, text } from './table';

export function systemTable(report: Report): HTMLElement {
  const columns = [
    text('System'),
    text('Combination', 'Optimal combination of signals'),
    number('Expected', count, 'Epochs expected above the cut-off'),
    number('Observed', count),
    number('Complete %', digits(2)),
    number('PG slips', count, 'Epochs with a slip by the phase-minus-geometry test'),
    number('Restarts', count, 'Epochs in which the multipath mean restarted'),
    number('Obs per restart', digits(0)),
  ];
  const rows = report.systems.map((s): Cell[] => [
    s.name,
    s.optimal_combination.join(' '),
    s.expected_epochs,
    s.observed_epochs,
    hundred(s.completeness_ratio),
    s.phase_geometry_slip_epochs,
    s.mp_restart_epochs,
    s.observations_per_restart,
  ]);
  return new SortTable('Systems', columns, rows).element;
}

export function signalTable(report: Report): HTMLElement {
  const columns = [
    text('Signal'),
    text('Band'),
    number('Expected', count),
    number('Observed', count),
    number('Complete %', digits(2)),
    number('MP m', digits(3), 'RMS of the multipath residual'),
    number('Restarts', count),
    number('PG slips', count, 'Slips by the phase-minus-geometry test, new ephemerides included'),
    number('Obs per restart', digits(0)),
    number('SNR', digits(1), 'Mean SNR above the cut-off, dB-Hz'),
    number('\u2264 30\u00b0', digits(1), 'Mean SNR not above 30 degrees, dB-Hz'),
    number('> 30\u00b0', digits(1), 'Mean SNR above 30 degrees, dB-Hz'),
  ];
  const rows = report.signals.map((s): Cell[] => [
    `${s.letter} ${s.signal}`,
    s.band,
    s.expected_epochs,
    s.observed_epochs,
    hundred(s.completeness_ratio),
    s.mp_rms_m,
    s.mp_restart_epochs,
    s.phase_geometry_slip_epochs,
    s.observations_per_restart,
    s.snr_mean_dbhz,
    s.snr_mean_below_30deg_dbhz,
    s.snr_mean_above_30deg_dbhz,
  ]);
  return new SortTable('Signals', columns, rows).element;
}

function hardEvents(detail: Detail): Map<string, number> {
  const counts = new Map<string, number>();
  for (const e of detail.events) {
    if (HARD.has(e.kind)) counts.set(e.satellite, (counts.get(e.satellite) ?? 0) + 1);
  }
  return counts;
}

export function satelliteTable(report: Report, detail: Detail): HTMLElement {
  const hard = hardEvents(detail);
  const columns = [
    text('Satellite'),
    text('State'),
    number('Expected', count),
    number('Observed', count),
    number('Complete %', digits(2)),
    number('PG slips', count, 'Epochs with a slip by the phase-minus-geometry test, new ephemerides included'),
    number('Restarts', count),
    number('GF slips and code jumps', count, 'Slips of the geometry-free phase and code jumps, without new ephemerides'),
    number('Worst MP m', digits(3), 'The largest multipath RMS of its bands'),
  ];
  const rows = (report.satellites ?? []).map((s): Cell[] => {
    const mp = s.bands.map((b) => b.mp_rms_m).filter((v): v is number => v !== null);
    return [
      s.satellite,
      s.state,
      s.expected_epochs,
      s.observed_epochs,
      hundred(s.completeness_ratio),
      s.phase_geometry_slip_epochs,
      s.mp_restart_epochs,
      hard.get(s.satellite) ?? 0,
      mp.length > 0 ? Math.max(...mp) : null,
    ];
  });
  return new SortTable('Satellites', columns, rows).element;
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
  const columns = [text('File'), number('Line', count), text('What was met'), number('Times', count), text('Repaired')];
  const rows = report.notices.map((n): Cell[] => [baseName(n.file), n.line, n.text, n.count, n.recovered ? 'yes' : 'no']);
  return new SortTable('Notices of the readers', columns, rows).element;
}

// The page: reads the data inside this file and lays out verdict, plots and tables.
import { completenessFigure, multipathBars } from './charts/bars';
import { multipathFigure, snrFigure } from './charts/elevation';
import { rateFigure } from './charts/rate';
import { skyFigure } from './charts/sky';
import { timelineFigure } from './charts/timeline';
import { decode, type Detail, unpack } from './detail';
import { button, el, select } from './dom';
import type { Figure } from './figure';
import { baseName, fixed, percent, whole } from './format';
import { type Hint, hintsOf } from './hints';
import { dataOf, head, section, tile } from './layout';
import type { Report } from './report';
import { Selection } from './selection';
import { eventTable, noticeTable, satelliteTable, signalTable, systemTable } from './tables';
import { forPaper, startTheme } from './theme';
import { verdictPanel } from './verdict';

function header(report: Report): void {
  const run = report.run;
  const name = run.marker || baseName(run.observation_file);
  document.title = `${name}: observation quality`;
  const facts: [string, string][] = [
    ['File', baseName(run.observation_file)],
    ['From', run.first_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['To', run.last_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['Interval', `${fixed(run.interval_s, 3).replace(/\.?0+$/, '')} s, from the ${run.interval_source}`],
    ['Receiver', run.receiver ?? '-'],
    ['Antenna', run.antenna ?? '-'],
    ['Cut-off', `${run.elevation_cutoff_deg ?? '-'}\u00b0`],
    ['Navigation', run.navigation_files.map(baseName).join(', ') || '-'],
  ];
  head('Observation quality', name, facts);
}

function tiles(report: Report): HTMLElement {
  let expected = 0;
  let observed = 0;
  let values = 0;
  let squares = 0;
  for (const s of report.signals) {
    expected += s.expected_epochs ?? 0;
    observed += s.observed_epochs ?? 0;
    if (s.mp_rms_m !== null && s.mp_values !== null) {
      values += s.mp_values;
      squares += s.mp_values * s.mp_rms_m * s.mp_rms_m;
    }
  }
  const run = report.run;
  return el(
    'dl',
    { class: 'tiles' },
    tile('Completeness', expected > 0 ? percent(observed / expected) : '-', 'Observed of expected epochs, all signals together'),
    tile('Multipath RMS', values > 0 ? `${fixed(Math.sqrt(squares / values), 3)} m` : '-', 'All signals together'),
    tile('Epochs', whole(run.judged_epochs), 'Epochs judged'),
    tile('Lost epochs', whole(run.lost_epochs), 'Epochs of the span that are not in the file'),
    tile('Duration', `${fixed(run.duration_h, 2)} h`, 'From the first epoch to the last'),
    tile('Satellites', whole(report.satellites?.filter((s) => s.state === 'used').length), 'Satellites judged'),
  );
}

function hintList(hints: Hint[], selection: Selection): HTMLElement {
  const list = el('ul', { class: 'hints' });
  for (const hint of hints) {
    const show = button(
      'Show',
      () => {
        selection.set(hint.signal ?? '*', hint.satellite ?? '*');
        const figure = document.getElementById(hint.figure)!;
        figure.scrollIntoView({ block: 'start' });
        figure.querySelector<HTMLElement>('button, select')?.focus({ preventScroll: true });
      },
      { 'aria-label': `Show: ${hint.title}` },
    );
    list.append(el('li', {}, el('div', {}, el('strong', {}, hint.title), el('p', {}, hint.text)), show));
  }
  return list;
}

function selectionBar(detail: Detail, selection: Selection): HTMLElement {
  const signal = select(
    'Signal',
    [['*', 'Main of each system'], ...selection.signals().map((s): [string, string] => [s, s])],
    '*',
    (value) => selection.set(value, selection.satellite),
  );
  const satellite = select(
    'Satellite',
    [['*', 'All'], ...detail.satellites.map((s): [string, string] => [s.name, s.name])],
    '*',
    (value) => selection.set(selection.signal, value),
  );
  const reset = button('Show all', () => selection.set('*', '*'));
  selection.onChange(() => {
    signal.querySelector('select')!.value = selection.signal;
    satellite.querySelector('select')!.value = selection.satellite;
    reset.disabled = selection.signal === '*' && selection.satellite === '*';
  });
  reset.disabled = true;
  return el('div', { class: 'selection', role: 'group', 'aria-label': 'What the plots show' }, signal, satellite, reset);
}

function notes(report: Report): HTMLElement | null {
  const texts = report.notes.map((n) => n.text);
  return texts.length === 0 ? null : el('ul', { class: 'notes' }, ...texts.map((t) => el('li', {}, t)));
}

/** Paper is white and as wide as paper: every plot is drawn again for it. */
function printing(figures: Figure[]): void {
  addEventListener('beforeprint', () => {
    forPaper(true);
    figures.forEach((figure) => {
      figure.show();
      figure.refit();
      figure.freeze();
    });
  });
  addEventListener('afterprint', () => {
    forPaper(false);
    figures.forEach((figure) => figure.thaw());
  });
}

async function start(): Promise<void> {
  startTheme();
  const report = JSON.parse(dataOf('report-data')) as Report;
  header(report);
  if (typeof DecompressionStream === 'undefined') {
    const text = 'The points of this report are packed in a way that this browser cannot open: use one of 2023 or later.';
    document.getElementById('report')!.append(el('p', { class: 'warning' }, text));
    return;
  }
  const detail = decode(await unpack(dataOf('detail-data')));
  const selection = new Selection(detail);
  const figures = [
    skyFigure(detail, selection),
    snrFigure(detail, selection),
    timelineFigure(detail, selection),
    multipathFigure(detail, selection),
    multipathBars(report),
    completenessFigure(report),
    rateFigure(detail, selection),
  ];
  document.getElementById('report')!.append(
    section('look-first', 'What to look at first', verdictPanel(report), tiles(report), hintList(hintsOf(report, detail), selection)),
    section(
      'plots',
      'Plots',
      selectionBar(detail, selection),
      el('p', { class: 'help' }, 'Ctrl and the wheel, a pinch, or + and \u2212 zoom; dragging moves; points show their values under the pointer.'),
      el('div', { class: 'figures' }, ...figures.map((f) => f.element)),
    ),
    section('slips', 'Slips and restarts, with their reasons', eventTable(detail)),
    section('tables', 'Tables', systemTable(report), signalTable(report), satelliteTable(report, detail)),
    section('notes', 'Notes', notes(report), noticeTable(report)),
  );
  document.getElementById('foot')!.append(
    el('p', {}, `Orsolva ${report.library_version}. This file holds all of its data and needs no network. Times are GPS time.`),
  );
  printing(figures);
  // The seat of the browser tests.
  (window as unknown as Record<string, unknown>).orsolva = { report, detail, selection, figures, drawn: performance.now() };
}

void start();

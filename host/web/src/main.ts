// The page: reads the data inside this file and lays out verdict, plots and tables.
import { analysisEvents, analysisTables, type EventData } from './analysis';
import { completenessFigure, multipathBars } from './charts/bars';
import { multipathFigure, snrFigure } from './charts/elevation';
import { rateFigure } from './charts/rate';
import { skyFigure } from './charts/sky';
import { timelineFigure } from './charts/timeline';
import { decode, type Detail, unpack } from './detail';
import { button, el, select } from './dom';
import type { Figure } from './figure';
import { type HeadlineFigures, HEADLINE } from './figures';
import { baseName, fixed, withUnit } from './format';
import { dataOf, head, section, tile } from './layout';
import type { Finding, Report } from './report';
import { Selection } from './selection';
import { eventTable, notJudgedTable, noticeTable, satelliteTable, signalTable, systemTable } from './tables';
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

/** The tiles: figures of the headline, as the report has them. */
const TILES: [string, keyof HeadlineFigures][] = [
  ['Completeness', 'cutoff_completeness_ratio'],
  ['Cycle slips', 'cycle_slips'],
  ['MP1 of GPS', 'gps_mp1_rms_m'],
  ['MP2 of GPS', 'gps_mp2_rms_m'],
  ['Epochs', 'present_epochs'],
  ['Epochs missing', 'missing_epochs'],
  ['Satellites observed', 'satellites_tracked'],
  ['Without orbit', 'satellites_without_orbit'],
];

function tiles(report: Report): HTMLElement {
  return el(
    'dl',
    { class: 'tiles' },
    ...TILES.map(([name, key]) => {
      const column = HEADLINE.find((c) => c.key === key)!;
      return tile(name, withUnit(report.headline[key], column.unit, column.digits), column.title);
    }),
  );
}

/** The plot that shows a finding. */
const PLOTS: Record<string, string> = {
  'worst-multipath': 'multipath',
  'least-complete': 'completeness',
  'nothing-missing': 'completeness',
  'not-judged': 'satellites-judged',
  'nothing-judged': 'satellites-judged',
};

function findingList(findings: Finding[], detail: Detail, selection: Selection): HTMLElement {
  const list = el('ul', { class: 'hints' });
  for (const finding of findings) {
    const show = button(
      'Show',
      () => {
        const drawn = finding.satellites.length === 1 && detail.satellites.some((s) => s.name === finding.satellites[0]);
        selection.set(finding.signal ?? '*', drawn ? finding.satellites[0] : '*');
        const place = document.getElementById(PLOTS[finding.id] ?? 'timeline') ?? document.getElementById('analysis')!;
        place.scrollIntoView({ block: 'start' });
        place.querySelector<HTMLElement>('button, select')?.focus({ preventScroll: true });
      },
      { 'aria-label': `Show: ${finding.title}` },
    );
    list.append(el('li', { class: finding.severity }, el('div', {}, el('strong', {}, finding.title), el('p', {}, finding.text)), show));
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

/** The satellites without figures, where a finding leads. */
function notJudged(report: Report): HTMLElement | null {
  const table = notJudgedTable(report);
  return table === null ? null : el('div', { id: 'satellites-judged' }, table);
}

function notes(report: Report): HTMLElement | null {
  const texts = report.library.notes.map((n) => n.text);
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
    const text = 'The points of this report are compressed in a way that this browser cannot open: use one of 2023 or later.';
    document.getElementById('report')!.append(el('p', { class: 'warning' }, text));
    return;
  }
  const detail = decode(await unpack(dataOf('detail-data')));
  const events = JSON.parse(new TextDecoder().decode(await unpack(dataOf('event-data')))) as EventData;
  const selection = new Selection(detail);
  // Without the library's record there are no points to plot.
  const judged = report.library.absence === null;
  const figures = judged
    ? [
        skyFigure(detail, selection),
        snrFigure(detail, selection),
        timelineFigure(detail, selection),
        multipathFigure(detail, selection),
        multipathBars(report),
        completenessFigure(report),
        rateFigure(detail, selection),
      ]
    : [];
  const page = document.getElementById('report')!;
  page.append(
    section('look-first', 'What to look at first', el('p', { class: 'verdict-line' }, el('strong', {}, `Verdict: ${report.verdict.grade}`), ` \u2013 ${report.verdict.text}`), verdictPanel(report), tiles(report), findingList(report.findings, detail, selection)),
    section('analysis', 'Analysis of every signal', analysisTables(report), analysisEvents(events)),
  );
  if (judged) {
    page.append(
      section(
        'plots',
        'Plots',
        selectionBar(detail, selection),
        el('p', { class: 'help' }, 'Ctrl and the wheel, a pinch, or + and \u2212 zoom; dragging moves; points show their values under the pointer.'),
        el('div', { class: 'figures' }, ...figures.map((f) => f.element)),
      ),
      section('slips', 'Slips and restarts of the library, with their reasons', eventTable(detail)),
      section('tables', 'Tables of the library', systemTable(report), signalTable(report), satelliteTable(report, detail), notJudged(report)),
    );
  }
  page.append(section('notes', 'Notes', notes(report), noticeTable(report)));
  document.getElementById('foot')!.append(
    el('p', {}, `Orsolva ${report.library_version}. This file holds all of its data and needs no network. Times are GPS time.`),
  );
  printing(figures);
  // For the browser tests.
  (window as unknown as Record<string, unknown>).orsolva = { report, detail, selection, figures, drawn: performance.now() };
}

void start();

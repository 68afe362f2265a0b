// The page: reads the data inside this file and lays out verdict, plots and tables.
import { analysisEvents, analysisTables } from './analysis';
import { completenessFigure, multipathBars, type SatelliteMultipath } from './charts/bars';
import { multipathFigure, snrFigure } from './charts/elevation';
import { happenedFigure } from './charts/happened';
import { availabilityFigure, multipathTimeFigure, snrTimeFigure } from './charts/heat';
import { rateFigure } from './charts/rate';
import { skyFigure } from './charts/sky';
import { clockFigure, positionFigure, rotiFigure, satellitesFigure, scatterFigure } from './charts/station';
import { timelineFigure } from './charts/timeline';
import { decode, type Detail, unpack } from './detail';
import { button, el, prose, select } from './dom';
import type { Figure } from './figure';
import { type HeadlineFigures, HEADLINE } from './figures';
import { baseName, fixed, percent, whole, withUnit } from './format';
import { type EventData, happeningsOf } from './happenings';
import { dataOf, head, section, tile } from './layout';
import type { Finding, Report, Stream } from './report';
import { Selection } from './selection';
import { decodeSeries, type Series } from './series';
import { changesTable, eventTable, notJudgedTable, noticeTable, satelliteTable, signalTable, systemTable } from './tables';
import { forPaper, startTheme } from './theme';
import { verdictPanel } from './verdict';

function positionText(report: Report): string {
  const { position_ecef_m, position_source } = report.library.run;
  const xyz = position_ecef_m ?? report.analysis.solution_ecef_m;
  if (xyz === null || xyz.some((v) => v === null)) return '-';
  const source = { computed: 'computed from codes', header: 'of the header', option: 'as given' }[position_source] ?? position_source;
  return `${xyz.map((v) => fixed(v, 1)).join(', ')} m (ECEF, ${source})`;
}

/** What a recording was made of, without its messages by type. */
function streamText(stream: Stream): string {
  const bad = stream.crc_errors > 0 ? `, ${whole(stream.crc_errors)} with a wrong CRC` : '';
  const steps = stream.coarse_steps;
  const coarse = steps === null ? '' : `; steps of ${1000 * steps.phase_m} mm in the phases of ${[...stream.coarse_systems].join(', ')}`;
  return `${stream.format}, ${whole(stream.frames)} frames${bad}${coarse}`;
}

/** How many of the satellites observed have orbits. */
function coverageText(report: Report): string {
  const satellites = report.analysis.satellites ?? [];
  const without = report.analysis.without_orbit.length;
  if (satellites.length === 0) return '-';
  if (without === satellites.length) return `no orbit of any of ${whole(satellites.length)} satellites observed`;
  return `orbits of ${whole(satellites.length - without)} of ${whole(satellites.length)} satellites observed (${percent(1 - without / satellites.length)})`;
}

function header(report: Report): void {
  const run = report.run;
  const name = run.marker || baseName(run.observation_file);
  document.title = `${name}: observation quality`;
  const facts: [string, string][] = [
    ['File', baseName(run.observation_file) + (run.joined_files.length > 1 ? ` and ${run.joined_files.length - 1} more as one span` : '')],
    ['From', run.first_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['To', run.last_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['Interval', `${fixed(run.interval_s, 3).replace(/\.?0+$/, '')} s, from the ${run.interval_source}`],
    ['Position', positionText(report)],
    run.stream === null ? ['RINEX', run.rinex_version === null ? '-' : fixed(run.rinex_version, 2)] : ['Stream', streamText(run.stream)],
    ['Receiver', run.receiver ?? '-'],
    ['Antenna', run.antenna ?? '-'],
    ['Cut-off', `${run.elevation_cutoff_deg ?? '-'}\u00b0`],
    ['Navigation', run.navigation_files.map(baseName).join(', ') || 'none'],
    ['Coverage', coverageText(report)],
  ];
  head('Observation quality', name, facts, document.getElementById('index-link')?.textContent ?? null);
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

/** The plot or table that shows a finding; slips and interruptions where it is not listed. */
const PLOTS: Record<string, string> = {
  'antenna-moves': 'position-time',
  'became-worse': 'changes',
  'changed-statements': 'changes',
  'clock-resets': 'clock-time',
  'code-clock-jumps': 'clock-time',
  'gps-multipath': 'multipath-time',
  'least-complete': 'completeness',
  'missing-epochs': 'availability',
  'never-observed': 'availability',
  'no-navigation': 'satellites-judged',
  'not-judged': 'satellites-judged',
  'nothing-missing': 'completeness',
  'nothing-worse': 'changes',
  'position-far': 'position-time',
  'position-unusable': 'position-time',
  'satellite-strength-drops': 'snr-time',
  'signals-gone': 'changes',
  'strength-drops': 'snr-time',
  'unusable-epochs': 'satellites-time',
  'weak-signals': 'snr-time',
  'worst-multipath': 'multipath-time',
};

function findingList(findings: Finding[], selection: Selection): HTMLElement {
  const list = el('ul', { class: 'hints' });
  for (const finding of findings) {
    const show = button(
      'Show',
      () => {
        const drawn = finding.satellites.length === 1 && selection.satellites().includes(finding.satellites[0]);
        selection.set(finding.signal ?? '*', drawn ? finding.satellites[0] : '*');
        const place = document.getElementById(PLOTS[finding.id] ?? 'happened') ?? document.getElementById('analysis')!;
        place.scrollIntoView({ block: 'start' });
        place.querySelector<HTMLElement>('button, select')?.focus({ preventScroll: true });
      },
      { 'aria-label': `Show: ${finding.title}` },
    );
    list.append(el('li', { class: finding.severity }, show, el('div', {}, el('strong', {}, prose(finding.title)), el('p', {}, prose(finding.text)))));
  }
  return list;
}

function selectionBar(selection: Selection): HTMLElement {
  const signal = select(
    'Signal',
    [['*', 'Main of each system'], ...selection.signals().map((s): [string, string] => [s, s])],
    '*',
    (value) => selection.set(value, selection.satellite),
  );
  const satellite = select(
    'Satellite',
    [['*', 'All'], ...selection.satellites().map((s): [string, string] => [s, s])],
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
function printing(all: Figure[]): void {
  addEventListener('beforeprint', () => {
    forPaper(true);
    all.forEach((figure) => {
      figure.show();
      figure.refit();
      figure.freeze();
    });
  });
  addEventListener('afterprint', () => {
    forPaper(false);
    all.forEach((figure) => figure.thaw());
  });
}

function verdictLine(report: Report): HTMLElement {
  return el('p', { class: 'verdict-line' }, el('strong', {}, `Verdict: ${report.verdict.grade}`), ' \u2013 ', prose(report.verdict.text));
}

const figures = (...list: Figure[]): HTMLElement => el('div', { class: 'figures' }, ...list.map((f) => f.element));

/** The plots: over time and of every signal from the analysis, the others from the points of the library. */
function plotsOf(report: Report, detail: Detail, data: EventData, selection: Selection, series: Series, multipath: SatelliteMultipath[]) {
  const happenings = happeningsOf(report, data);
  const judged = report.library.absence === null;
  return {
    time:
      series.bins === 0
        ? []
        : [
            availabilityFigure(series, happenings),
            satellitesFigure(series, happenings, selection),
            snrTimeFigure(series, happenings, selection),
            multipathTimeFigure(series, happenings, selection),
            happenedFigure(series, happenings, selection),
            clockFigure(series, happenings),
            scatterFigure(series),
            positionFigure(series, happenings),
            rotiFigure(series, happenings, selection),
          ],
    bars: [completenessFigure(report), multipathBars(report, multipath)],
    sky: judged ? [skyFigure(detail, selection), snrFigure(detail, selection), multipathFigure(detail, selection)] : [],
    library: judged ? [timelineFigure(detail, selection), rateFigure(detail, selection)] : [],
  };
}

function librarySections(report: Report, detail: Detail, sky: Figure[], library: Figure[]): HTMLElement[] {
  return [
    section('sky-elevation', 'Sky and elevation', el('p', { class: 'help' }, 'Epochs and signals that the library judged.'), figures(...sky)),
    section('library', 'Library record', figures(...library), eventTable(detail), systemTable(report), signalTable(report), satelliteTable(report, detail), notJudged(report)),
  ];
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
  const series = decodeSeries(await unpack(dataOf('series-data')));
  const parsed = async (id: string) => JSON.parse(new TextDecoder().decode(await unpack(dataOf(id))));
  const events = (await parsed('event-data')) as EventData;
  const multipath = (await parsed('multipath-data')) as SatelliteMultipath[];
  const selection = new Selection(detail, series);
  const plots = plotsOf(report, detail, events, selection, series, multipath);
  const help = 'Ctrl and the wheel, a pinch, or + and \u2212 zoom; dragging moves; points show their values under the pointer.';
  const page = document.getElementById('report')!;
  page.append(
    section('look-first', 'What to look at first', verdictLine(report), verdictPanel(report), tiles(report), findingList(report.findings, selection), changesTable(report)),
    selectionBar(selection),
    section('over-time', 'Over time', el('p', { class: 'help' }, help), figures(...plots.time)),
    section('analysis', 'Analysis of every signal', figures(...plots.bars), analysisTables(report), analysisEvents(events)),
  );
  // Without the library's record there are no points to plot.
  if (report.library.absence === null) page.append(...librarySections(report, detail, plots.sky, plots.library));
  page.append(section('notes', 'Notes', notes(report), noticeTable(report)));
  document.getElementById('foot')!.append(
    el('p', {}, `Orsolva ${report.library_version}. This file holds all of its data and needs no network. Times are GPS time.`),
  );
  const all = [...plots.time, ...plots.bars, ...plots.sky, ...plots.library];
  printing(all);
  // For the browser tests.
  (window as unknown as Record<string, unknown>).orsolva = { report, detail, series, selection, figures: all, drawn: performance.now() };
}

void start();

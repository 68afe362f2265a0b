// The index of a run over many files: a row per file, worst first, each leading to the file's own page.
import { el, prose, select } from './dom';
import type { HeadlineFigures, LibraryHeadlineFigures } from './figures';
import { baseName, fixed, percent, whole } from './format';
import { dataOf, head, section, tile } from './layout';
import { type Cell, type Column, count, digits, hundred, number, SortTable, text } from './table';
import { forPaper, startTheme } from './theme';

interface Row extends HeadlineFigures, LibraryHeadlineFigures {
  file: string;
  page: string | null;
  marker: string | null;
  state: string;
  /** What is wrong, or what makes the file good. */
  verdict: string | null;
  error: string | null;
  first_epoch_gpst: string | null;
  duration_h: number | null;
  lost_epochs: number | null;
  notices: number | null;
}

interface Summary {
  files: number;
  errors: number;
  failed: number;
  fair: number;
  good: number;
  median_completeness_ratio: number | null;
  least_completeness_ratio: number | null;
  first_epoch_gpst: string | null;
  duration_h: number;
}

interface Network {
  library_version: string;
  profile: string | null;
  summary: Summary;
  rows: Row[];
}

const PAGE = 1000;
const WORDS: Record<string, string> = { ERROR: 'Error', fail: 'Failed', 'no data': 'No data', poor: 'Poor', 'not judged': 'Not judged', fair: 'Fair', good: 'Good' };
const TONES: Record<string, string> = { ERROR: 'bad', fail: 'bad', 'no data': 'bad', poor: 'bad', 'not judged': 'fair', fair: 'fair', good: 'good' };

/** The last part of each path, or the whole path where another file has the same. */
function names(rows: Row[]): string[] {
  const seen = new Map<string, number>();
  for (const row of rows) seen.set(baseName(row.file), (seen.get(baseName(row.file)) ?? 0) + 1);
  return rows.map((row) => (seen.get(baseName(row.file)) === 1 && baseName(row.file) !== '' ? baseName(row.file) : row.file));
}

function fileCell(row: Row, name: string): HTMLElement {
  return el(
    'div',
    { class: 'file' },
    row.page === null ? el('span', { title: row.file }, name) : el('a', { href: row.page, title: row.file }, name),
    row.error === null ? null : el('p', { class: 'error' }, row.error),
    row.error !== null || row.verdict === null ? null : el('p', { class: 'found' }, row.verdict),
  );
}

/** A figure with a bar, as long as its part of the largest in the column. */
function figure(rows: Row[], get: (row: Row) => number | null, column: Column): Column {
  const most = Math.max(0, ...rows.map((row) => get(row) ?? 0));
  return { ...column, bar: (value) => (most > 0 ? value / most : 0) };
}

const FIGURES: { get: (row: Row) => number | null; column: Column }[] = [
  { get: (r) => hundred(r.cutoff_completeness_ratio), column: number('Complete %', digits(2), 'Observed of expected epochs') },
  { get: (r) => r.gps_mp1_rms_m, column: number('MP1 m', digits(3), 'Multipath RMS of GPS, band 1') },
  { get: (r) => r.gps_mp2_rms_m, column: number('MP2 m', digits(3), 'Multipath RMS of GPS, band 2') },
  { get: (r) => r.cycle_slips, column: number('Slips', count, 'Cycle slips of satellites, of every size') },
  { get: (r) => r.missing_epochs, column: number('Missing', count, 'Nominal epochs without any observation') },
  { get: (r) => r.satellites_tracked, column: number('Satellites', count, 'Satellites observed') },
  { get: (r) => r.notices, column: number('Notices', count, 'Oddities of the files, repaired or not') },
  { get: (r) => r.duration_h, column: number('Hours', digits(2)) },
];

/** Verdict and file sort by the row's place: the worst first, and the alphabet. */
function table(network: Network, rows: Row[]): { table: SortTable; cellsOf: (wanted: Row[]) => Cell[][] } {
  const shown = names(rows);
  const order = shown.map((_, i) => i).sort((a, b) => (shown[a] < shown[b] ? -1 : shown[a] > shown[b] ? 1 : a - b));
  const alphabet: number[] = [];
  order.forEach((row, place) => (alphabet[row] = place));
  const verdict: Column = {
    name: network.profile === null ? 'State' : 'Verdict',
    title: 'Sort worst first: verdicts, then the lowest completeness',
    show: (value) => el('strong', { class: `state ${TONES[rows[value as number].state] ?? ''}` }, WORDS[rows[value as number].state] ?? ''),
  };
  const file: Column = { name: 'File', show: (value) => fileCell(rows[order[value as number]], shown[order[value as number]]) };
  const columns = [verdict, file, ...FIGURES.map((f) => figure(rows, f.get, f.column)), text('Marker'), text('First epoch', 'GPS time')];
  const places = new Map(rows.map((row, i) => [row, i]));
  const cellsOf = (wanted: Row[]) =>
    wanted.map((r): Cell[] => {
      const i = places.get(r)!;
      return [i, alphabet[i], ...FIGURES.map((f) => f.get(r)), r.marker, r.first_epoch_gpst?.replace(/\.000$/, '') ?? null];
    });
  return { table: new SortTable('Files', columns, cellsOf(rows), { rowHead: 1, sorted: 0, page: PAGE }), cellsOf };
}

/** The error without the file's name, which is listed. */
function errorOf(row: Row): string {
  const parts = (row.error ?? '').split(`${row.file}:`).map((part, i) => (i > 0 && /^\d/.test(part) ? `line ${part}` : part));
  return parts.join('').trim();
}

/** What is the same in errors of one cause: the text without numbers and quotes of a file. */
function causeOf(row: Row): string {
  return errorOf(row).replace(/"[^"]*"/g, '"\u2026"').replace(/\d+/g, '#');
}

/** Files that could not be judged, by cause, the most frequent first. */
function failures(rows: Row[]): HTMLElement | null {
  if (rows.length === 0) return null;
  const causes = new Map<string, Row[]>();
  for (const row of rows) causes.set(causeOf(row), [...(causes.get(causeOf(row)) ?? []), row]);
  const groups = [...causes.values()].sort((a, b) => b.length - a.length);
  const shown = new Map(rows.map((row, i) => [row, names(rows)[i]]));
  const lines = groups.map((group) =>
    el(
      'details',
      { class: 'cause', open: groups.length <= 3 && group.length <= 5 },
      el('summary', {}, el('strong', {}, `${group.length} ${group.length === 1 ? 'file' : 'files'}: `), errorOf(group[0])),
      el('ul', {}, ...group.map((row) => el('li', { title: row.error ?? '' }, shown.get(row)!))),
    ),
  );
  return section('failures', `Files that could not be judged (${rows.length})`, ...lines);
}

/** The state of a file in a square of the calendar, darker where more was observed. */
function dayCell(row: Row): HTMLElement {
  const label = row.cutoff_completeness_ratio === null ? WORDS[row.state] ?? row.state : percent(row.cutoff_completeness_ratio);
  const what = { class: `day ${TONES[row.state] ?? ''}`, title: `${baseName(row.file)}: ${label}` };
  return row.page === null ? el('span', what, label) : el('a', { ...what, href: row.page }, label);
}

/** Stations by days, where there is more than one of either, each leading to its page. */
function calendar(rows: Row[]): HTMLElement | null {
  const dated = rows.filter((r) => r.first_epoch_gpst !== null);
  const stationOf = (row: Row) => row.marker ?? baseName(row.file);
  const days = [...new Set(dated.map((r) => r.first_epoch_gpst!.slice(0, 10)))].sort();
  const stations = [...new Set(dated.map(stationOf))].sort();
  if (days.length < 2 || stations.length > 400 || days.length > 400) return null;
  const head = el('tr', {}, el('th', { scope: 'col' }, 'Station'), ...days.map((day) => el('th', { scope: 'col' }, day)));
  const body = stations.map((station) =>
    el(
      'tr',
      {},
      el('th', { scope: 'row' }, station),
      ...days.map((day) => {
        const files = dated.filter((r) => stationOf(r) === station && r.first_epoch_gpst!.startsWith(day));
        return el('td', {}, ...files.map(dayCell));
      }),
    ),
  );
  const grid = el('table', {}, el('caption', {}, 'Completeness by station and day'), el('thead', {}, head), el('tbody', {}, ...body));
  return section('days', 'Stations and days', el('div', { class: 'scroll', tabindex: 0, role: 'region', 'aria-label': 'Stations and days' }, grid));
}

/** Narrows the table to what is typed and to a verdict. */
function filter(rows: Row[], change: (wanted: Row[]) => void): HTMLElement {
  const input = el('input', { type: 'search', placeholder: 'file, marker or date', size: 18 });
  const found = el('span', { class: 'help', role: 'status' });
  let state = '*';
  const apply = () => {
    const words = input.value.toLowerCase().split(/\s+/).filter((w) => w !== '');
    const wanted = rows.filter((r) => {
      const text = `${r.file} ${r.marker ?? ''} ${r.first_epoch_gpst ?? ''}`.toLowerCase();
      return (state === '*' || r.state === state) && words.every((w) => text.includes(w));
    });
    found.textContent = wanted.length === rows.length ? '' : `${wanted.length} of ${rows.length} files`;
    change(wanted);
  };
  input.addEventListener('input', apply);
  const states = [...new Set(rows.map((r) => r.state))];
  const choice = select('Show', [['*', 'All'], ...states.map((s): [string, string] => [s, WORDS[s] ?? s])], '*', (value) => {
    state = value;
    apply();
  });
  return el('div', { class: 'bar', role: 'group', 'aria-label': 'Which files the table shows' }, el('label', { class: 'control' }, el('span', {}, 'Search'), input), choice, found);
}

function tiles(network: Network): HTMLElement {
  const { summary } = network;
  const graded =
    network.profile === null
      ? []
      : [
          tile('Failed', whole(summary.failed), 'Files whose verdict is not passed'),
          tile('Fair', whole(summary.fair), 'Files with the verdict fair'),
          tile('Good', whole(summary.good), 'Files with the verdict good'),
        ];
  return el(
    'dl',
    { class: 'tiles' },
    tile('Files', whole(summary.files), 'Files of the run'),
    tile('Errors', whole(summary.errors), 'Files that could not be judged, or not to their end'),
    ...graded,
    tile('Median complete', percent(summary.median_completeness_ratio), 'Median completeness of the files'),
    tile('Least complete', percent(summary.least_completeness_ratio), 'Lowest completeness of a file'),
  );
}

/** The file to look at first, and what is wrong with it. */
function worstLine(network: Network): HTMLElement | null {
  const worst = network.rows[0];
  if (worst === undefined) return null;
  if (worst.state === 'good') return el('p', { class: 'verdict-line' }, 'No file has anything wrong with it.');
  const name = baseName(worst.file) || worst.file;
  return el('p', { class: 'verdict-line' }, el('strong', {}, `Worst: ${name}`), ` \u2013 ${(WORDS[worst.state] ?? worst.state).toLowerCase()}: `, prose(worst.verdict ?? worst.error ?? ''));
}

function facts(network: Network): [string, string][] {
  const { summary } = network;
  return [
    ['From', summary.first_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['Data', `${fixed(summary.duration_h, 1)} h of all files together`],
    ['Profile', network.profile ?? 'none: the verdict is that of the analysis'],
  ];
}

function start(): void {
  startTheme();
  const network = JSON.parse(dataOf('network-data')) as Network;
  head('Observation quality', `Network of ${whole(network.rows.length)} files`, facts(network));
  const judged = network.rows.filter((r) => r.duration_h !== null);
  const failed = network.rows.filter((r) => r.duration_h === null);
  const { table: files, cellsOf } = table(network, judged);
  const hint = failed.length === 0 ? null : el('p', { class: 'failed' }, el('a', { href: '#failures' }, `${failed.length} ${failed.length === 1 ? 'file' : 'files'} could not be judged`), ': below, by cause.');
  for (const part of [
    worstLine(network),
    tiles(network),
    hint,
    section('files', 'Files, worst first', filter(judged, (wanted) => files.set(cellsOf(wanted))), files.element),
    calendar(judged),
    failures(failed),
  ]) {
    if (part !== null) document.getElementById('report')!.append(part);
  }
  document.getElementById('foot')!.append(
    el('p', {}, `Orsolva ${network.library_version}. The names lead to the page of each file. This page needs no network. Times are GPS time.`),
  );
  addEventListener('beforeprint', () => {
    forPaper(true);
    files.showAll();
  });
  addEventListener('afterprint', () => forPaper(false));
  // For the browser tests.
  (window as unknown as Record<string, unknown>).orsolva = { network };
}

start();

// The index of a run over many files: a row per file, worst first, each leading to the file's own page.
import { el } from './dom';
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
  );
}

/** Verdict and file sort by the row's place: the worst first, and the alphabet. */
function table(network: Network): SortTable {
  const { rows } = network;
  const shown = names(rows);
  const order = shown.map((_, i) => i).sort((a, b) => (shown[a] < shown[b] ? -1 : shown[a] > shown[b] ? 1 : a - b));
  const alphabet: number[] = [];
  order.forEach((row, place) => (alphabet[row] = place));
  const verdict: Column = {
    name: network.profile === null ? 'State' : 'Verdict',
    title: 'Sort worst first: errors, then verdicts, then the lowest completeness',
    show: (value) => el('strong', { class: `state ${TONES[rows[value as number].state] ?? ''}` }, WORDS[rows[value as number].state] ?? ''),
  };
  const file: Column = { name: 'File', show: (value) => fileCell(rows[order[value as number]], shown[order[value as number]]) };
  const columns = [
    verdict,
    file,
    text('Marker'),
    text('First epoch', 'GPS time'),
    number('Hours', digits(2)),
    number('Complete %', digits(2), 'Observed of expected epochs'),
    number('Missing', count, 'Nominal epochs without any observation'),
    number('MP1 m', digits(3), 'Multipath RMS of GPS, band 1'),
    number('MP2 m', digits(3), 'Multipath RMS of GPS, band 2'),
    number('Slips', count, 'Cycle slips of satellites, of every size'),
    number('Satellites', count, 'Satellites observed'),
    number('Notices', count, 'Oddities of the files, repaired or not'),
  ];
  const cells = rows.map((r, i): Cell[] => [
    i,
    alphabet[i],
    r.marker,
    r.first_epoch_gpst?.replace(/\.000$/, '') ?? null,
    r.duration_h,
    hundred(r.cutoff_completeness_ratio),
    r.missing_epochs,
    r.gps_mp1_rms_m,
    r.gps_mp2_rms_m,
    r.cycle_slips,
    r.satellites_tracked,
    r.notices,
  ]);
  return new SortTable('Files', columns, cells, { rowHead: 1, sorted: 0, page: PAGE });
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

function facts(network: Network): [string, string][] {
  const { summary } = network;
  return [
    ['From', summary.first_epoch_gpst?.replace(/\.000$/, '') ?? '-'],
    ['Data', `${fixed(summary.duration_h, 1)} h of all files together`],
    ['Profile', network.profile ?? 'none: files are ordered by completeness'],
  ];
}

function start(): void {
  startTheme();
  const network = JSON.parse(dataOf('network-data')) as Network;
  head('Observation quality', `Network of ${whole(network.rows.length)} files`, facts(network));
  const files = table(network);
  document.getElementById('report')!.append(tiles(network), section('files', 'Files, worst first', files.element));
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

// SNR and multipath over time, a row per satellite; of one satellite a row per signal.
import { select } from '../dom';
import { axisStyle, type Drawing, Figure } from '../figure';
import { fixed, whole } from '../format';
import type { Happenings } from '../happenings';
import { SCALE } from '../palette';
import type { Selection } from '../selection';
import { minutesOf, type Series, type Subject } from '../series';
import { type Colors, onPaper } from '../theme';
import { binText, type Cell, cellSeries, marks, timeFrame } from './time';

type Kind = 'snr' | 'multipath';

const STEPS: Record<Kind, number[]> = { snr: [25, 30, 35, 40, 45, 50], multipath: [0.1, 0.2, 0.3, 0.5, 0.75, 1] };
const UNIT: Record<Kind, string> = { snr: 'dB-Hz', multipath: 'm' };
const PER_UNIT: Record<Kind, number> = { snr: 10, multipath: 1000 };
const ROW = 11;
/** A page of paper less heading and note. */
const MOST_ON_PAPER = 850;

function className(kind: Kind, k: number): string {
  const steps = STEPS[kind];
  const range = k === 0 ? `< ${steps[0]}` : k === steps.length ? `\u2265 ${steps[k - 1]}` : `${steps[k - 1]}\u2013${steps[k]}`;
  return `${range} ${UNIT[kind]}`;
}

export function classOf(value: number, steps: number[]): number {
  let k = 0;
  while (k < steps.length && value >= steps[k]) ++k;
  return k;
}

function cellsOf(rows: Subject[], names: string[], kind: Kind, series: Series): Cell[][] {
  const classes: Cell[][] = SCALE.map(() => []);
  rows.forEach((subject, row) => {
    (subject[kind] ?? []).forEach((raw, k) => {
      if (raw === null) return;
      const value = raw / PER_UNIT[kind];
      const slips = subject.slips[k] ?? 0;
      const lines: [string, string][] = [
        ['Time', binText(series, subject.first + k)],
        [kind === 'snr' ? 'Mean SNR' : 'Multipath RMS', `${fixed(value, kind === 'snr' ? 1 : 3)} ${UNIT[kind]}`],
      ];
      if (slips > 0) lines.push(['Slips', whole(slips)]);
      classes[classOf(value, STEPS[kind])].push({ bin: subject.first + k, row, title: names[row], lines });
    });
  });
  return classes;
}

/** A triangle on every bin with slips. */
function slipMarks(rows: Subject[], series: Series, c: Colors): object {
  const data = rows.flatMap((subject, row) =>
    subject.slips.flatMap((n, k) => (n !== null && n > 0 ? [[series.first + (subject.first + k + 0.5) * series.bin, row]] : [])),
  );
  return { type: 'scatter', name: 'Slips', symbol: 'triangle', symbolSize: 9, z: 8, silent: true, progressive: 0, data, itemStyle: { color: c.bad, borderColor: c.back, borderWidth: 1 } };
}

function draw(series: Series, happenings: Happenings, selection: Selection, kind: Kind, c: Colors, width: number): Drawing {
  const rows = selection.subjects();
  const one = selection.satellite !== '*';
  const names = rows.map((s) => (one ? s.signal! : s.of));
  const classes = cellsOf(rows, rows.map((s) => `${s.of} ${s.signal}`), kind, series);
  const count = classes.reduce((sum, cells) => sum + cells.length, 0);
  const frame = timeFrame(series, c, width, {
    type: 'category',
    inverse: true,
    data: names,
    ...axisStyle(c),
    axisLabel: { color: c.soft, interval: 0, fontSize: onPaper() && names.length > 50 ? 5 : 9 },
    splitLine: { show: false },
  });
  const what = kind === 'snr' ? 'Mean SNR' : 'Multipath RMS';
  return {
    points: count,
    label: `${what} of ${rows.length} ${one ? 'signals' : 'satellites'} in bins of ${minutesOf(series)} minutes: ${selection.text()}.`,
    note: `${selection.text()}. Bins of ${minutesOf(series)} minutes; triangles are bins with slips.`,
    option: {
      ...frame,
      series: [
        ...classes.map((cells, k) => cellSeries(className(kind, k), SCALE[k], cells, series)),
        slipMarks(rows, series, c),
        ...marks(happenings, c),
      ],
    },
  };
}

function figureOf(series: Series, happenings: Happenings, selection: Selection, kind: Kind): Figure {
  const figure = new Figure({
    id: kind === 'snr' ? 'snr-time' : 'multipath-time',
    title: kind === 'snr' ? 'SNR over time' : 'Multipath over time',
    help:
      kind === 'snr'
        ? 'A row per satellite, or per signal of one satellite. What dims all rows at once is interference or the antenna; what returns every day at the same place of the sky is an obstacle.'
        : 'RMS about the moving mean, above the cut-off. What is light in one satellite at a time is a reflection; in all of them, the receiver.',
    height: () => {
      const height = Math.max(selection.subjects().length, 8) * ROW + 112;
      return onPaper() ? Math.min(height, MOST_ON_PAPER) : height;
    },
    draw: (c, width) => draw(series, happenings, selection, kind, c, width),
    wide: true,
  });
  selection.onChange(() => figure.refit());
  return figure;
}

export function snrTimeFigure(series: Series, happenings: Happenings, selection: Selection): Figure {
  return figureOf(series, happenings, selection, 'snr');
}

export function multipathTimeFigure(series: Series, happenings: Happenings, selection: Selection): Figure {
  return figureOf(series, happenings, selection, 'multipath');
}

const AVAILABLE_STEPS = [50, 80, 95, 99];
const AVAILABLE = ['< 50 %', '50\u201380 %', '80\u201395 %', '95\u201399 %', '\u2265 99 %'];
const AVAILABLE_COLORS = [SCALE[0], SCALE[1], SCALE[3], SCALE[4], SCALE[5]];

/** A band per signal: observed of expected epochs, or where no orbit says what to expect, that it was there. */
function drawAvailability(series: Series, happenings: Happenings, letter: string, c: Colors, width: number): Drawing {
  const rows = series.signals.filter((s) => letter === '*' || s.of === letter);
  const classes: Cell[][] = AVAILABLE.map(() => []);
  const unknown: Cell[] = [];
  rows.forEach((subject, row) =>
    subject.available.forEach((ratio, k) => {
      const satellites = subject.satellites?.[k] ?? null;
      if (satellites === null) return;
      const percent = ratio === null ? null : ratio / 10;
      const lines: [string, string][] = [
        ['Time', binText(series, subject.first + k)],
        ['Available', percent === null ? 'no orbit' : `${fixed(percent, 1)} %`],
        ['Satellites', fixed(satellites / 10, 1)],
      ];
      const cell = { bin: subject.first + k, row, title: `${subject.of} ${subject.signal}`, lines };
      if (percent !== null) classes[classOf(percent, AVAILABLE_STEPS)].push(cell);
      else if (satellites > 0) unknown.push(cell);
    }),
  );
  const count = classes.reduce((sum, cells) => sum + cells.length, unknown.length);
  const frame = timeFrame(series, c, width, {
    type: 'category',
    inverse: true,
    data: rows.map((s) => `${s.of} ${s.signal}`),
    ...axisStyle(c),
    axisLabel: { color: c.soft, interval: 0, fontSize: 11 },
    splitLine: { show: false },
  });
  return {
    points: count,
    label: `Availability of ${rows.length} signals over time, in bins of ${minutesOf(series)} minutes.`,
    note: 'Observed of expected epochs above the cut-off, of the satellites observed with the signal so far. Grey: observed, but no satellite was above the cut-off or none had an orbit.',
    option: {
      ...frame,
      series: [
        ...classes.map((cells, k) => cellSeries(AVAILABLE[k], AVAILABLE_COLORS[k], cells, series)),
        ...(unknown.length > 0 ? [cellSeries('Below the cut-off, or no orbit', c.soft, unknown, series)] : []),
        ...marks(happenings, c),
      ],
    },
  };
}

export function availabilityFigure(series: Series, happenings: Happenings): Figure {
  let letter = '*';
  const letters = [...new Set(series.signals.map((s) => s.of))];
  const control = select('System', [['*', 'All'], ...letters.map((l): [string, string] => [l, l])], letter, (value) => {
    letter = value;
    figure.refit();
  });
  const figure: Figure = new Figure({
    id: 'availability',
    title: 'Availability of every signal',
    help: 'A band per signal. Violet and blue are times at which satellites that should have been tracked were not; grey says nothing of that.',
    height: () => Math.max(series.signals.filter((s) => letter === '*' || s.of === letter).length, 5) * 19 + 116,
    draw: (c, width) => drawAvailability(series, happenings, letter, c, width),
    controls: [control],
    wide: true,
  });
  return figure;
}

// Slips, gaps and clock events of satellites one by one over time, on bars of when each was tracked.
import { select, tip } from '../dom';
import { axisStyle, type Drawing, Figure } from '../figure';
import { clock, fixed, span } from '../format';
import { type Happening, type Happenings, kindText } from '../happenings';
import type { Selection } from '../selection';
import type { Series, Subject } from '../series';
import { type Colors, onPaper, systemColor } from '../theme';
import { marks, timeFrame } from './time';

interface Look {
  kinds: string[];
  name: string;
  symbol: string;
  shown: boolean;
}

const LOOKS: Look[] = [
  { kinds: ['slip', 'half_cycle'], name: 'Slip', symbol: 'triangle', shown: true },
  { kinds: ['jump', 'unstable_signal'], name: 'Jump of unknown size', symbol: 'diamond', shown: true },
  { kinds: ['gap_slip', 'signal_gap_slip'], name: 'Interruption with a slip', symbol: 'rect', shown: true },
  { kinds: ['gap_unresolved', 'signal_gap_unresolved'], name: 'Interruption, unresolved', symbol: 'emptyDiamond', shown: false },
  { kinds: ['gap_continuous', 'signal_gap_continuous'], name: 'Interruption, continuous', symbol: 'emptyCircle', shown: false },
  { kinds: ['outlier', 'satellite_clock', 'ionosphere'], name: 'No slip: outlier, satellite clock, ionosphere', symbol: 'circle', shown: false },
];
const ROW = 12;
const MOST_ON_PAPER = 850;

interface Bar {
  row: number;
  from: number;
  to: number;
  subject: Subject;
}

/** Bins in a row with observations as one bar. */
function barsOf(series: Series, rows: Subject[]): Bar[] {
  const bars: Bar[] = [];
  rows.forEach((subject, row) => {
    let open: Bar | null = null;
    (subject.observed ?? []).forEach((epochs, k) => {
      const from = series.first + (subject.first + k) * series.bin;
      if (epochs === null || epochs === 0) {
        open = null;
      } else if (open !== null) {
        open.to = from + series.bin;
      } else {
        bars.push((open = { row, from, to: from + series.bin, subject }));
      }
    });
  });
  return bars;
}

function barSeries(bars: Bar[]): object {
  return {
    type: 'custom',
    name: 'Tracked',
    itemStyle: { color: systemColor('S') },
    clip: true,
    progressive: 0,
    encode: { x: [0, 1], y: 2 },
    data: bars.map((b) => [b.from, b.to, b.row]),
    renderItem: (params: any, api: any) => {
      const bar = bars[params.dataIndex];
      const from = api.coord([bar.from, bar.row]);
      const to = api.coord([bar.to, bar.row]);
      const height = Math.max(2, api.size([0, 1])[1] * 0.5);
      return { type: 'rect', shape: { x: from[0], y: from[1] - height / 2, width: to[0] - from[0], height }, style: { fill: systemColor(bar.subject.of[0]), opacity: 0.75 } };
    },
    tooltip: {
      formatter: (p: { dataIndex: number }) => {
        const { subject, from, to } = bars[p.dataIndex];
        return tip(`${subject.of} tracked above the cut-off`, [['From', clock(from)], ['To', clock(to)], ['Length', span(to - from)]]);
      },
    },
  };
}

function eventTip({ time, event }: Happening): HTMLElement {
  const lines: [string, string][] = [['Time', clock(time)], ['Signals', event.signals ?? '-']];
  if (event.size_cycles !== null) lines.push(['Cycles', event.size_cycles.join(' ')]);
  if (event.elevation_deg !== null) lines.push(['Elevation', `${fixed(event.elevation_deg, 1)}\u00b0`]);
  return tip(`${event.satellite}: ${kindText(event.kind)}`, lines);
}

function draw(series: Series, happenings: Happenings, rows: Subject[], c: Colors, width: number): Drawing {
  const bars = barsOf(series, rows);
  const places = new Map(rows.map((s, row) => [s.of, row]));
  const looks = LOOKS.map((look) => ({
    look,
    events: happenings.satellites.filter(({ event }) => look.kinds.includes(event.kind) && places.has(event.satellite!)),
  })).filter(({ events }) => events.length > 0);
  const total = looks.reduce((sum, { events }) => sum + events.length, 0);
  const frame = timeFrame(series, c, width, {
    type: 'category',
    inverse: true,
    data: rows.map((s) => s.of),
    ...axisStyle(c),
    axisLabel: { color: c.soft, interval: 0, fontSize: onPaper() && rows.length > 50 ? 5 : 10 },
    splitLine: { show: false },
  });
  const hidden = looks.filter(({ look }) => !look.shown).map(({ look }) => [look.name, false]);
  return {
    points: bars.length + total,
    label: `Tracking of ${rows.length} satellites with ${total} events.`,
    note: 'Grey kinds in the legend can be switched on. The table below lists every event with its evidence.',
    option: {
      ...frame,
      legend: { ...(frame.legend as object), selected: Object.fromEntries(hidden) },
      series: [
        barSeries(bars),
        ...marks(happenings, c),
        ...looks.map(({ look, events }) => ({
          type: 'scatter',
          name: look.name,
          symbol: look.symbol,
          symbolSize: look.shown ? 11 : 7,
          z: 8,
          progressive: 0,
          data: events.map((e) => [e.time, places.get(e.event.satellite!)!]),
          itemStyle: look.symbol.startsWith('empty') ? { color: c.soft } : { color: look.shown ? c.bad : c.soft, borderColor: c.back, borderWidth: 1 },
          tooltip: { formatter: (p: { dataIndex: number }) => eventTip(events[p.dataIndex]) },
        })),
      ],
    },
  };
}

export function happenedFigure(series: Series, happenings: Happenings, selection: Selection): Figure {
  let letter = '*';
  const letters = [...new Set(series.satellites.map((s) => s.of[0]))];
  const chosen = (): Subject[] =>
    series.satellites.filter((s) => (selection.satellite !== '*' ? s.of === selection.satellite : letter === '*' || s.of[0] === letter));
  const control = select('System', [['*', 'All'], ...letters.map((l): [string, string] => [l, l])], letter, (value) => {
    letter = value;
    figure.refit();
  });
  const figure: Figure = new Figure({
    id: 'happened',
    title: 'Slips and interruptions over time',
    help: 'A bar where a satellite was tracked above the cut-off, and what the analysis found in its phases.',
    height: () => {
      const height = Math.max(chosen().length, 8) * ROW + 112;
      return onPaper() ? Math.min(height, MOST_ON_PAPER) : height;
    },
    draw: (c, width) => draw(series, happenings, chosen(), c, width),
    controls: [control],
    wide: true,
  });
  selection.onChange(() => figure.refit());
  return figure;
}

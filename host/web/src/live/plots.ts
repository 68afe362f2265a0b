// A station's last hour and day, by minute.
import { select, tip } from '../dom';
import { axisStyle, type Drawing, Figure, insideZoom, legendStyle, timeAxis } from '../figure';
import { clock, fixed } from '../format';
import { inOrder } from '../palette';
import { type Colors, systemColor } from '../theme';
import type { Minutes, SignalSeries } from './state';

const MINUTE_MS = 60_000;
const HOUR_MS = 60 * MINUTE_MS;
const DAY_MS = 24 * HOUR_MS;
const LEAST_MS = 10 * MINUTE_MS;
const DASHES = ['solid', 'dashed', 'dotted', [8, 3, 2, 3]];

/** What the plots of a station share: its minutes, and which of them are shown. */
export class Shown {
  minutes: Minutes | null = null;
  span: 'hour' | 'day' = 'hour';
  system = '*';

  /** From and to in milliseconds of GPS time; the span ends with the last whole minute and begins no earlier than the data, but for the first ten minutes. */
  range(): { min: number; max: number } {
    const begins = this.minutes?.begin_gps_ms ?? [];
    const max = begins.length > 0 ? begins[begins.length - 1] + MINUTE_MS : 0;
    const first = Math.min(begins[0] ?? max, max - LEAST_MS);
    return { min: Math.max(first, max - (this.span === 'hour' ? HOUR_MS : DAY_MS)), max };
  }

  /** Minutes of the span with their place in the columns. */
  points(column: (number | null)[], scale = 1): [number, number | null][] {
    const { min } = this.range();
    const points: [number, number | null][] = [];
    let last = 0;
    (this.minutes?.begin_gps_ms ?? []).forEach((begin, i) => {
      if (begin < min) return;
      // A line breaks where there is no minute at all.
      if (last > 0 && begin > last + MINUTE_MS) points.push([last + 1.5 * MINUTE_MS, null]);
      const value = column[i];
      points.push([begin + MINUTE_MS / 2, value === null || value === undefined ? null : value * scale]);
      last = begin;
    });
    return points;
  }

  systems(): string[] {
    return inOrder([...new Set((this.minutes?.signals ?? []).map((s) => s.system))]);
  }

  signals(): SignalSeries[] {
    const all = this.minutes?.signals ?? [];
    return this.systems().flatMap((letter) => all.filter((s) => s.system === letter && (this.system === '*' || this.system === letter)));
  }
}

function frame(shown: Shown, c: Colors, width: number, axes: object[], legend: boolean): Record<string, unknown> {
  return {
    useUTC: true,
    grid: { left: 50, right: axes.length > 1 ? 46 : 14, top: 28, bottom: legend ? 60 : 30 },
    legend: legend ? { ...legendStyle(c), type: 'scroll' } : undefined,
    xAxis: { ...timeAxis(c, width), ...shown.range(), splitNumber: width < 600 ? 3 : 6 },
    yAxis: axes,
    dataZoom: [insideZoom('xAxisIndex')],
    tooltip: {
      trigger: 'axis',
      formatter: (points: { seriesName: string; value: [number, number | null]; marker: string }[]) =>
        tip(
          points.length > 0 ? `${clock(points[0].value[0]).slice(0, 5)} GPS time` : '',
          points.filter((p) => p.value[1] !== null).map((p): [string, string] => [p.seriesName, fixed(p.value[1], 3).replace(/\.?0+$/, '')]),
        ),
    },
  };
}

function axis(c: Colors, name: string, extra: object = {}): object {
  return { type: 'value', name, scale: true, ...axisStyle(c), ...extra };
}

/** Whole numbers around the values, since a line of one value has no range of its own. */
const around = {
  min: ({ min }: { min: number }) => (Number.isFinite(min) ? Math.max(0, Math.floor(min) - 1) : 0),
  max: ({ max }: { max: number }) => (Number.isFinite(max) ? Math.ceil(max) + 1 : 1),
};

const line = (name: string, data: [number, number | null][], color: string, extra: object = {}): object => ({
  type: 'line',
  name,
  data,
  showSymbol: data.length < 5,
  symbolSize: 5,
  connectNulls: false,
  lineStyle: { color, width: 1.6 },
  itemStyle: { color },
  ...extra,
});

const bars = (name: string, data: [number, number | null][], color: string): object => ({
  type: 'bar',
  name,
  yAxisIndex: 1,
  data: data.filter((p) => (p[1] ?? 0) > 0),
  barMinWidth: 1.5,
  barMaxWidth: 10,
  itemStyle: { color, opacity: 0.75 },
});

/** Those that have a value. */
const counted = (data: [number, number | null][]) => data.filter((p) => p[1] !== null).length;

function completeness(shown: Shown, c: Colors, width: number): Drawing {
  const m = shown.minutes;
  const data = shown.points(m?.completeness_ratio ?? [], 100);
  const lost = shown.points((m?.epochs_expected ?? []).map((n, i) => n - m!.epochs_present[i]));
  return {
    points: counted(data),
    label: `Completeness by minute, ${counted(data)} minutes.`,
    option: {
      ...frame(shown, c, width, [axis(c, '%', { min: around.min, max: 100 }), axis(c, 'Epochs', { min: 0, minInterval: 1, splitLine: { show: false } })], true),
      series: [line('Completeness', data, c.accent), bars('Lost epochs', lost, c.bad)],
    },
  };
}

function satellites(shown: Shown, c: Colors, width: number): Drawing {
  const data = shown.points(shown.minutes?.satellites ?? []);
  const slips = shown.points(shown.minutes?.slip_events ?? []);
  return {
    points: counted(data),
    label: `Satellites and slips by minute, ${counted(data)} minutes.`,
    option: {
      ...frame(shown, c, width, [axis(c, 'Satellites', around), axis(c, 'Slips', { min: 0, minInterval: 1, splitLine: { show: false } })], true),
      series: [line('Satellites', data, c.accent), bars('Slips', slips, c.bad)],
    },
  };
}

/** A line per signal, in the colour of its system. */
function bySignal(shown: Shown, c: Colors, width: number, unit: string, what: string, get: (s: SignalSeries) => (number | null)[]): Drawing {
  let points = 0;
  const places = new Map<string, number>();
  const series = shown.signals().flatMap((s) => {
    const data = shown.points(get(s));
    if (counted(data) === 0) return [];
    points += counted(data);
    const place = places.get(s.system) ?? 0;
    places.set(s.system, place + 1);
    const color = systemColor(s.system);
    return [line(`${s.system} ${s.signal}`, data, color, { lineStyle: { color, width: 1.6, type: DASHES[place % DASHES.length] } })];
  });
  return {
    points,
    label: `${what} of ${series.length} signals by minute.`,
    note: series.length === 0 ? 'No values in this time.' : '',
    option: { ...frame(shown, c, width, [axis(c, unit)], true), series },
  };
}

export function stationFigures(shown: Shown): Figure[] {
  const height = (width: number) => (width < 500 ? 240 : 280);
  return [
    new Figure({ id: 'live-completeness', title: 'Completeness', help: 'Observed of expected observations above the cut-off, all signals; bars are epochs that did not come.', height, draw: (c, width) => completeness(shown, c, width) }),
    new Figure({ id: 'live-satellites', title: 'Satellites and slips', help: 'Mean number of satellites; bars are satellites with a slip or jump.', height, draw: (c, width) => satellites(shown, c, width) }),
    new Figure({ id: 'live-snr', title: 'SNR', help: 'Mean of each signal above the cut-off. A step of one band points to interference, of all to antenna or cable.', height, draw: (c, width) => bySignal(shown, c, width, 'dB-Hz', 'SNR', (s) => s.snr_dbhz) }),
    new Figure({ id: 'live-multipath', title: 'Multipath RMS', help: 'Of the code of each signal above the cut-off, about a moving mean of 630 s; a minute has a value from 50 observations on, five to ten minutes later.', height, draw: (c, width) => bySignal(shown, c, width, 'm', 'Multipath RMS', (s) => s.multipath_rms_m) }),
  ];
}

/** Hour or day, and the system whose signals are shown. */
export function plotControls(shown: Shown, change: () => void): HTMLElement[] {
  return [
    select('Show', [['hour', 'Last hour'], ['day', 'Last day']], shown.span, (value) => {
      shown.span = value === 'day' ? 'day' : 'hour';
      change();
    }),
    select('Signals of', [['*', 'All systems'], ...shown.systems().map((s): [string, string] => [s, s])], shown.system, (value) => {
      shown.system = value;
      change();
    }),
  ];
}

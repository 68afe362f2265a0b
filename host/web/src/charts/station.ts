// The station over time: satellites and DOP, receiver clock, position, ROTI of each satellite.
import { tip } from '../dom';
import { type Drawing, Figure, legendStyle } from '../figure';
import { fixed } from '../format';
import type { Happenings } from '../happenings';
import type { Selection } from '../selection';
import { minutesOf, type Series } from '../series';
import { type Colors, systemColor } from '../theme';
import { binText, lineData, marks, slipTicks, timeFrame, valueAxis } from './time';

interface Line {
  name: string;
  color: string;
  list: (number | null)[];
  scale: number;
  unit: string;
  digits: number;
  first?: number;
  axis?: number;
  dashed?: boolean;
}

/** Lines with breaks; their values under the pointer. */
function lineSeries(series: Series, lines: Line[]): object[] {
  return lines.map((line) => ({
    type: 'line',
    name: line.name,
    yAxisIndex: line.axis ?? 0,
    data: lineData(series, line.list, line.scale, line.first),
    symbol: 'circle',
    symbolSize: 3,
    showAllSymbol: true,
    connectNulls: false,
    lineStyle: { color: line.color, width: 2, type: line.dashed ? 'dashed' : 'solid' },
    itemStyle: { color: line.color },
    tooltip: {
      formatter: (p: { dataIndex: number; value: [number, number] }) =>
        tip(line.name, [
          ['Time', binText(series, (line.first ?? 0) + p.dataIndex)],
          ['Value', `${fixed(p.value[1], line.digits)} ${line.unit}`.trim()],
        ]),
    },
  }));
}

const pointsOf = (lines: Line[]): number => lines.reduce((sum, line) => sum + line.list.filter((v) => v !== null).length, 0);

function lineDrawing(series: Series, happenings: Happenings, lines: Line[], axis: object | object[], label: string, c: Colors, width: number, right?: number): Drawing {
  return {
    points: pointsOf(lines),
    label: `${label}, in bins of ${minutesOf(series)} minutes.`,
    note: pointsOf(lines) === 0 ? 'No data: this needs navigation.' : '',
    option: {
      ...timeFrame(series, c, width, axis, right),
      series: [...lineSeries(series, lines), ...slipTicks(series, c), ...marks(happenings, c)],
    },
  };
}

function satelliteLines(series: Series, selection: Selection, c: Colors): Line[] {
  const main = selection.mainSubjects();
  return [
    { name: 'All satellites', color: c.text, list: series.station.satellites, scale: 0.1, unit: '', digits: 1 },
    ...main.map((s): Line => ({ name: `${s.of} ${s.signal}`, color: systemColor(s.of), list: s.satellites ?? [], scale: 0.1, unit: 'satellites', digits: 1, first: s.first })),
    { name: 'PDOP', color: c.soft, list: series.station.pdop, scale: 0.01, unit: '', digits: 2, axis: 1, dashed: true },
  ];
}

export function satellitesFigure(series: Series, happenings: Happenings, selection: Selection): Figure {
  return new Figure({
    id: 'satellites-time',
    title: 'Satellites and PDOP',
    help: 'Mean number of satellites observed, all and with the main signal of each system; PDOP (dashed, right axis) of the position solutions, from 10\u00b0 up.',
    height: () => 340,
    draw: (c, width) =>
      lineDrawing(
        series,
        happenings,
        satelliteLines(series, selection, c),
        [valueAxis(c, 'Satellites', { min: 0, scale: false }), { ...valueAxis(c, 'PDOP', { min: 0, scale: false }), splitLine: { show: false } }],
        'Number of satellites and PDOP',
        c,
        width,
        44,
      ),
    wide: true,
  });
}

/** The unit in which the clock has a few digits. */
function clockUnit(list: (number | null)[]): { unit: string; scale: number; digits: number } {
  const most = Math.max(0, ...list.filter((v): v is number => v !== null).map(Math.abs));
  if (most >= 1e9) return { unit: 'ms', scale: 1e-9, digits: 6 };
  return most >= 1e6 ? { unit: '\u00b5s', scale: 1e-6, digits: 4 } : { unit: 'ns', scale: 1e-3, digits: 2 };
}

export function clockFigure(series: Series, happenings: Happenings): Figure {
  return new Figure({
    id: 'clock-time',
    title: 'Receiver clock',
    help: 'Receiver clock less GPS time, at the first position of each bin. A free clock drifts and is reset by whole milliseconds; a steered one stays within nanoseconds.',
    height: () => 340,
    draw: (c, width) => {
      const { unit, scale, digits } = clockUnit(series.station.clock_ps);
      const line: Line = { name: 'Clock', color: c.accent, list: series.station.clock_ps, scale, unit, digits };
      return lineDrawing(series, happenings, [line], valueAxis(c, unit), 'Receiver clock', c, width);
    },
  });
}

function axesOf(series: Series, c: Colors): Line[] {
  const { east_mm, north_mm, up_mm } = series.station;
  const line = (name: string, color: string, list: (number | null)[], dashed = false): Line => ({ name, color, list, scale: 0.001, unit: 'm', digits: 2, dashed });
  return [line('East', systemColor('G'), east_mm), line('North', systemColor('C'), north_mm), line('Up', c.soft, up_mm, true)];
}

export function positionFigure(series: Series, happenings: Happenings): Figure {
  return new Figure({
    id: 'position-time',
    title: 'Position over time',
    help: 'Means of the positions from codes, from the position of the header where it fits. Metres of slow change are orbits, ionosphere and troposphere; a step is a moved antenna.',
    height: () => 340,
    draw: (c, width) => lineDrawing(series, happenings, axesOf(series, c), valueAxis(c, 'm'), 'Position east, north and up', c, width),
    wide: true,
  });
}

/** East against north, as wide as high. */
function drawScatter(series: Series, c: Colors): Drawing {
  const { east_mm, north_mm } = series.station;
  const points = east_mm.flatMap((east, bin) => (east === null || north_mm[bin] === null ? [] : [{ bin, east: east / 1000, north: north_mm[bin]! / 1000 }]));
  const most = Math.max(1, ...points.map((p) => Math.max(Math.abs(p.east), Math.abs(p.north)))) * 1.08;
  const axis = (name: string, nameGap: number) => ({ ...valueAxis(c, name, { scale: false }), min: -most, max: most, nameLocation: 'middle', nameGap, axisLabel: { color: c.soft, formatter: (v: number) => fixed(v, most < 5 ? 1 : 0), showMinLabel: false, showMaxLabel: false } });
  return {
    points: points.length,
    label: `Position scatter east and north, ${points.length} points.`,
    note: points.length === 0 ? 'No data: this needs navigation.' : `A point per bin of ${minutesOf(series)} minutes.`,
    option: {
      grid: { left: 56, right: 14, top: 14, bottom: 46 },
      xAxis: axis('East (m)', 28),
      yAxis: axis('North (m)', 38),
      series: [
        { type: 'line', silent: true, symbol: 'none', z: 1, data: [[-most, 0], [most, 0]], lineStyle: { color: c.soft, width: 1 } },
        { type: 'line', silent: true, symbol: 'none', z: 1, data: [[0, -most], [0, most]], lineStyle: { color: c.soft, width: 1 } },
        {
          type: 'scatter',
          name: 'Position',
          symbolSize: 6,
          progressive: 0,
          itemStyle: { color: c.accent, opacity: 0.7 },
          data: points.map((p) => [p.east, p.north]),
          tooltip: {
            formatter: (p: { dataIndex: number }) => {
              const { bin, east, north } = points[p.dataIndex];
              return tip('Position', [['Time', binText(series, bin)], ['East', `${fixed(east, 2)} m`], ['North', `${fixed(north, 2)} m`]]);
            },
          },
        },
      ],
    },
  };
}

export function scatterFigure(series: Series): Figure {
  return new Figure({
    id: 'position-scatter',
    title: 'Position scatter',
    help: 'The same positions on the ground, from the position of the header where it fits.',
    height: () => 340,
    draw: (c) => drawScatter(series, c),
    zoom: false,
  });
}

/** TECU/min from which the ionosphere counts as disturbed. */
const DISTURBED = 0.5;

function drawRoti(series: Series, happenings: Happenings, selection: Selection, c: Colors, width: number): Drawing {
  const shown = series.satellites.filter((s) => (selection.satellite === '*' ? selection.holdsSystem(s.of[0]) : s.of === selection.satellite));
  const letters = [...new Set(shown.map((s) => s.of[0]))];
  const points = new Map(letters.map((l): [string, { time: number; bin: number; roti: number; of: string }[]] => [l, []]));
  let most = DISTURBED;
  for (const s of shown) {
    (s.roti ?? []).forEach((raw, k) => {
      if (raw === null) return;
      const bin = s.first + k;
      most = Math.max(most, raw / 1000);
      points.get(s.of[0])!.push({ bin, time: series.first + (bin + 0.5) * series.bin, roti: raw / 1000, of: s.of });
    });
  }
  const total = [...points.values()].reduce((sum, list) => sum + list.length, 0);
  const end = series.first + series.bins * series.bin;
  return {
    points: total,
    label: `ROTI over time, ${total} points.`,
    note: `One point per satellite and window of ${minutesOf(series)} minutes; the dashed line is ${DISTURBED} TECU/min.`,
    option: {
      ...timeFrame(series, c, width, valueAxis(c, 'TECU/min', { min: 0, max: Math.ceil(most * 11) / 10, scale: false })),
      legend: legendStyle(c),
      series: [
        ...letters.map((letter) => ({
          type: 'scatter',
          name: letter,
          symbolSize: 4,
          progressive: 0,
          itemStyle: { color: systemColor(letter), opacity: 0.65 },
          data: points.get(letter)!.map((p) => [p.time, p.roti]),
          tooltip: {
            formatter: (p: { dataIndex: number }) => {
              const { bin, roti, of } = points.get(letter)![p.dataIndex];
              return tip(of, [['Time', binText(series, bin)], ['ROTI', `${fixed(roti, 3)} TECU/min`]]);
            },
          },
        })),
        { type: 'line', silent: true, symbol: 'none', data: [[series.first, DISTURBED], [end, DISTURBED]], lineStyle: { color: c.bad, width: 1.5, type: 'dashed' } },
        ...slipTicks(series, c),
        ...marks(happenings, c),
      ],
    },
  };
}

export function rotiFigure(series: Series, happenings: Happenings, selection: Selection): Figure {
  const figure = new Figure({
    id: 'roti-time',
    title: 'ROTI',
    help: 'Rate of TEC index of each satellite: unrest of the ionosphere, which brings slips. Low satellites have more of it, and of phase noise.',
    height: () => 340,
    draw: (c, width) => drawRoti(series, happenings, selection, c, width),
    wide: true,
  });
  selection.onChange(() => figure.redraw());
  return figure;
}


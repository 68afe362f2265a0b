// What the plots over time share: axis, zoom, cells, and marks of what happened.
import { tip } from '../dom';
import { axisStyle, insideZoom, legendStyle, timeAxis } from '../figure';
import { clock, span } from '../format';
import { type Happenings, kindText } from '../happenings';
import type { Series } from '../series';
import type { Colors } from '../theme';

/** Grid, axes and zoom; the series and a tooltip are added. @param under pixels below the plot for legend and slider */
export function timeFrame(series: Series, c: Colors, width: number, axis: object | object[], right = 14): Record<string, unknown> {
  const end = series.first + series.bins * series.bin;
  return {
    useUTC: true,
    grid: { left: width < 600 ? 44 : 56, right, top: 28, bottom: 84 },
    legend: { ...legendStyle(c), type: 'scroll' },
    xAxis: { ...timeAxis(c, width), min: series.first, max: end },
    yAxis: axis,
    dataZoom: [
      insideZoom('xAxisIndex'),
      { type: 'slider', xAxisIndex: [0], bottom: 30, height: 18, showDataShadow: false, borderColor: c.line, textStyle: { color: c.soft }, filterMode: 'none', labelFormatter: (value: number) => clock(value) },
    ],
  };
}

export function valueAxis(c: Colors, name: string, extra: object = {}): Record<string, unknown> {
  return { type: 'value', scale: true, name, ...axisStyle(c), ...extra };
}

export interface Cell {
  bin: number;
  row: number;
  title: string;
  lines: [string, string][];
}

/** Rectangles a bin wide and a row high. Loosely typed, as the library's own types of custom series are. */
export function cellSeries(name: string, color: string, cells: Cell[], series: Series): object {
  return {
    type: 'custom',
    name,
    clip: true,
    progressive: 0,
    itemStyle: { color },
    encode: { x: 0, y: 1 },
    data: cells.map((cell) => [series.first + cell.bin * series.bin, cell.row]),
    renderItem: (_: unknown, api: any) => {
      const from = api.coord([api.value(0), api.value(1)]);
      const to = api.coord([api.value(0) + series.bin, api.value(1)]);
      const height = Math.max(2, api.size([0, 1])[1] * 0.86);
      return {
        type: 'rect',
        shape: { x: from[0], y: from[1] - height / 2, width: Math.max(to[0] - from[0], 1) + 0.4, height },
        style: { fill: color },
      };
    },
    tooltip: { formatter: (p: { dataIndex: number }) => tip(cells[p.dataIndex].title, cells[p.dataIndex].lines) },
  };
}

export function binText(series: Series, bin: number): string {
  const from = series.first + bin * series.bin;
  return `${clock(from).slice(0, 5)}\u2013${clock(from + series.bin).slice(0, 5)}`;
}

/** Gaps of the data as bands, events of the receiver as lines over the whole height. */
export function marks(happenings: Happenings, c: Colors): object[] {
  const { gaps, receiver } = happenings;
  const list: object[] = [];
  if (gaps.length > 0) {
    list.push({
      type: 'custom',
      name: 'Data gap',
      clip: true,
      z: 6,
      itemStyle: { color: c.bad },
      encode: { x: [0, 1] },
      data: gaps.map((g) => [g.from, g.to]),
      renderItem: (params: any, api: any) => {
        const left = api.coord([api.value(0), 0])[0];
        const right = api.coord([api.value(1), 0])[0];
        const { y, height } = params.coordSys;
        return { type: 'rect', shape: { x: left, y, width: Math.max(right - left, 1.5), height }, style: { fill: c.bad, opacity: 0.3 } };
      },
      tooltip: {
        formatter: (p: { dataIndex: number }) => {
          const gap = gaps[p.dataIndex];
          return tip('Data gap', [['From', clock(gap.from)], ['To', clock(gap.to)], ['Length', span(gap.to - gap.from)], ['Missing epochs', String(gap.missing)]]);
        },
      },
    });
  }
  if (receiver.length > 0) {
    list.push({
      type: 'custom',
      name: 'Receiver event',
      clip: true,
      z: 7,
      itemStyle: { color: c.accent },
      encode: { x: 0 },
      data: receiver.map((h) => [h.time]),
      renderItem: (params: any, api: any) => {
        const x = api.coord([api.value(0), 0])[0];
        const { y, height } = params.coordSys;
        return { type: 'rect', shape: { x: x - 0.75, y, width: 1.5, height }, style: { fill: c.accent, opacity: receiver.length > 60 ? 0.35 : 0.8 } };
      },
      tooltip: {
        formatter: (p: { dataIndex: number }) => {
          const { time, event } = receiver[p.dataIndex];
          const why: [string, string][] = event.evidence === null ? [] : [['Evidence', event.evidence]];
          return tip(`Receiver: ${kindText(event.kind)}`, [['Time', clock(time)], ...why]);
        },
      },
    });
  }
  return list;
}

/** Bins with slips of any satellite as ticks along the bottom. */
export function slipTicks(series: Series, c: Colors): object[] {
  const bins = series.station.slips.flatMap((n, bin) => (n !== null && n > 0 ? [{ bin, n }] : []));
  if (bins.length === 0) return [];
  return [
    {
      type: 'custom',
      name: 'Slips',
      clip: true,
      z: 6,
      itemStyle: { color: c.bad },
      encode: { x: 0 },
      data: bins.map(({ bin }) => [series.first + (bin + 0.5) * series.bin]),
      renderItem: (params: any, api: any) => {
        const x = api.coord([api.value(0), 0])[0];
        const bottom = params.coordSys.y + params.coordSys.height;
        return { type: 'polygon', shape: { points: [[x - 4, bottom], [x + 4, bottom], [x, bottom - 9]] }, style: { fill: c.bad } };
      },
      tooltip: {
        formatter: (p: { dataIndex: number }) => {
          const { bin, n } = bins[p.dataIndex];
          return tip(`${n} ${n === 1 ? 'slip' : 'slips'}`, [['Time', binText(series, bin)]]);
        },
      },
    },
  ];
}

/** Points of a list that begins at a bin, at the middle of each bin; breaks where there is nothing. */
export function lineData(series: Series, list: (number | null)[], scale: number, first = 0): [number, number | null][] {
  return list.map((value, k) => [series.first + (first + k + 0.5) * series.bin, value === null ? null : value * scale]);
}

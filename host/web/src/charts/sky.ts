// The sky as the antenna sees it: mean SNR or multipath of all satellites by cell, or tracks by system; of one
// satellite its points.
import type { Detail } from '../detail';
import { select, tip } from '../dom';
import { type Drawing, Figure, insideZoom, legendStyle } from '../figure';
import { clock, fixed, whole } from '../format';
import { inOrder, SCALE } from '../palette';
import type { Selection } from '../selection';
import { type Colors, systemColor } from '../theme';
import { Points } from './points';

type By = 'snr' | 'mp' | 'system';

const SNR_STEPS = [25, 30, 35, 40, 45, 50];
const MP_STEPS = [0.1, 0.2, 0.3, 0.5, 0.75, 1];
const UNITS = { snr: 'dB-Hz', mp: 'm' };
/** Side of a cell in degrees of zenith distance. */
const CELL = 4;

function classNames(by: 'snr' | 'mp'): string[] {
  const steps = by === 'snr' ? SNR_STEPS : MP_STEPS;
  const names = [`< ${steps[0]}`];
  for (let i = 1; i < steps.length; ++i) names.push(`${steps[i - 1]}\u2013${steps[i]}`);
  names.push(`\u2265 ${steps[steps.length - 1]}`);
  return names.map((name) => `${name} ${UNITS[by]}`);
}

function circle(radius: number): [number, number][] {
  const points: [number, number][] = [];
  for (let a = 0; a <= 360; a += 3) {
    const angle = (a * Math.PI) / 180;
    points.push([radius * Math.sin(angle), radius * Math.cos(angle)]);
  }
  return points;
}

/** Horizon, cut-off, rings of equal elevation and the axes, over everything. */
function grid(c: Colors, cutoff: number): object[] {
  const line = (data: [number, number][], color: string, width: number, type: string) => ({
    type: 'line',
    data,
    silent: true,
    symbol: 'none',
    z: 8,
    lineStyle: { color, width, type },
    tooltip: { show: false },
  });
  const label = (x: number, y: number, text: string, strong: boolean) => ({
    value: [x, y],
    label: { show: true, formatter: text, color: c.text, fontWeight: strong ? 'bold' : 'normal', textBorderColor: c.back, textBorderWidth: 3 },
  });
  return [
    line(circle(90), c.text, 2, 'solid'),
    ...[30, 60].map((elevation) => line(circle(90 - elevation), c.soft, 1, 'solid')),
    line(circle(90 - cutoff), c.back, 4, 'solid'),
    line(circle(90 - cutoff), c.bad, 2, 'dashed'),
    line([[-90, 0], [90, 0]], c.soft, 0.7, 'solid'),
    line([[0, -90], [0, 90]], c.soft, 0.7, 'solid'),
    {
      type: 'scatter',
      silent: true,
      symbolSize: 0.01,
      z: 9,
      tooltip: { show: false },
      data: [
        label(0, 96, 'N', true),
        label(96, 0, 'E', true),
        label(0, -96, 'S', true),
        label(-96, 0, 'W', true),
        label(5, 60, '30\u00b0', false),
        label(5, 30, '60\u00b0', false),
        label(0, -(90 - cutoff), `cut-off ${fixed(cutoff, 0)}\u00b0`, false),
      ],
    },
  ];
}

function classOf(value: number, steps: number[]): number {
  let k = 0;
  while (k < steps.length && value >= steps[k]) ++k;
  return k;
}

type Visit = (x: number, y: number, row: number) => void;

/** Every point above the horizon, in degrees east and north of the zenith. */
function eachPoint(elevation: Float32Array, azimuth: Float32Array, rows: number, visit: Visit): void {
  for (let i = 0; i < rows; ++i) {
    if (!(elevation[i] >= 0)) continue;
    const angle = (azimuth[i] * Math.PI) / 180;
    const radius = 90 - elevation[i];
    visit(radius * Math.sin(angle), radius * Math.cos(angle), i);
  }
}

/** Points in series by class or system, with what the pointer says. */
function pointSeries(selection: Selection, by: By): { names: string[]; colors: string[]; points: Points[] } {
  const letters = inOrder([...new Set(selection.shown().map(({ satellite }) => satellite.letter))]);
  const names = by === 'system' ? letters : classNames(by);
  const colors = by === 'system' ? letters.map(systemColor) : SCALE;
  const points = names.map(() => new Points());
  for (const { satellite, signal } of selection.shown()) {
    points.forEach((p) => p.source(satellite, signal));
    const values = by === 'mp' ? signal.mp : signal.snr;
    if (values === null) continue;
    eachPoint(satellite.elevation, satellite.azimuth, satellite.rows, (x, y, row) => {
      const value = values[row];
      if (Number.isNaN(value)) return;
      const place = by === 'system' ? letters.indexOf(satellite.letter) : classOf(Math.abs(value), by === 'snr' ? SNR_STEPS : MP_STEPS);
      points[place].add(x, y, row);
    });
  }
  return { names, colors, points };
}

interface Cell {
  x: number;
  y: number;
  sum: number;
  count: number;
  satellites: Set<string>;
}

/** Mean SNR, or sums of squared residuals, of everything in a square of the plot. */
function cellsOf(selection: Selection, by: 'snr' | 'mp'): Cell[] {
  const cells = new Map<number, Cell>();
  for (const { satellite, signal } of selection.shown()) {
    const values = signal[by];
    if (values === null) continue;
    eachPoint(satellite.elevation, satellite.azimuth, satellite.rows, (x, y, row) => {
      const value = values[row];
      if (Number.isNaN(value)) return;
      const column = Math.floor((x + 90) / CELL);
      const line = Math.floor((y + 90) / CELL);
      const key = column * 1000 + line;
      let cell = cells.get(key);
      if (cell === undefined) cells.set(key, (cell = { x: (column + 0.5) * CELL - 90, y: (line + 0.5) * CELL - 90, sum: 0, count: 0, satellites: new Set() }));
      cell.sum += by === 'snr' ? value : value * value;
      ++cell.count;
      cell.satellites.add(satellite.name);
    });
  }
  return [...cells.values()];
}

function cellSeries(selection: Selection, by: 'snr' | 'mp'): { series: object[]; points: number } {
  const steps = by === 'snr' ? SNR_STEPS : MP_STEPS;
  const classes: Cell[][] = SCALE.map(() => []);
  const valueOf = (cell: Cell) => (by === 'snr' ? cell.sum / cell.count : Math.sqrt(cell.sum / cell.count));
  const all = cellsOf(selection, by);
  for (const cell of all) classes[classOf(valueOf(cell), steps)].push(cell);
  const series = classes.map((cells, k) => ({
    type: 'custom',
    name: classNames(by)[k],
    z: 2,
    progressive: 0,
    clip: true,
    itemStyle: { color: SCALE[k] },
    encode: { x: 0, y: 1 },
    data: cells.map((cell) => [cell.x, cell.y]),
    renderItem: (_: unknown, api: any) => {
      const [x, y] = api.coord([api.value(0), api.value(1)]);
      const [width, height] = api.size([CELL, CELL]);
      return { type: 'rect', shape: { x: x - width / 2, y: y - height / 2, width: width + 0.4, height: height + 0.4 }, style: { fill: SCALE[k] } };
    },
    tooltip: {
      formatter: (p: { dataIndex: number }) => {
        const cell = cells[p.dataIndex];
        const elevation = Math.max(0, 90 - Math.hypot(cell.x, cell.y));
        const azimuth = ((Math.atan2(cell.x, cell.y) * 180) / Math.PI + 360) % 360;
        return tip(`Azimuth ${fixed(azimuth, 0)}\u00b0, elevation ${fixed(elevation, 0)}\u00b0`, [
          [by === 'snr' ? 'Mean SNR' : 'Multipath RMS', `${fixed(valueOf(cell), by === 'snr' ? 1 : 3)} ${UNITS[by]}`],
          ['Values', whole(cell.count)],
          ['Satellites', [...cell.satellites].slice(0, 6).join(' ') + (cell.satellites.size > 6 ? ' \u2026' : '')],
        ]);
      },
    },
  }));
  return { series, points: all.length };
}

function pointDrawing(selection: Selection, by: By): { series: object[]; points: number } {
  const { names, colors, points } = pointSeries(selection, by);
  const total = points.reduce((sum, p) => sum + p.count, 0);
  const size = total < 3000 ? 5 : 2.5;
  const series = points.map((p, k) => ({
    ...p.series(names[k], colors[k], size, { z: 2 }),
    tooltip: {
      formatter: (at: { dataIndex: number }) => {
        const { satellite, signal, row } = p.at(at.dataIndex);
        return tip(`${satellite.name} ${signal!.signal}`, [
          ['Time', clock(satellite.time[row])],
          ['Elevation', `${fixed(satellite.elevation[row], 1)}\u00b0`],
          ['Azimuth', `${fixed(satellite.azimuth[row], 1)}\u00b0`],
          ['SNR', `${fixed(signal!.snr[row], 2)} dB-Hz`],
          ['Multipath residual', `${fixed(signal!.mp?.[row], 3)} m`],
        ]);
      },
    },
  }));
  return { series, points: total };
}

const WHAT: Record<By, string> = { snr: 'SNR', mp: 'multipath', system: 'satellite system' };

function draw(detail: Detail, selection: Selection, by: By, c: Colors, width: number): Drawing {
  const drawn = by === 'system' || selection.satellite !== '*' ? pointDrawing(selection, by) : cellSeries(selection, by);
  const axis = { type: 'value', min: -100, max: 100, show: false };
  const side = Math.min(width, 560) - 60;
  return {
    points: drawn.points,
    label: `Sky plot by ${WHAT[by]}, ${drawn.points} ${by === 'system' || selection.satellite !== '*' ? 'points' : 'cells'}: ${selection.text()}.`,
    note: thinning(detail),
    option: {
      grid: { left: (width - side) / 2, top: 8, width: side, height: side },
      xAxis: axis,
      yAxis: axis,
      dataZoom: [insideZoom('xAxisIndex'), insideZoom('yAxisIndex')],
      legend: { ...legendStyle(c), icon: 'roundRect' },
      series: [...drawn.series, ...grid(c, detail.cutoff)],
    },
  };
}

/** Says when there is one point for several epochs. */
export function thinning(detail: Detail): string {
  if (detail.stride === 1) return 'Every epoch is shown.';
  return `One epoch in ${detail.stride} is shown, to keep this file small; lines, arcs and tables use all of them.`;
}

export function skyFigure(detail: Detail, selection: Selection): Figure {
  let by: By = 'snr';
  const control = select('Show', [['snr', 'Mean SNR'], ['mp', 'Multipath RMS'], ['system', 'Tracks by system']], by, (value) => {
    by = value as By;
    figure.redraw();
  });
  const figure: Figure = new Figure({
    id: 'sky',
    title: 'Sky plot',
    help: `All satellites by cells of ${CELL}\u00b0, one satellite by epochs. North is up, the zenith in the middle; the outer ring is the horizon, the dashed one the elevation cut-off.`,
    height: (width) => Math.min(width, 560) - 60 + 76,
    draw: (c, width) => draw(detail, selection, by, c, width),
    controls: [control],
  });
  selection.onChange(() => figure.redraw());
  return figure;
}

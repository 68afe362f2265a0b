// Where the satellites stood, coloured by SNR or by the size of the multipath residual.
import type { Detail } from '../detail';
import { select, tip } from '../dom';
import { type Drawing, Figure, insideZoom } from '../figure';
import { clock, fixed } from '../format';
import type { Selection } from '../selection';
import { type Colors, SCALE } from '../theme';
import { Points } from './points';

type By = 'snr' | 'mp';

const SNR_STEPS = [25, 30, 35, 40, 45, 50];
const MP_STEPS = [0.1, 0.2, 0.3, 0.5, 0.75, 1];
const UNITS: Record<By, string> = { snr: 'dB-Hz', mp: 'm' };

function classNames(by: By): string[] {
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

/** Rings of equal elevation and the axes, as silent lines. */
function grid(c: Colors, cutoff: number): object[] {
  const line = (data: [number, number][], dashed: boolean) => ({
    type: 'line',
    data,
    silent: true,
    symbol: 'none',
    z: 1,
    lineStyle: { color: dashed ? c.bad : c.line, width: 1, type: dashed ? 'dashed' : 'solid' },
    tooltip: { show: false },
  });
  const rings = [0, 30, 60].map((elevation) => line(circle(90 - elevation), false));
  const label = (x: number, y: number, text: string, strong: boolean) => ({
    value: [x, y],
    label: { show: true, formatter: text, color: strong ? c.text : c.soft, fontWeight: strong ? 'bold' : 'normal' },
  });
  return [
    ...rings,
    line(circle(90 - cutoff), true),
    line([[-90, 0], [90, 0]], false),
    line([[0, -90], [0, 90]], false),
    {
      type: 'scatter',
      silent: true,
      symbolSize: 0.01,
      z: 4,
      tooltip: { show: false },
      data: [
        label(0, 96, 'N', true),
        label(96, 0, 'E', true),
        label(0, -96, 'S', true),
        label(-96, 0, 'W', true),
        label(4, 63, '30\u00b0', false),
        label(4, 33, '60\u00b0', false),
      ],
    },
  ];
}

function classOf(value: number, steps: number[]): number {
  let k = 0;
  while (k < steps.length && value >= steps[k]) ++k;
  return k;
}

function draw(detail: Detail, selection: Selection, by: By, c: Colors, width: number): Drawing {
  const steps = by === 'snr' ? SNR_STEPS : MP_STEPS;
  const classes = SCALE.map(() => new Points());
  for (const { satellite, signal } of selection.shown()) {
    classes.forEach((points) => points.source(satellite, signal));
    const values = by === 'snr' ? signal.snr : signal.mp;
    if (values === null) continue;
    for (let i = 0; i < satellite.rows; ++i) {
      const elevation = satellite.elevation[i];
      if (Number.isNaN(values[i]) || !(elevation >= 0)) continue;
      const angle = (satellite.azimuth[i] * Math.PI) / 180;
      const radius = 90 - elevation;
      const place = classOf(by === 'snr' ? values[i] : Math.abs(values[i]), steps);
      classes[place].add(radius * Math.sin(angle), radius * Math.cos(angle), i);
    }
  }
  const names = classNames(by);
  const axis = { type: 'value', min: -100, max: 100, show: false };
  const total = classes.reduce((sum, points) => sum + points.count, 0);
  const side = Math.min(width, 560) - 60;
  const size = total < 3000 ? 5 : 3.5;
  const series = classes.map((points, k) => points.series(names[k], SCALE[k], size, { z: 2 }));
  return {
    points: total,
    label: `Sky plot of ${total} points, coloured by ${by === 'snr' ? 'SNR' : 'multipath residual'}: ${selection.text()}.`,
    note: thinning(detail),
    option: {
      grid: { left: (width - side) / 2, top: 8, width: side, height: side },
      xAxis: axis,
      yAxis: axis,
      dataZoom: [insideZoom('xAxisIndex'), insideZoom('yAxisIndex')],
      legend: {
        bottom: 0,
        data: names.map((name) => ({ name, icon: 'roundRect' })),
        itemWidth: 12,
        itemGap: 8,
        textStyle: { color: c.soft },
      },
      series: [...series, ...grid(c, detail.cutoff)],
      tooltip: {
        formatter: (p: { seriesIndex: number; dataIndex: number }) => {
          const { satellite, signal, row } = classes[p.seriesIndex].at(p.dataIndex);
          return tip(`${satellite.name} ${signal!.signal}`, [
            ['Time', clock(satellite.time[row])],
            ['Elevation', `${fixed(satellite.elevation[row], 1)}\u00b0`],
            ['Azimuth', `${fixed(satellite.azimuth[row], 1)}\u00b0`],
            ['SNR', `${fixed(signal!.snr[row], 2)} dB-Hz`],
            ['Multipath residual', `${fixed(signal!.mp?.[row], 3)} m`],
          ]);
        },
      },
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
  const control = select('Colour', [['snr', 'SNR'], ['mp', 'Multipath residual']], by, (value) => {
    by = value as By;
    figure.redraw();
  });
  const figure: Figure = new Figure({
    id: 'sky',
    title: 'Sky plot',
    help: 'North is up, the zenith in the middle; the dashed ring is the elevation cut-off.',
    height: (width) => Math.min(width, 560) - 60 + 76,
    draw: (c, width) => draw(detail, selection, by, c, width),
    controls: [control],
  });
  selection.onChange(() => figure.redraw());
  return figure;
}

// How fast the geometry-free phase changed: the ionosphere, and slips as spikes.
import { type Detail, HELD } from '../detail';
import { tip } from '../dom';
import { axisStyle, type Drawing, Figure, insideZoom, legendStyle, timeAxis } from '../figure';
import { clock, fixed } from '../format';
import { inOrder } from '../palette';
import type { Selection } from '../selection';
import { type Colors, systemColor } from '../theme';
import { Points } from './points';
import { thinning } from './sky';

/** Share of the points that the starting range shows. */
const SHARE = 0.998;

function draw(detail: Detail, selection: Selection, c: Colors, width: number): Drawing {
  const systems = new Map<string, Points>();
  const sizes: number[] = [];
  let held = 0;
  for (const satellite of detail.satellites) {
    if (!selection.holds(satellite) || satellite.rate === null) continue;
    if (selection.signal !== '*' && selection.signal[0] !== satellite.letter) continue;
    let into = systems.get(satellite.letter);
    if (into === undefined) systems.set(satellite.letter, (into = new Points()));
    into.source(satellite, null);
    for (let i = 0; i < satellite.rows; ++i) {
      const rate = satellite.rate[i];
      if (Number.isNaN(rate) || !(satellite.elevation[i] >= detail.cutoff)) continue;
      into.add(satellite.time[i], rate, i);
      sizes.push(Math.abs(rate));
      if (Math.abs(rate) >= HELD / 1000) ++held;
    }
  }
  sizes.sort((a, b) => a - b);
  const most = sizes.length === 0 ? 1 : sizes[sizes.length - 1] * 1.02 || 1;
  const start = sizes.length === 0 ? 1 : Math.max(sizes[Math.floor(SHARE * (sizes.length - 1))] * 1.3, 0.02);
  const beyond = sizes.filter((size) => size > start).length;
  const letters = inOrder([...systems.keys()]);
  const range = start < most ? { startValue: -start, endValue: start } : {};
  const notes = [`${thinning(detail)} ${beyond} points lie beyond the range shown at first; \u2212 zooms out to them.`];
  if (held > 0) notes.push(`${held} values beyond \u00b1${fixed(HELD / 1000, 1)} m/min are drawn there.`);
  return {
    points: sizes.length,
    label: `Change of the geometry-free phase over time, ${sizes.length} points.`,
    note: notes.join(' '),
    option: {
      grid: { left: 58, right: 14, top: 26, bottom: 84 },
      legend: legendStyle(c),
      useUTC: true,
      xAxis: timeAxis(c, width),
      yAxis: { type: 'value', min: -most, max: most, name: 'm/min', ...axisStyle(c), axisLabel: { color: c.soft, formatter: (v: number) => fixed(v, 2) } },
      dataZoom: [
        insideZoom('xAxisIndex'),
        insideZoom('yAxisIndex', range),
        { type: 'slider', xAxisIndex: [0], bottom: 30, height: 20, showDataShadow: false, borderColor: c.line, textStyle: { color: c.soft }, filterMode: 'none', labelFormatter: (value: number) => clock(value) },
      ],
      series: letters.map((letter) =>
        systems.get(letter)!.series(letter, systemColor(letter), 2.5, { itemStyle: { color: systemColor(letter), opacity: 0.5 } }),
      ),
      tooltip: {
        formatter: (p: { seriesIndex: number; dataIndex: number }) => {
          const { satellite, row } = systems.get(letters[p.seriesIndex])!.at(p.dataIndex);
          return tip(`${satellite.name} ${satellite.ratePair!.join(' \u2212 ')}`, [
            ['Time', clock(satellite.time[row])],
            ['Rate', `${fixed(satellite.rate![row], 3)} m/min`],
            ['Elevation', `${fixed(satellite.elevation[row], 1)}\u00b0`],
          ]);
        },
      },
    },
  };
}

export function rateFigure(detail: Detail, selection: Selection): Figure {
  const figure = new Figure({
    id: 'rate',
    title: 'Ionospheric rate',
    help: 'Change of the geometry-free phase per minute, of the first signal and its partner. A quiet ionosphere stays within centimetres; a slip is a single spike, scintillation a cloud.',
    height: () => 400,
    draw: (c, width) => draw(detail, selection, c, width),
    wide: true,
  });
  selection.onChange(() => figure.redraw());
  return figure;
}

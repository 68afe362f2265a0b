// SNR and multipath residuals against elevation, with the mean and the RMS of every epoch by 5 degrees.
import type { Bins, Detail } from '../detail';
import { tip } from '../dom';
import { axisStyle, type Drawing, Figure, insideZoom, legendStyle } from '../figure';
import { clock, fixed, whole } from '../format';
import { inOrder } from '../palette';
import type { Selection } from '../selection';
import { type Colors, systemColor } from '../theme';
import { Points } from './points';
import { thinning } from './sky';

type Kind = 'snr' | 'mp';
const BIN = 5;

interface BinLine {
  bins: Bins;
  values: { middle: number; value: number; count: number }[];
}

function binLines(selection: Selection, kind: Kind): BinLine[] {
  return selection.bins().map((bins) => ({
    bins,
    values: bins[kind]
      .map(({ count, sum }, k) => ({
        middle: (k + 0.5) * BIN,
        value: kind === 'snr' ? sum / count : Math.sqrt(sum / count),
        count,
      }))
      .filter(({ count }) => count > 0),
  }));
}

/** Residuals shown at first: four times the largest RMS, lest a few points flatten the lines. */
function shownRange(lines: BinLine[]): { startValue?: number; endValue?: number } {
  const most = Math.max(0, ...lines.flatMap(({ values }) => values.map((v) => v.value)));
  const end = Math.ceil(4 * most * 2) / 2;
  return most > 0 ? { startValue: -end, endValue: end } : {};
}

function points(selection: Selection, kind: Kind): Map<string, Points> {
  const systems = new Map<string, Points>();
  for (const { satellite, signal } of selection.shown()) {
    const values = signal[kind];
    if (values === null) continue;
    let into = systems.get(satellite.letter);
    if (into === undefined) systems.set(satellite.letter, (into = new Points()));
    into.source(satellite, signal);
    for (let i = 0; i < satellite.rows; ++i) {
      if (!Number.isNaN(values[i])) into.add(satellite.elevation[i], values[i], i);
    }
  }
  return systems;
}

function draw(detail: Detail, selection: Selection, kind: Kind, c: Colors): Drawing {
  const systems = points(selection, kind);
  const lines = binLines(selection, kind);
  const letters = inOrder([...systems.keys()]);
  const total = [...systems.values()].reduce((sum, p) => sum + p.count, 0);
  const unit = kind === 'snr' ? 'dB-Hz' : 'm';
  const what = kind === 'snr' ? 'Mean SNR' : 'RMS';
  // Points and line of a signal share a name, so that the legend switches both.
  const names = new Map(selection.shown().map(({ signal, satellite }) => [satellite.letter, `${satellite.letter} ${signal.signal}`]));
  const series: object[] = letters.map((letter) =>
    systems.get(letter)!.series(names.get(letter)!, systemColor(letter), 2.5, { itemStyle: { color: systemColor(letter), opacity: 0.22 } }),
  );
  for (const { bins, values } of lines) {
    series.push({
      type: 'line',
      name: `${bins.letter} ${bins.signal}`,
      data: values.map((v) => [v.middle, v.value]),
      symbol: 'circle',
      symbolSize: 9,
      z: 6,
      lineStyle: { color: systemColor(bins.letter), width: 3 },
      itemStyle: { color: systemColor(bins.letter), borderColor: c.text, borderWidth: 1.5 },
    });
  }
  // Under each line a wider one in the colour of the card, which sets it off from the points.
  for (const { bins, values } of lines) {
    series.push({
      type: 'line',
      name: `${bins.letter} ${bins.signal}`,
      data: values.map((v) => [v.middle, v.value]),
      symbol: 'none',
      silent: true,
      z: 5,
      lineStyle: { color: c.back, width: 8 },
    });
  }
  const range = kind === 'mp' ? shownRange(lines) : {};
  return {
    points: total,
    label: `${kind === 'snr' ? 'SNR' : 'Multipath residual'} against elevation, ${total} points: ${selection.text()}.`,
    note: `${selection.text()}. ${thinning(detail)}${'startValue' in range ? ' Points beyond the range shown at first appear when zooming out.' : ''}`,
    option: {
      grid: { left: 52, right: 14, top: 26, bottom: 70 },
      legend: legendStyle(c),
      xAxis: { type: 'value', min: 0, max: 90, interval: 15, name: 'Elevation (\u00b0)', nameLocation: 'middle', nameGap: 26, ...axisStyle(c) },
      yAxis: { type: 'value', scale: true, name: unit, ...axisStyle(c) },
      dataZoom: [insideZoom('xAxisIndex'), insideZoom('yAxisIndex', range)],
      series,
      tooltip: {
        formatter: (p: { seriesIndex: number; dataIndex: number }) => {
          if (p.seriesIndex >= letters.length) {
            const { bins, values } = lines[p.seriesIndex - letters.length];
            const v = values[p.dataIndex];
            return tip(`${bins.letter} ${bins.signal}, ${v.middle - BIN / 2}\u2013${v.middle + BIN / 2}\u00b0`, [
              [what, `${fixed(v.value, kind === 'snr' ? 2 : 3)} ${unit}`],
              ['Values', whole(v.count)],
            ]);
          }
          const { satellite, signal, row } = systems.get(letters[p.seriesIndex])!.at(p.dataIndex);
          return tip(`${satellite.name} ${signal!.signal}`, [
            ['Time', clock(satellite.time[row])],
            ['Elevation', `${fixed(satellite.elevation[row], 1)}\u00b0`],
            ['SNR', `${fixed(signal!.snr[row], 2)} dB-Hz`],
            ['Multipath residual', `${fixed(signal!.mp?.[row], 3)} m`],
          ]);
        },
      },
    },
  };
}

function figureOf(detail: Detail, selection: Selection, kind: Kind): Figure {
  const figure = new Figure({
    id: kind === 'snr' ? 'snr' : 'multipath',
    title: kind === 'snr' ? 'SNR against elevation' : 'Multipath residual against elevation',
    help:
      kind === 'snr'
        ? 'One point per epoch; the line is the mean by 5\u00b0. A healthy antenna gives a smooth rise; a fringe or a step points to an obstacle, a cable or interference.'
        : 'Values above the cut-off: those that enter the RMS. The line is the RMS by 5\u00b0; what stays large at high elevation is no reflection from the ground.',
    wide: kind === 'mp',
    height: (width) => (width < 500 ? 340 : 520),
    draw: (c) => draw(detail, selection, kind, c),
  });
  selection.onChange(() => figure.redraw());
  return figure;
}

export function snrFigure(detail: Detail, selection: Selection): Figure {
  return figureOf(detail, selection, 'snr');
}

export function multipathFigure(detail: Detail, selection: Selection): Figure {
  return figureOf(detail, selection, 'mp');
}

// Completeness and multipath of every signal and satellite, as the report gives them.
import { select, tip } from '../dom';
import { axisStyle, type Drawing, Figure, insideZoom } from '../figure';
import { fixed, percent, whole } from '../format';
import type { Report } from '../report';
import { type Colors, systemColor } from '../theme';

interface Bar {
  name: string;
  letter: string;
  value: number;
  lines: [string, string][];
}

function draw(bars: Bar[], what: string, unit: string, c: Colors, width: number): Drawing {
  const crowded = bars.length * 34 > width;
  const lowest = Math.min(...bars.map((b) => b.value));
  // Near-complete signals would all look alike on an axis from zero.
  const min = unit === '%' ? (lowest > 90 ? 90 : lowest > 50 ? 50 : 0) : 0;
  return {
    points: bars.length,
    label: `${what}, ${bars.length} bars. The tables below hold the same figures.`,
    note: min > 0 ? `The axis starts at ${min} %.` : '',
    option: {
      grid: { left: 48, right: 10, top: 26, bottom: crowded ? 54 : 36 },
      xAxis: { type: 'category', data: bars.map((b) => b.name), ...axisStyle(c), axisLabel: { color: c.soft, rotate: crowded ? 90 : 0, fontSize: crowded && bars.length > 40 ? 9 : 11, interval: bars.length > 60 ? 'auto' : 0 } },
      yAxis: { type: 'value', name: unit, min, max: unit === '%' ? 100 : undefined, ...axisStyle(c) },
      dataZoom: [insideZoom('xAxisIndex')],
      series: [
        {
          type: 'bar',
          data: bars.map((b) => ({ value: b.value, itemStyle: { color: systemColor(b.letter) } })),
          barMaxWidth: 28,
          label: { show: !crowded, position: 'top', color: c.soft, fontSize: 10, formatter: (p: { value: number }) => fixed(p.value, unit === '%' ? 1 : 2) },
        },
      ],
      tooltip: { formatter: (p: { dataIndex: number }) => tip(bars[p.dataIndex].name, bars[p.dataIndex].lines) },
    },
  };
}

function signalCompleteness(report: Report): Bar[] {
  return report.analysis.signals
    .filter((s) => s.cutoff_completeness_ratio !== null)
    .map((s) => ({
      name: `${s.letter} ${s.signal}`,
      letter: s.letter,
      value: 100 * s.cutoff_completeness_ratio!,
      lines: [
        ['Completeness', percent(s.cutoff_completeness_ratio)],
        ['Observed', whole(s.cutoff_observed_epochs)],
        ['Expected', whole(s.cutoff_expected_epochs)],
      ],
    }));
}

function signalMultipath(report: Report): Bar[] {
  return report.analysis.signals
    .filter((s) => s.multipath_moving_rms_m !== null)
    .map((s) => ({
      name: `${s.letter} ${s.signal}`,
      letter: s.letter,
      value: s.multipath_moving_rms_m!,
      lines: [
        ['Multipath RMS', `${fixed(s.multipath_moving_rms_m, 3)} m`],
        ['Values', whole(s.multipath_values)],
        ['Partner', s.multipath_partner ?? '-'],
      ],
    }));
}

function satelliteCompleteness(report: Report): Bar[] {
  return (report.analysis.satellites ?? [])
    .filter((s) => s.cutoff_completeness_ratio !== null)
    .map((s) => ({
      name: s.satellite,
      letter: s.satellite[0],
      value: 100 * s.cutoff_completeness_ratio!,
      lines: [
        ['Completeness', percent(s.cutoff_completeness_ratio)],
        ['Observed', whole(s.cutoff_observed_epochs)],
        ['Expected', whole(s.cutoff_expected_epochs)],
      ],
    }));
}

/** Of a signal of a satellite: its name, that of the signal, RMS in metres and values. */
export type SatelliteMultipath = [string, string, number, number];

/** The RMS of the satellite's worst signal, with all of them under the pointer. */
function satelliteMultipath(rows: SatelliteMultipath[]): Bar[] {
  const bars = new Map<string, Bar>();
  for (const [name, signal, rms, values] of rows) {
    const bar = bars.get(name) ?? { name, letter: name[0], value: 0, lines: [] };
    bar.value = Math.max(bar.value, rms);
    bar.lines.push([`Multipath RMS ${signal}`, `${fixed(rms, 3)} m of ${whole(values)}`]);
    bars.set(name, bar);
  }
  return [...bars.values()];
}

function figureOf(
  id: string,
  title: string,
  help: string,
  what: string,
  unit: string,
  bySignal: Bar[],
  bySatellite: Bar[],
): Figure {
  let of = 'signal';
  const control = select('By', [['signal', 'Signal'], ['satellite', 'Satellite']], of, (value) => {
    of = value;
    figure.redraw();
  });
  const figure: Figure = new Figure({
    id,
    title,
    help,
    wide: true,
    height: () => 300,
    draw: (c, width) => draw(of === 'signal' ? bySignal : bySatellite, `${what} by ${of}`, unit, c, width),
    controls: [control],
  });
  return figure;
}

export function completenessFigure(report: Report): Figure {
  return figureOf(
    'completeness',
    'Completeness',
    'Observed of expected epochs above the cut-off: code and phase of every signal of the analysis; by satellite, of all signals expected of it.',
    'Completeness',
    '%',
    signalCompleteness(report),
    satelliteCompleteness(report),
  );
}

export function multipathBars(report: Report, satellites: SatelliteMultipath[]): Figure {
  return figureOf(
    'multipath-bars',
    'Multipath RMS',
    'RMS about the moving mean above the cut-off, of every signal that has a partner; by satellite, of its worst signal.',
    'Multipath RMS',
    'm',
    signalMultipath(report),
    satelliteMultipath(satellites),
  );
}

// Where the stations are: a plot of longitude and latitude, since no map may be fetched.
import { tip } from '../dom';
import { axisStyle, type Drawing, Figure, insideZoom } from '../figure';
import { fixed, percent } from '../format';
import type { Colors } from '../theme';
import { conditionOf, HOUR_S, type Network, type Station, windowOf } from './state';

const LEAST_SPAN = 0.02; // degrees, about 2 km

/** A range around values with a margin. */
function range(values: number[]): { min: number; max: number } {
  const min = Math.min(...values);
  const max = Math.max(...values);
  const margin = Math.max((max - min) * 0.12, LEAST_SPAN);
  return { min: min - margin, max: max + margin };
}

function degrees(value: number, positive: string, negative: string): string {
  return `${fixed(Math.abs(value), Math.abs(value) % 1 === 0 ? 0 : 2)}\u00b0${value < 0 ? negative : positive}`;
}

function draw(stations: Station[], c: Colors): Drawing {
  const style = getComputedStyle(document.documentElement);
  const color = { good: style.getPropertyValue('--good').trim(), fair: style.getPropertyValue('--fair').trim(), bad: c.bad, none: c.soft };
  const symbol = { good: 'circle', fair: 'triangle', bad: 'diamond', none: 'emptyCircle' };
  const placed = stations.filter((s) => s.position_llh !== null);
  const latitudes = placed.map((s) => s.position_llh![0]);
  const longitudes = placed.map((s) => s.position_llh![1]);
  const some = placed.length > 0;
  const missing = stations.length - placed.length;
  return {
    points: placed.length,
    label: `${placed.length} stations by longitude and latitude.`,
    note: missing > 0 ? `${missing} without a position yet.` : '',
    option: {
      grid: { left: 58, right: 24, top: 20, bottom: 34 },
      xAxis: { type: 'value', ...(some ? range(longitudes) : { min: -180, max: 180 }), ...axisStyle(c), axisLabel: { color: c.soft, hideOverlap: true, showMinLabel: false, showMaxLabel: false, formatter: (v: number) => degrees(v, 'E', 'W') } },
      yAxis: { type: 'value', ...(some ? range(latitudes) : { min: -90, max: 90 }), ...axisStyle(c), axisLabel: { color: c.soft, showMinLabel: false, showMaxLabel: false, formatter: (v: number) => degrees(v, 'N', 'S') } },
      dataZoom: [insideZoom('xAxisIndex'), insideZoom('yAxisIndex')],
      series: [
        {
          type: 'scatter',
          symbolSize: 15,
          data: placed.map((s) => {
            const { tone } = conditionOf(s);
            return { value: [s.position_llh![1], s.position_llh![0]], name: s.name, symbol: symbol[tone], itemStyle: { color: color[tone] } };
          }),
          label: { show: placed.length <= 40, position: 'top', color: c.text, formatter: (p: { name: string }) => (p.name.length > 12 ? `${p.name.slice(0, 11)}\u2026` : p.name) },
          labelLayout: { hideOverlap: true },
        },
      ],
      tooltip: {
        formatter: (p: { dataIndex: number }) => {
          const s = placed[p.dataIndex];
          return tip(s.name, [
            ['State', conditionOf(s).word],
            ['Complete, last hour', percent(windowOf(s, HOUR_S)?.completeness_ratio)],
            ['Position', `${degrees(s.position_llh![0], 'N', 'S')} ${degrees(s.position_llh![1], 'E', 'W')}`],
          ]);
        },
      },
    },
  };
}

export class StationMap {
  readonly figure: Figure;
  private stations: Station[] = [];
  private shown = '';

  constructor() {
    this.figure = new Figure({
      id: 'map',
      title: 'Where the stations are',
      help: 'Circles are good, triangles have a warning, diamonds are bad or offline.',
      wide: true,
      height: (width) => (width < 500 ? 260 : 320),
      draw: (c) => draw(this.stations, c),
    });
  }

  show(network: Network): void {
    this.stations = network.stations;
    const text = JSON.stringify(this.stations.map((s) => [s.name, s.position_llh?.map((x) => x.toFixed(4)), conditionOf(s).tone]));
    if (text !== this.shown) this.figure.update();
    this.shown = text;
  }
}

// When each satellite was tracked, with gaps while in view, slips and restarts.
import type { Detail, Event, Satellite, Span } from '../detail';
import { select, tip } from '../dom';
import { EVENTS } from '../events';
import { axisStyle, type Drawing, Figure, insideZoom, legendStyle, timeAxis } from '../figure';
import { clock, fixed, span } from '../format';
import type { Selection } from '../selection';
import { type Colors, onPaper, systemColor } from '../theme';

interface Bar {
  satellite: Satellite;
  row: number;
  from: number;
  to: number;
  gap: boolean;
}

const ROW = 13;
/** A page of paper less heading and note. */
const MOST_ON_PAPER = 850;
function barsOf(detail: Detail, satellites: Satellite[]): Bar[] {
  const step = detail.interval * 1000;
  return satellites.flatMap((satellite, row) => [
    ...satellite.arcs.map(({ from, to }) => ({ satellite, row, from, to: to + step, gap: false })),
    ...satellite.gaps.map(({ from, to }) => ({ satellite, row, from, to, gap: true })),
  ]);
}

// Loosely typed: the library's own types of custom series need its whole type tree.
function renderBar(bars: Bar[], c: Colors) {
  return (params: any, api: any) => {
    const bar = bars[params.dataIndex];
    const start = api.coord([bar.from, bar.row]);
    const end = api.coord([bar.to, bar.row]);
    const height = Math.max(2, api.size([0, 1])[1] * (bar.gap ? 0.7 : 0.5));
    const area = params.coordSys;
    const left = Math.max(start[0], area.x);
    const right = Math.min(Math.max(end[0], start[0] + 1.5), area.x + area.width);
    if (right <= left) return undefined;
    return {
      type: 'rect',
      shape: { x: left, y: start[1] - height / 2, width: right - left, height },
      style: bar.gap
        ? { fill: 'transparent', stroke: c.bad, lineWidth: 1.2 }
        : { fill: systemColor(bar.satellite.letter), opacity: 0.75 },
    };
  };
}

/** Times without any satellite, over the whole height. */
function renderHole(breaks: Span[], c: Colors) {
  return (params: any, api: any) => {
    const hole = breaks[params.dataIndex];
    const area = params.coordSys;
    const left = Math.max(api.coord([hole.from, 0])[0], area.x);
    const right = Math.min(Math.max(api.coord([hole.to, 0])[0], left + 1), area.x + area.width);
    if (right <= left) return undefined;
    return {
      type: 'rect',
      shape: { x: left, y: area.y, width: right - left, height: area.height },
      style: { fill: c.bad, opacity: 0.35 },
    };
  };
}

function draw(detail: Detail, satellites: Satellite[], c: Colors, width: number): Drawing {
  const bars = barsOf(detail, satellites);
  const breaks = detail.holes;
  const rows = new Map(satellites.map((s, row) => [s.name, row]));
  const kinds = EVENTS.map((style) => ({
    style,
    events: detail.events.filter((e) => e.kind === style.kind && rows.has(e.satellite)),
  })).filter(({ events }) => events.length > 0);
  const total = kinds.reduce((sum, { events }) => sum + events.length, 0);
  const gaps = bars.filter((b) => b.gap).length;
  const left = detail.eventsLeftOut > 0 ? ` ${detail.eventsLeftOut} further events are left out.` : '';
  const joined = detail.leastGap > 1 ? ` Breaks shorter than ${detail.leastGap} epochs are not drawn.` : '';
  return {
    points: bars.length + breaks.length + total,
    label: `Tracking of ${satellites.length} satellites: ${bars.length - gaps} arcs, ${gaps} gaps while in view, ${total} events.`,
    note: `${gaps} gaps of single satellites while in view (red frames), ${breaks.length} breaks without any satellite (red bands). Grey kinds in the legend can be switched on.${joined}${left}`,
    option: {
      grid: { left: 42, right: 14, top: 34, bottom: width < 600 ? 150 : 112 },
      legend: {
        ...legendStyle(c),
        data: kinds.map(({ style }) => style.name),
        selected: Object.fromEntries(kinds.map(({ style }) => [style.name, style.shown])),
      },
      xAxis: { ...timeAxis(c, width), position: 'top', axisPointer: { show: false } },
      yAxis: { type: 'category', inverse: true, data: satellites.map((s) => s.name), ...axisStyle(c), axisLabel: { color: c.soft, interval: 0, fontSize: onPaper() && satellites.length > 50 ? 5 : 10 }, splitLine: { show: false } },
      useUTC: true,
      dataZoom: [
        insideZoom('xAxisIndex', { filterMode: 'weakFilter' }),
        { type: 'slider', xAxisIndex: [0], bottom: width < 600 ? 112 : 74, height: 22, showDataShadow: false, borderColor: c.line, textStyle: { color: c.soft }, filterMode: 'weakFilter', labelFormatter: (value: number) => clock(value) },
      ],
      series: [
        {
          type: 'custom',
          name: 'Tracked',
          renderItem: renderBar(bars, c),
          encode: { x: [0, 1], y: 2 },
          data: bars.map((b) => [b.from, b.to, b.row]),
          progressive: 0,
        },
        {
          type: 'custom',
          name: 'No satellite',
          renderItem: renderHole(breaks, c),
          encode: { x: [0, 1] },
          data: breaks.map((b) => [b.from, b.to]),
          progressive: 0,
          z: 1,
        },
        ...kinds.map(({ style, events }) => ({
          type: 'scatter',
          name: style.name,
          symbol: style.symbol,
          symbolSize: style.shown ? 10 : 6,
          z: 3,
          data: events.map((e) => [e.time, rows.get(e.satellite)!]),
          progressive: 0,
          itemStyle: { color: style.color, borderColor: c.back, borderWidth: style.shown ? 1 : 0 },
        })),
      ],
      tooltip: {
        formatter: (p: { seriesIndex: number; dataIndex: number }) => {
          if (p.seriesIndex === 0) {
            const bar = bars[p.dataIndex];
            return tip(`${bar.satellite.name} ${bar.gap ? 'gap while in view' : 'tracked'}`, [
              ['From', clock(bar.from)],
              ['To', clock(bar.to)],
              ['Length', span(bar.to - bar.from)],
            ]);
          }
          if (p.seriesIndex === 1) {
            const hole = breaks[p.dataIndex];
            return tip('No satellite recorded', [
              ['From', clock(hole.from)],
              ['To', clock(hole.to)],
              ['Length', span(hole.to - hole.from)],
            ]);
          }
          const { style, events } = kinds[p.seriesIndex - 2];
          return eventTip(events[p.dataIndex], style.name, style.help);
        },
      },
    },
  };
}

function eventTip(event: Event, name: string, help: string): HTMLElement {
  const box = tip(`${event.satellite}: ${name}`, [
    ['Time', clock(event.time)],
    ['Signals', event.signals.join(' ')],
    ['Elevation', `${fixed(event.elevation, 1)}\u00b0`],
  ]);
  const why = document.createElement('em');
  why.textContent = help;
  box.append(why);
  return box;
}

export function timelineFigure(detail: Detail, selection: Selection): Figure {
  let letter = '*';
  const letters = [...new Set(detail.satellites.map((s) => s.letter))];
  const chosen = (): Satellite[] =>
    selection.satellite !== '*'
      ? detail.satellites.filter((s) => selection.holds(s))
      : detail.satellites.filter((s) => letter === '*' || s.letter === letter);
  const control = select('System', [['*', 'All'], ...letters.map((l): [string, string] => [l, l])], letter, (value) => {
    letter = value;
    figure.refit();
  });
  const figure: Figure = new Figure({
    id: 'timeline',
    title: 'Tracking timeline of the library',
    help: 'A bar where a satellite was tracked, a red frame where it was lost while above the cut-off, and what happened to its signals.',
    height: (width) => {
      const height = Math.max(chosen().length, 6) * ROW + (width < 600 ? 190 : 152);
      return onPaper() ? Math.min(height, MOST_ON_PAPER) : height;
    },
    draw: (c, width) => draw(detail, chosen(), c, width),
    controls: [control],
    wide: true,
  });
  selection.onChange(() => figure.refit());
  return figure;
}

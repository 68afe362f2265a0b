// The table of stations, worst first, and the alarms that are raised now.
import { el } from '../dom';
import { clock, fixed } from '../format';
import { section } from '../layout';
import { type Cell, type Column, count, digits, hundred, number, SortTable } from '../table';
import { type Alarm, conditionOf, HOUR_S, kindText, type Network, type Station, windowOf } from './state';

export function linkTo(station: string): string {
  return `#station=${encodeURIComponent(station)}`;
}

/** "9/10": observed and expected, where orbits and position are known. */
function satellites(station: Station): string | null {
  if (station.systems.length === 0) return null;
  const observed = station.systems.reduce((sum, s) => sum + s.observed, 0);
  const known = station.systems.filter((s) => s.expected !== null);
  if (known.length === 0) return String(observed);
  return `${known.reduce((sum, s) => sum + s.observed, 0)}/${known.reduce((sum, s) => sum + s.expected!, 0)}`;
}

/** What is wrong, or what the stream is doing. */
function remark(station: Station): string {
  if (station.alarms.length > 0) return [...new Set(station.alarms.map((a) => kindText(a.kind, a.subject)))].join(', ');
  return station.problem ?? (station.phase === 'judging' ? '' : station.phase);
}

function nameCell(station: Station): HTMLElement {
  const text = remark(station);
  return el(
    'div',
    { class: 'file' },
    el('a', { href: linkTo(station.name), title: station.source }, station.name),
    text === '' ? null : el('p', { class: station.alarms.length > 0 || !station.connected ? 'error' : 'found' }, text),
  );
}

const FIGURES: { get: (station: Station) => Cell; column: Column }[] = [
  { get: (s) => hundred(windowOf(s, HOUR_S)?.completeness_ratio ?? null), column: number('Complete %', digits(2), 'Observed of expected observations of the last hour') },
  { get: (s) => s.latency_s, column: number('Latency s', digits(2), 'Median of the last minute, from the time of an epoch to its arrival') },
  { get: satellites, column: { name: 'Satellites', title: 'Observed in the latest epoch, and expected above the cut-off', numeric: true } },
  { get: (s) => windowOf(s, HOUR_S)?.slip_events ?? null, column: number('Slips', count, 'Satellites with a slip or jump in the last hour') },
  { get: (s) => lost(s), column: number('Lost', count, 'Nominal epochs of the last hour that did not come') },
  { get: (s) => s.epoch_gpst?.slice(11, 19) ?? null, column: { name: 'Last epoch', title: 'GPS time' } },
];

function lost(station: Station): number | null {
  const hour = windowOf(station, HOUR_S);
  return hour === null ? null : hour.epochs_expected - hour.epochs_present;
}

/** Redrawn only when what it shows has changed, and with the focus where it was. */
export class StationTable {
  readonly element: HTMLElement;
  private readonly table: SortTable;
  private stations: Station[] = [];
  private shown = '';

  constructor() {
    const state: Column = {
      name: 'State',
      title: 'Sort worst first',
      show: (place) => {
        const { word, tone } = conditionOf(this.stations[place as number]);
        return el('strong', { class: `state ${tone}` }, word);
      },
    };
    const name: Column = { name: 'Station', show: (value) => nameCell(this.byName(value as string)) };
    this.table = new SortTable('Stations', [state, name, ...FIGURES.map((f) => f.column)], [], { rowHead: 1, sorted: 0, page: 1000 });
    this.element = section('stations', 'Stations, worst first', this.table.element);
  }

  show(network: Network): void {
    this.stations = network.stations;
    const rows = network.stations.map((s, place): Cell[] => [place, s.name, ...FIGURES.map((f) => f.get(s))]);
    const text = JSON.stringify([rows, network.stations.map((s) => [remark(s), conditionOf(s)])]);
    if (text === this.shown) return;
    this.shown = text;
    const focused = document.activeElement instanceof HTMLAnchorElement ? document.activeElement.hash : '';
    this.table.set(rows);
    if (focused === '') return;
    for (const link of this.element.querySelectorAll('a')) if (link.hash === focused) link.focus();
  }

  private byName(name: string): Station {
    return this.stations.find((s) => s.name === name)!;
  }
}

function alarmItem(station: Station, alarm: Alarm): HTMLElement {
  return el(
    'li',
    { class: alarm.severity === 'bad' ? 'error' : 'fair' },
    el(
      'div',
      {},
      el('strong', {}, el('a', { href: linkTo(station.name) }, station.name), `: ${kindText(alarm.kind, alarm.subject)}`),
      el('p', {}, alarm.seen),
      el('p', {}, alarm.advice),
      el('p', { class: 'since' }, `since ${alarm.since.slice(0, 10)} ${clock(Date.parse(alarm.since)).slice(0, 8)} UTC`),
    ),
  );
}

/** The alarms of all stations, or a sentence that there are none. */
export class AlarmList {
  readonly element = section('alarms', 'Alarms raised now');
  private readonly list = el('div', { role: 'status' });
  private shown = '';

  constructor() {
    this.element.append(this.list);
  }

  show(network: Network): void {
    const text = JSON.stringify(network.stations.map((s) => [s.name, s.alarms]));
    if (text === this.shown) return;
    this.shown = text;
    const items = network.stations.flatMap((s) => s.alarms.map((a) => alarmItem(s, a)));
    this.list.replaceChildren(items.length > 0 ? el('ul', { class: 'hints' }, ...items) : el('p', {}, 'None.'));
  }
}

/** Values of the tiles above the table. */
export function networkTiles(network: Network): [string, string, string][] {
  const { stations } = network;
  const of = (tone: string) => stations.filter((s) => conditionOf(s).tone === tone).length;
  const ratios = stations.flatMap((s) => windowOf(s, HOUR_S)?.completeness_ratio ?? []).sort((a, b) => a - b);
  const least = ratios.length > 0 ? `${fixed(100 * ratios[0], 2)} %` : '-';
  return [
    ['Stations', String(stations.length), 'Streams of this service'],
    ['Bad', String(of('bad')), 'Stations with a bad alarm or without a connection'],
    ['Warning', String(of('fair')), 'Stations with a warning, or that have just started'],
    ['Good', String(of('good')), 'Stations without any alarm'],
    ['Least complete', least, 'Lowest completeness of a station in the last hour'],
  ];
}

// One station: what it is, its plots, signals and messages.
import { el } from '../dom';
import { fixed, whole } from '../format';
import { section } from '../layout';
import { inOrder } from '../palette';
import { type Cell, count, digits, hundred, number, SortTable, text } from '../table';
import { plotControls, Shown, stationFigures } from './plots';
import { conditionOf, DAY_S, type Detail, HOUR_S, load, type Station, type Window, windowOf } from './state';

function facts(station: Station): [string, string][] {
  const llh = station.position_llh;
  return [
    ['Stream', `${station.source}, ${station.phase}${station.problem === null ? '' : `: ${station.problem}`}`],
    ['Received', `${whole(station.bytes)} bytes, ${whole(station.frames)} frames, ${whole(station.crc_errors)} CRC errors, ${whole(station.connections)} connections`],
    ['Epochs', `${whole(station.epochs)} judged, ${whole(station.epochs_lost)} lost, ${whole(station.epochs_dropped)} dropped; interval ${fixed(station.interval_s, 1)} s`],
    ['Receiver', [station.receiver, station.firmware].filter((t) => t !== null).join(', ') || '-'],
    ['Antenna', station.antenna ?? '-'],
    ['Position', llh === null ? '-' : `${fixed(llh[0], 5)}\u00b0, ${fixed(llh[1], 5)}\u00b0, ${fixed(llh[2], 1).replace('-0.0', '0.0')} m`],
  ];
}

/** In the order of systems of every table. */
function ordered<T extends { system: string }>(rows: T[]): T[] {
  return inOrder([...new Set(rows.map((r) => r.system))]).flatMap((letter) => rows.filter((r) => r.system === letter));
}

function signalRows(station: Station): Cell[][] {
  const hour = windowOf(station, HOUR_S);
  const day = windowOf(station, DAY_S);
  const of = (window: Window | null, system: string, signal: string) => window?.signals.find((s) => s.system === system && s.signal === signal) ?? null;
  return ordered(day?.signals ?? hour?.signals ?? []).map(({ system, signal }) => {
    const h = of(hour, system, signal);
    const d = of(day, system, signal);
    return [
      `${system} ${signal}`,
      hundred(h?.completeness_ratio ?? null),
      hundred(d?.completeness_ratio ?? null),
      h?.snr_dbhz ?? null,
      d?.snr_dbhz ?? null,
      h?.multipath_rms_m ?? null,
      d?.multipath_rms_m ?? null,
      h?.slips ?? null,
      d?.slips ?? null,
      d?.lock_losses ?? null,
    ];
  });
}

const SIGNAL_COLUMNS = [
  text('Signal'),
  number('Complete % 1 h', digits(2), 'Observed of expected observations of the last hour'),
  number('24 h', digits(2), 'The same of the last day'),
  number('SNR 1 h', digits(1), 'Mean, dB-Hz'),
  number('24 h', digits(1), 'The same of the last day'),
  number('Multipath 1 h', digits(3), 'RMS of the code about a moving mean of 630 s, m'),
  number('24 h', digits(3), 'The same of the last day'),
  number('Slips 1 h', count, 'Cycle slips with the signal'),
  number('24 h', count, 'The same of the last day'),
  number('Lock losses 24 h', count, 'Flagged by the receiver'),
];

const MESSAGE_COLUMNS = [
  text('Type'),
  number('Total', count, 'Since the start of the service'),
  number('Damaged', count, 'Too short or impossible'),
  number('Age s', digits(1), 'Since the last one, by the time of the stream'),
  number('Interval s', digits(1), 'Mean of the last minute with some'),
];

const SYSTEM_COLUMNS = [
  text('System'),
  number('Observed', count, 'Satellites in the latest epoch'),
  number('Expected', count, 'Healthy and above the cut-off'),
  number('With ephemeris', count),
  number('Ephemeris age s', digits(0), 'Since one of the system was received'),
];

/** The part of the page about the chosen station. */
export class StationView {
  readonly element = section('station', 'Station');
  readonly shown = new Shown();
  readonly figures = stationFigures(this.shown);
  private name: string | null = null;
  private minute: string | null = null;
  private readonly facts = el('dl', { class: 'facts' });
  private readonly controls = el('div', { class: 'bar', role: 'group', 'aria-label': 'What the plots show' });
  private readonly state = el('strong', { class: 'state' });
  private readonly signals = new SortTable('Signals', SIGNAL_COLUMNS, []);
  private readonly messages = new SortTable('Messages', MESSAGE_COLUMNS, []);
  private readonly systems = new SortTable('Systems', SYSTEM_COLUMNS, []);
  private systemsOfControls = '';

  constructor() {
    this.element.append(
      el('p', { class: 'verdict-line' }, this.state),
      this.facts,
      this.controls,
      el('div', { class: 'figures' }, ...this.figures.map((f) => f.element)),
      el('div', { class: 'tables' }, this.signals.element, this.systems.element, this.messages.element),
    );
    this.element.hidden = true;
  }

  /** Shows another station; its figures come with the next answer. */
  choose(name: string): void {
    if (name === this.name) return;
    this.name = name;
    this.minute = null;
    this.shown.minutes = null;
    this.shown.system = '*';
    this.element.querySelector('h2')!.textContent = name;
  }

  /** From the state of all; fetches the minutes when a new one has begun. */
  async show(station: Station | undefined): Promise<void> {
    this.element.hidden = station === undefined;
    if (station === undefined) return;
    const { word, tone } = conditionOf(station);
    this.state.textContent = word;
    this.state.className = `state ${tone}`;
    this.facts.replaceChildren(...facts(station).map(([what, value]) => el('div', {}, el('dt', {}, what), el('dd', {}, value))));
    this.messages.set(station.messages.map((m) => [m.type, m.total, m.damaged, m.age_s, m.interval_s]));
    this.systems.set(ordered(station.systems).map((s) => [s.system, s.observed, s.expected, s.with_ephemeris, s.ephemeris_age_s]));
    const minute = windowOf(station, HOUR_S)?.to_gpst ?? '';
    if (minute === this.minute) return;
    const detail = await load<Detail>(`state.json?station=${encodeURIComponent(station.name)}`);
    if (station.name !== this.name) return; // another was chosen meanwhile
    this.minute = minute;
    this.shown.minutes = detail.station.minutes;
    this.signals.set(signalRows(detail.station));
    this.fillControls();
    for (const figure of this.figures) figure.update();
  }

  private fillControls(): void {
    const systems = `${this.name}${this.shown.systems().join()}`;
    if (systems === this.systemsOfControls) return;
    this.systemsOfControls = systems;
    this.controls.replaceChildren(...plotControls(this.shown, () => this.figures.forEach((f) => f.redraw())));
  }
}

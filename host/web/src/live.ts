// The page of the service: stations worst first, alarms with advice, one station's last hour and day, events.
import { el } from './dom';
import { head, section, tile } from './layout';
import { EventLog } from './live/log';
import { StationMap } from './live/map';
import { load, type Network } from './live/state';
import { StationView } from './live/station';
import { AlarmList, networkTiles, StationTable } from './live/stations';
import { startTheme } from './theme';

const REFRESH_MS = 5000;

class Page {
  readonly table = new StationTable();
  readonly alarms = new AlarmList();
  readonly map = new StationMap();
  readonly view = new StationView();
  readonly log = new EventLog();
  network: Network | null = null;
  private worst: string | null = null;
  private readonly tiles = el('dl', { class: 'tiles' });
  private readonly warning = el('p', { class: 'warning', role: 'alert', hidden: true });
  private readonly time = el('span', { id: 'time' });

  start(): void {
    head('Live streams', 'Stations', []);
    document.querySelector('.facts')!.append(el('div', {}, el('dt', {}, 'State of'), el('dd', {}, this.time)));
    const where = section('where', 'Map', el('div', { class: 'figures' }, this.map.figure.element));
    document.getElementById('report')!.append(this.warning, this.tiles, this.table.element, this.alarms.element, this.view.element, where, this.log.element);
    addEventListener('hashchange', () => {
      this.choose();
      void this.showStation().then(() => this.view.element.scrollIntoView());
    });
    this.choose();
    void this.log.follow();
    void this.refresh();
  }

  private chosen(): string | null {
    const match = /^#station=(.*)$/.exec(location.hash);
    try {
      return match === null ? null : decodeURIComponent(match[1]);
    } catch {
      return null;
    }
  }

  private choose(): void {
    this.log.of(this.chosen());
  }

  /** The chosen station; without a choice the one that was the worst at first, lest the page jumps. */
  private async showStation(): Promise<void> {
    if (this.network === null) return;
    const { stations } = this.network;
    const byName = (name: string | null) => stations.find((s) => s.name === name);
    const station = byName(this.chosen()) ?? byName(this.worst) ?? stations[0];
    if (station !== undefined) {
      this.worst ??= station.name;
      this.view.choose(station.name);
    }
    await this.view.show(station);
  }

  /** Over and over; not while nobody looks. */
  private async refresh(): Promise<void> {
    for (;;) {
      if (!document.hidden) await this.update();
      await new Promise((resolve) => setTimeout(resolve, REFRESH_MS));
    }
  }

  private async update(): Promise<void> {
    try {
      this.network = await load<Network>('state.json');
      this.show(this.network);
      await this.showStation();
      this.warning.hidden = true;
    } catch {
      this.warning.textContent = `The service does not answer. The page shows its state of ${this.time.textContent || 'no time yet'}.`;
      this.warning.hidden = false;
    }
  }

  private show(network: Network): void {
    this.time.textContent = `${network.time.slice(0, 19).replace('T', ' ')} UTC`;
    this.tiles.replaceChildren(...networkTiles(network).map(([name, value, help]) => tile(name, value, help)));
    this.table.show(network);
    this.alarms.show(network);
    this.map.show(network);
    if (document.getElementById('foot')!.childElementCount > 0) return;
    document.getElementById('foot')!.append(el('p', {}, `Orsolva ${network.library_version}. `, el('a', { href: 'state.json' }, 'State'), ', ', el('a', { href: 'metrics' }, 'metrics'), '. Times of epochs and plots are GPS time.'));
  }
}

startTheme();
const page = new Page();
page.start();
// For the browser tests.
(window as unknown as Record<string, unknown>).orsolva = { page, figures: [page.map.figure, ...page.view.figures] };

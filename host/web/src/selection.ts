// What the plots show: one signal or every system's main one, one satellite or all.
import type { Detail, Satellite, Signal } from './detail';
import { inOrder } from './palette';
import type { Series, Subject } from './series';

export interface Shown {
  satellite: Satellite;
  signal: Signal;
}

const sum = (list: (number | null)[] | undefined): number => (list ?? []).reduce<number>((total, value) => total + (value ?? 0), 0);

export class Selection {
  signal = '*';
  satellite = '*';
  private readonly detail: Detail;
  private readonly series: Series;
  private readonly main = new Map<string, string>();
  private readonly listeners: (() => void)[] = [];

  constructor(detail: Detail, series: Series) {
    this.detail = detail;
    this.series = series;
    this.findMain();
    this.findMainOfSeries();
  }

  /** Of each system the signal with the most values; those with multipath come first. */
  private findMain(): void {
    const counts = new Map<string, number>();
    for (const s of this.detail.satellites) {
      for (const signal of s.signals) {
        const weight = signal.snrValues + (signal.mpValues > 0 ? 1e9 : 0);
        const key = `${s.letter} ${signal.signal}`;
        counts.set(key, (counts.get(key) ?? 0) + weight);
      }
    }
    for (const [key, count] of counts) {
      const letter = key[0];
      const known = this.main.get(letter);
      if (known === undefined || count > counts.get(`${letter} ${known}`)!) this.main.set(letter, key.slice(2));
    }
  }

  /** Of systems that only the analysis has. */
  private findMainOfSeries(): void {
    const most = new Map<string, number>();
    for (const s of this.series.signals) {
      if (this.main.has(s.of) && !most.has(s.of)) continue;
      const weight = sum(s.satellites) + ((s.multipath ?? []).some((v) => v !== null) ? 1e9 : 0);
      if (weight <= (most.get(s.of) ?? -1)) continue;
      most.set(s.of, weight);
      this.main.set(s.of, s.signal!);
    }
  }

  /** "G 1C" and so on, in the order of systems and codes. */
  signals(): string[] {
    const listed = this.series.signals.map((s) => `${s.of} ${s.signal}`);
    return listed.length > 0 ? listed : this.detail.bins.map((b) => `${b.letter} ${b.signal}`);
  }

  satellites(): string[] {
    return this.series.satellites.length > 0 ? this.series.satellites.map((s) => s.of) : this.detail.satellites.map((s) => s.name);
  }

  onChange(listener: () => void): void {
    this.listeners.push(listener);
  }

  set(signal: string, satellite: string): void {
    this.signal = signal;
    this.satellite = satellite;
    this.listeners.forEach((listener) => listener());
  }

  text(): string {
    const systems = inOrder([...this.main.keys()]).map((letter) => `${letter} ${this.main.get(letter)}`).join(', ');
    const signal = this.signal === '*' ? `main signal of each system (${systems})` : this.signal;
    return this.satellite === '*' ? signal : `${this.satellite}, ${signal}`;
  }

  holds(satellite: Satellite): boolean {
    return this.satellite === '*' || this.satellite === satellite.name;
  }

  holdsSystem(letter: string): boolean {
    return this.signal === '*' || this.signal[0] === letter;
  }

  private holdsSignal(letter: string, signal: string): boolean {
    return this.signal === '*' ? this.main.get(letter) === signal : this.signal === `${letter} ${signal}`;
  }

  /** The signals over time that are shown: one of each satellite, or all of one satellite. */
  subjects(): Subject[] {
    if (this.satellite !== '*') return this.series.satelliteSignals.filter((s) => s.of === this.satellite);
    return this.series.satelliteSignals.filter((s) => this.holdsSignal(s.of[0], s.signal!));
  }

  /** The main signal of each system. */
  mainSubjects(): Subject[] {
    return this.series.signals.filter((s) => this.main.get(s.of) === s.signal);
  }

  /** The signals shown, one a satellite. */
  shown(): Shown[] {
    const out: Shown[] = [];
    for (const satellite of this.detail.satellites) {
      if (!this.holds(satellite)) continue;
      const signal = satellite.signals.find((s) => this.holdsSignal(satellite.letter, s.signal));
      if (signal !== undefined) out.push({ satellite, signal });
    }
    return out;
  }

  /** Bins of the shown signals, when no single satellite is chosen. */
  bins(): Detail['bins'] {
    if (this.satellite !== '*') return [];
    return this.detail.bins.filter((b) => this.holdsSignal(b.letter, b.signal));
  }
}

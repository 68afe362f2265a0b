// What the plots show: one signal or every system's main one, one satellite or all.
import type { Detail, Satellite, Signal } from './detail';

export interface Shown {
  satellite: Satellite;
  signal: Signal;
}

export class Selection {
  signal = '*';
  satellite = '*';
  private readonly detail: Detail;
  private readonly main = new Map<string, string>();
  private readonly listeners: (() => void)[] = [];

  constructor(detail: Detail) {
    this.detail = detail;
    const counts = new Map<string, number>();
    for (const s of detail.satellites) {
      for (const signal of s.signals) {
        // A signal with multipath values comes before one without.
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

  /** "G 1C" and so on, in the order of systems and codes. */
  signals(): string[] {
    return this.detail.bins.map((b) => `${b.letter} ${b.signal}`);
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
    const systems = [...this.main].map(([letter, signal]) => `${letter} ${signal}`).join(', ');
    const signal = this.signal === '*' ? `main signal of each system (${systems})` : this.signal;
    return this.satellite === '*' ? signal : `${this.satellite}, ${signal}`;
  }

  holds(satellite: Satellite): boolean {
    return this.satellite === '*' || this.satellite === satellite.name;
  }

  /** The signals shown, one a satellite. */
  shown(): Shown[] {
    const out: Shown[] = [];
    for (const satellite of this.detail.satellites) {
      if (!this.holds(satellite)) continue;
      const wanted = this.signal === '*' ? this.main.get(satellite.letter) : this.signal.slice(2);
      if (this.signal !== '*' && this.signal[0] !== satellite.letter) continue;
      const signal = satellite.signals.find((s) => s.signal === wanted);
      if (signal !== undefined) out.push({ satellite, signal });
    }
    return out;
  }

  /** Bins of the shown signals, when no single satellite is chosen. */
  bins(): Detail['bins'] {
    if (this.satellite !== '*') return [];
    return this.detail.bins.filter((b) =>
      this.signal === '*' ? this.main.get(b.letter) === b.signal : this.signal === `${b.letter} ${b.signal}`,
    );
  }
}

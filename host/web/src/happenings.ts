// What the analysis found happening, as marks on every plot over time.
import type { AnalysisEvent, Report } from './report';

export interface EventData {
  further: number;
  events: AnalysisEvent[];
}

export const SLIPS = new Set(['slip', 'half_cycle', 'jump', 'gap_slip', 'signal_gap_slip']);

export interface Happening {
  time: number;
  event: AnalysisEvent;
}

export interface Happenings {
  /** Of the receiver as a whole: clock resets, restarts, power failures. */
  receiver: Happening[];
  /** Of satellites. */
  satellites: Happening[];
  gaps: { from: number; to: number; missing: number }[];
}

/** "2020-06-25 00:05:00.000" in ms since 1970 on the GPS time scale. */
export function timeOf(text: string): number {
  return Date.parse(`${text.replace(' ', 'T')}Z`);
}

export function happeningsOf(report: Report, data: EventData): Happenings {
  const all = data.events.map((event) => ({ time: timeOf(event.time_gpst), event }));
  return {
    receiver: all.filter(({ event }) => event.satellite === null),
    satellites: all.filter(({ event }) => event.satellite !== null),
    gaps: report.analysis.gaps.map((g) => ({
      from: timeOf(g.last_before_gpst),
      to: timeOf(g.first_after_gpst),
      missing: g.missing_epochs,
    })),
  };
}

export function kindText(kind: string): string {
  return kind.replace(/_ms$/, '').replace(/_/g, ' ');
}

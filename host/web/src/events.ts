// The events of a run in words, in the order of how much they say about the receiver.
export interface EventStyle {
  kind: string;
  name: string;
  help: string;
  symbol: string;
  color: string;
  /** Shown from the start: events that the receiver or its surroundings caused. */
  shown: boolean;
}

export const EVENTS: EventStyle[] = [
  { kind: 'ionospheric_rate', name: 'Slip: ionospheric rate', help: 'the geometry-free phase changed faster than the ionosphere can', symbol: 'triangle', color: '#e5484d', shown: true },
  { kind: 'long_gap', name: 'Slip: long gap', help: 'the geometry-free phase was missing for more than 242 s', symbol: 'rect', color: '#e5484d', shown: true },
  { kind: 'jump', name: 'Code jump', help: 'the multipath residual left the mean of the last ones', symbol: 'diamond', color: '#b14fc4', shown: true },
  { kind: 'data_gap', name: 'Slip: data gap', help: 'the phase was missing for more than 60 s', symbol: 'rect', color: '#f08c2e', shown: true },
  { kind: 'geometry', name: 'Slip: geometry', help: 'the phase left what the orbit and the other satellites say; at 30 s also clock noise and low elevation', symbol: 'circle', color: '#8d99a6', shown: false },
  { kind: 'new_ephemeris', name: 'Slip: new ephemeris', help: 'a new broadcast record came into use; mostly the satellite clock, not the receiver', symbol: 'circle', color: '#6d7a88', shown: false },
  { kind: 'restart_after_gap', name: 'Restart after a gap', help: 'the multipath mean restarts after more than 600 s; no fault', symbol: 'arrow', color: '#3b82d6', shown: false },
];

/** Kinds that make a satellite worth a look. */
export const HARD = new Set(['ionospheric_rate', 'long_gap', 'jump']);

export function eventName(kind: string): string {
  return EVENTS.find((e) => e.kind === kind)?.name ?? kind;
}

// What the service returns: /state.json, of all stations or of one, and /events.json.

export interface SignalFigures {
  system: string;
  signal: string;
  expected: number;
  observed: number;
  completeness_ratio: number | null;
  snr_dbhz: number | null;
  multipath_rms_m: number | null;
  slips: number;
  jumps: number;
  lock_losses: number;
}

export interface Window {
  length_s: number;
  from_gpst: string | null;
  to_gpst: string | null;
  epochs_expected: number;
  epochs_present: number;
  messages: number;
  crc_errors: number;
  slip_events: number;
  completeness_ratio: number | null;
  signals: SignalFigures[];
}

export interface Alarm {
  kind: string;
  subject: string | null;
  severity: 'warning' | 'bad';
  since: string;
  seen: string;
  advice: string;
  event_id: number;
}

export interface SystemState {
  system: string;
  observed: number;
  expected: number | null;
  with_ephemeris: number;
  ephemeris_age_s: number | null;
}

export interface Message {
  type: number;
  total: number;
  damaged: number;
  age_s: number | null;
  interval_s: number | null;
}

export interface Station {
  name: string;
  source: string;
  replay: boolean;
  phase: string;
  connected: boolean;
  problem: string | null;
  published: string;
  connected_since: string | null;
  connections: number;
  bytes: number;
  frames: number;
  crc_errors: number;
  epochs: number;
  epochs_lost: number;
  epochs_dropped: number;
  interval_s: number | null;
  epoch_gpst: string | null;
  latency_s: number | null;
  antenna: string | null;
  receiver: string | null;
  firmware: string | null;
  position_llh: [number, number, number] | null;
  systems: SystemState[];
  messages: Message[];
  windows: Window[];
  alarms: Alarm[];
}

export interface SignalSeries {
  system: string;
  signal: string;
  completeness_ratio: (number | null)[];
  snr_dbhz: (number | null)[];
  multipath_rms_m: (number | null)[];
}

/** Columns over the minutes of the last day. */
export interface Minutes {
  begin_gps_ms: number[];
  epochs_expected: number[];
  epochs_present: number[];
  crc_errors: number[];
  slip_events: number[];
  satellites: (number | null)[];
  completeness_ratio: (number | null)[];
  signals: SignalSeries[];
}

interface Head {
  library_version: string;
  time: string;
  last_event_id: number;
}

export interface Network extends Head {
  stations: Station[];
}

export interface Detail extends Head {
  station: Station & { minutes: Minutes };
}

export interface LiveEvent {
  id: number;
  time: string;
  station: string;
  kind: string;
  subject?: string;
  state: 'raised' | 'cleared' | 'note';
  severity?: 'warning' | 'bad';
  seen?: string;
  advice?: string;
}

const KINDS: Record<string, string> = {
  data_gap: 'Data gap',
  latency: 'Latency',
  slip_burst: 'Slip burst',
  snr_drop: 'SNR drop',
  completeness: 'Completeness',
  multipath: 'Multipath',
  satellites_few: 'Few satellites',
  ephemeris_old: 'Old ephemerides',
  messages_missing: 'Missing messages',
  position_moved: 'Position moved',
  identity_changed: 'Identity changed',
  crc_errors: 'CRC errors',
  started: 'Started',
  connected: 'Connected',
  disconnected: 'Disconnected',
  hour: 'Hour closed',
  ended: 'Ended',
};

/** "SNR drop (G 1)" */
export function kindText(kind: string, subject?: string | null): string {
  const name = KINDS[kind] ?? kind.replace(/_/g, ' ');
  return subject ? `${name} (${subject})` : name;
}

export const MINUTE_S = 60;
export const HOUR_S = 3600;
export const DAY_S = 86400;

export function windowOf(station: Station, length: number): Window | null {
  const window = station.windows.find((w) => w.length_s === length);
  return window === undefined || window.to_gpst === null ? null : window;
}

export interface Condition {
  word: string;
  tone: 'good' | 'fair' | 'bad' | 'none';
}

/** The worst that is to be said of a station. */
export function conditionOf(station: Station): Condition {
  if (station.alarms.some((a) => a.severity === 'bad')) return { word: 'Bad', tone: 'bad' };
  if (station.phase === 'ended') return { word: 'Ended', tone: 'none' };
  if (!station.connected) return { word: station.phase === 'connecting' ? 'Connecting' : 'Offline', tone: 'bad' };
  if (station.alarms.length > 0) return { word: 'Warning', tone: 'fair' };
  if (station.phase === 'waiting for navigation') return { word: 'Starting', tone: 'fair' };
  return { word: 'Good', tone: 'good' };
}

export async function load<T>(path: string, signal?: AbortSignal): Promise<T> {
  const answer = await fetch(path, { cache: 'no-store', credentials: 'same-origin', signal });
  if (!answer.ok) throw new Error(`${path}: ${answer.status}`);
  return (await answer.json()) as T;
}

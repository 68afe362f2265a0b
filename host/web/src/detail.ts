// The detail columns of a page: what detail_json.cpp writes, decoded into typed arrays.

export interface RawSignal {
  signal: string;
  snr_values: number;
  snr: string;
  partner?: string;
  mp_values?: number;
  mp?: string;
}

export interface RawSatellite {
  satellite: string;
  elevation: string;
  azimuth: string;
  runs: number[];
  arcs: number[];
  signals: RawSignal[];
  rate_pair?: [string, string];
  rate?: string;
}

export interface RawBins {
  letter: string;
  signal: string;
  snr: number[];
  mp: number[];
}

export interface RawDetail {
  first_s: number;
  first_fraction_s: number;
  interval_s: number;
  stride: number;
  least_gap: number;
  cutoff_deg: number;
  satellite_epochs: number;
  event_kinds: string[];
  satellites: RawSatellite[];
  bins: RawBins[];
  events: [number, number, number, number, number][];
  events_left_out: number;
}

/** Stands for no value in the 16-bit columns. */
const NO_VALUE = -32768;
/** Multipath residuals and rates beyond this many thousandths are held at it. */
export const HELD = 32767;

export interface Signal {
  signal: string;
  partner: string | null;
  snrValues: number;
  mpValues: number;
  /** dB-Hz, NaN = none */
  snr: Float32Array;
  /** m, NaN = none; those that enter the RMS */
  mp: Float32Array | null;
}

export interface Satellite {
  name: string;
  letter: string;
  rows: number;
  /** ms since 1970 on the GPS time scale */
  time: Float64Array;
  elevation: Float32Array;
  azimuth: Float32Array;
  signals: Signal[];
  ratePair: [string, string] | null;
  /** m/min, NaN = none */
  rate: Float32Array | null;
  /** ms */
  arcs: { from: number; to: number }[];
}

export interface Event {
  time: number;
  satellite: string;
  kind: string;
  elevation: number;
  signals: string[];
}

/** Count and sum by 5 degrees of elevation. */
export interface Bins {
  letter: string;
  signal: string;
  snr: { count: number; sum: number }[];
  mp: { count: number; sum: number }[];
}

export interface Detail {
  stride: number;
  leastGap: number;
  interval: number;
  cutoff: number;
  satellites: Satellite[];
  bins: Bins[];
  events: Event[];
  eventsLeftOut: number;
}

function bytesOf(base64: string): ArrayBuffer {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes.buffer;
}

function scaledSigned(base64: string, unit: number): Float32Array {
  const raw = new Int16Array(bytesOf(base64));
  const values = new Float32Array(raw.length);
  for (let i = 0; i < raw.length; ++i) values[i] = raw[i] === NO_VALUE ? NaN : raw[i] * unit;
  return values;
}

function scaledUnsigned(base64: string, unit: number, missing: number): Float32Array {
  const raw = new Uint16Array(bytesOf(base64));
  const values = new Float32Array(raw.length);
  for (let i = 0; i < raw.length; ++i) values[i] = raw[i] === missing ? NaN : raw[i] * unit;
  return values;
}

function pairs(flat: number[]): { count: number; sum: number }[] {
  const out = [];
  for (let i = 0; i + 1 < flat.length; i += 2) out.push({ count: flat[i], sum: flat[i + 1] });
  return out;
}

function decodeSignal(raw: RawSignal): Signal {
  return {
    signal: raw.signal,
    partner: raw.partner ?? null,
    snrValues: raw.snr_values,
    mpValues: raw.mp_values ?? 0,
    snr: scaledUnsigned(raw.snr, 0.01, 0),
    mp: raw.mp === undefined ? null : scaledSigned(raw.mp, 0.001),
  };
}

export function decode(raw: RawDetail): Detail {
  const first = raw.first_s * 1000 + raw.first_fraction_s * 1000;
  const step = raw.interval_s * 1000;
  const satellites = raw.satellites.map((s): Satellite => {
    const elevation = scaledSigned(s.elevation, 0.01);
    const time = new Float64Array(elevation.length);
    let row = 0;
    for (let i = 0; i + 1 < s.runs.length; i += 2) {
      for (let k = 0; k < s.runs[i + 1]; ++k) time[row++] = first + (s.runs[i] + k) * raw.stride * step;
    }
    return {
      name: s.satellite,
      letter: s.satellite[0],
      rows: elevation.length,
      time,
      elevation,
      azimuth: scaledUnsigned(s.azimuth, 0.01, -1),
      signals: s.signals.map(decodeSignal),
      ratePair: s.rate_pair ?? null,
      rate: s.rate === undefined ? null : scaledSigned(s.rate, 0.001),
      arcs: pairs(s.arcs).map((a) => ({ from: first + a.count * step, to: first + a.sum * step })),
    };
  });
  return {
    stride: raw.stride,
    leastGap: raw.least_gap,
    interval: raw.interval_s,
    cutoff: raw.cutoff_deg,
    satellites,
    bins: raw.bins.map((b) => ({ letter: b.letter, signal: b.signal, snr: pairs(b.snr), mp: pairs(b.mp) })),
    events: raw.events.map(([place, epoch, kind, elevation, bits]) => ({
      time: first + epoch * step,
      satellite: satellites[place].name,
      kind: raw.event_kinds[kind],
      elevation: elevation / 10,
      signals: satellites[place].signals.filter((_, i) => (bits >> i) & 1).map((s) => s.signal),
    })),
    eventsLeftOut: raw.events_left_out,
  };
}

// The detail columns of a page: what detail_data.cpp writes, decoded into typed arrays.

export interface RawSignal {
  signal: string;
  snr_values: number;
  /** This and the like: first byte of a column. */
  snr: number;
  partner?: string;
  mp_values?: number;
  mp?: number;
}

export interface RawSatellite {
  satellite: string;
  rows: number;
  elevation: number;
  azimuth: number;
  runs: number[];
  arcs: number[];
  gaps: number[];
  geometry_free_slips: number;
  code_jumps: number;
  signals: RawSignal[];
  rate_pair?: [string, string];
  rate?: number;
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
  holes: number[];
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
  arcs: Span[];
  /** Interruptions while in view. */
  gaps: Span[];
  geometryFreeSlips: number;
  codeJumps: number;
}

/** ms since 1970 on the GPS time scale */
export interface Span {
  from: number;
  to: number;
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
  /** Times without any satellite, between the first and the last epoch. */
  holes: Span[];
  events: Event[];
  eventsLeftOut: number;
}

/** Unpacks base64 of gzip. */
export async function unpack(base64: string): Promise<Uint8Array> {
  const text = atob(base64);
  const packed = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) packed[i] = text.charCodeAt(i);
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream('gzip'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** Reads 16-bit columns: n low bytes, then n high bytes. */
class Columns {
  private readonly bytes: Uint8Array;

  constructor(bytes: Uint8Array) {
    this.bytes = bytes;
  }

  private unsigned(place: number, rows: number, changes: boolean): Uint16Array {
    const values = new Uint16Array(rows);
    let before = 0;
    for (let i = 0; i < rows; ++i) {
      const kept = this.bytes[place + i] | (this.bytes[place + rows + i] << 8);
      before = changes ? (before + kept) & 0xffff : kept;
      values[i] = before;
    }
    return values;
  }

  /** Hundredths that change smoothly; `missing` means none. */
  hundredths(place: number, rows: number, missing: number): Float32Array {
    return Float32Array.from(this.unsigned(place, rows, true), (raw) => (raw === missing ? NaN : raw / 100));
  }

  signedHundredths(place: number, rows: number): Float32Array {
    return Float32Array.from(new Int16Array(this.unsigned(place, rows, true).buffer), (raw) => raw / 100);
  }

  thousandths(place: number, rows: number): Float32Array {
    const raw = new Int16Array(this.unsigned(place, rows, false).buffer);
    return Float32Array.from(raw, (value) => (value === NO_VALUE ? NaN : value / 1000));
  }
}

function pairs(flat: number[]): { count: number; sum: number }[] {
  const out = [];
  for (let i = 0; i + 1 < flat.length; i += 2) out.push({ count: flat[i], sum: flat[i + 1] });
  return out;
}

export function decode(bytes: Uint8Array): Detail {
  const length = new DataView(bytes.buffer, bytes.byteOffset).getUint32(0, true);
  const raw = JSON.parse(new TextDecoder().decode(bytes.subarray(4, 4 + length))) as RawDetail;
  const columns = new Columns(bytes.subarray(4 + length));
  const first = raw.first_s * 1000 + raw.first_fraction_s * 1000;
  const step = raw.interval_s * 1000;

  const spansOf = (flat: number[]): Span[] => pairs(flat).map((a) => ({ from: first + a.count * step, to: first + a.sum * step }));
  const timesOf = (s: RawSatellite): Float64Array => {
    const time = new Float64Array(s.rows);
    let row = 0;
    for (let i = 0; i + 1 < s.runs.length; i += 2) {
      for (let k = 0; k < s.runs[i + 1]; ++k) time[row++] = first + (s.runs[i] + k) * raw.stride * step;
    }
    return time;
  };
  const signalOf = (s: RawSignal, rows: number): Signal => ({
    signal: s.signal,
    partner: s.partner ?? null,
    snrValues: s.snr_values,
    mpValues: s.mp_values ?? 0,
    snr: columns.hundredths(s.snr, rows, 0),
    mp: s.mp === undefined ? null : columns.thousandths(s.mp, rows),
  });
  const satellites = raw.satellites.map(
    (s): Satellite => ({
      name: s.satellite,
      letter: s.satellite[0],
      rows: s.rows,
      time: timesOf(s),
      elevation: columns.signedHundredths(s.elevation, s.rows),
      azimuth: columns.hundredths(s.azimuth, s.rows, -1),
      signals: s.signals.map((signal) => signalOf(signal, s.rows)),
      ratePair: s.rate_pair ?? null,
      rate: s.rate === undefined ? null : columns.thousandths(s.rate, s.rows),
      arcs: spansOf(s.arcs),
      gaps: spansOf(s.gaps),
      geometryFreeSlips: s.geometry_free_slips,
      codeJumps: s.code_jumps,
    }),
  );
  return {
    stride: raw.stride,
    leastGap: raw.least_gap,
    interval: raw.interval_s,
    cutoff: raw.cutoff_deg,
    satellites,
    bins: raw.bins.map((b) => ({ letter: b.letter, signal: b.signal, snr: pairs(b.snr), mp: pairs(b.mp) })),
    holes: spansOf(raw.holes),
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

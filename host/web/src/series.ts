// Figures over time: what series_collector.cpp writes.

type List = (number | null)[];

/** A satellite (signal null), one of its signals, or a signal of a system (of: its letter). */
export interface Subject {
  of: string;
  signal: string | null;
  /** Bin of the first element of the lists. */
  first: number;
  /** Observed of expected epochs, thousandths. */
  available: List;
  slips: List;
  /** Epochs; of satellites. */
  observed?: List;
  /** Mean number, tenths; of signals of systems. */
  satellites?: List;
  /** Thousandths of TECU/min; of satellites. */
  roti?: List;
  /** Tenths of dB-Hz; of signals. */
  snr?: List;
  /** mm; of signals. */
  multipath?: List;
}

export interface Station {
  satellites: List;
  slips: List;
  pdop: List;
  clock_ps: List;
  east_mm: List;
  north_mm: List;
  up_mm: List;
}

export interface Series {
  /** ms since 1970 on the GPS time scale. */
  first: number;
  /** ms */
  bin: number;
  bins: number;
  station: Station;
  /** Signals of systems, satellites, and signals of satellites. */
  signals: Subject[];
  satellites: Subject[];
  satelliteSignals: Subject[];
}

export function decodeSeries(bytes: Uint8Array): Series {
  const raw = JSON.parse(new TextDecoder().decode(bytes)) as {
    first_s: number;
    bin_s: number;
    bins: number;
    station: Station;
    series: Subject[];
  };
  return {
    first: raw.first_s * 1000,
    bin: raw.bin_s * 1000,
    bins: raw.bins,
    station: raw.station,
    signals: raw.series.filter((s) => s.of.length === 1),
    satellites: raw.series.filter((s) => s.of.length > 1 && s.signal === null),
    satelliteSignals: raw.series.filter((s) => s.of.length > 1 && s.signal !== null),
  };
}

export const minutesOf = (series: Series): number => Math.round(series.bin / 60000);

// The report as the JSON writer gives it; null means no data.

import type { AnalysisFigures, AnalysisSatelliteFigures, AnalysisSignalFigures, AnalysisSystemFigures, BandFigures, CoverageFigures, HeadlineFigures, LibraryHeadlineFigures, LibraryRunFigures, RunFigures, SignalFigures, SlotFigures, TotalFigures, WholeFigures } from './figures';

export interface Band extends BandFigures {
  slot: number;
  band: string;
}

export interface SystemReport extends WholeFigures {
  letter: string;
  name: string;
  optimal_combination: string[];
  signals: string[];
  bands: Band[];
}

export interface SignalReport extends SignalFigures {
  letter: string;
  name: string;
  signal: string;
  band: string | null;
}

export interface SatelliteReport extends WholeFigures {
  satellite: string;
  state: string;
  bands: Band[];
}

export interface LibraryTotal extends TotalFigures {
  slots: (SlotFigures & { slot: number })[];
}

export interface Coverage extends CoverageFigures {
  satellite: string;
  state: string;
}

/** Something to look at first. */
export interface Finding {
  id: string;
  severity: 'error' | 'warning' | 'info' | 'good';
  title: string;
  text: string;
  figures: Record<string, number>;
  satellites: string[];
  signal: string | null;
}

export interface Notice {
  file: string;
  line: number | null;
  text: string;
  count: number;
  recovered: boolean;
}

/** What a recorded stream was made of. */
export interface Stream {
  format: string;
  frames: number;
  crc_errors: number;
  skipped_bytes: number;
  messages: { type: number; messages: number; damaged: number; decoded: boolean }[];
  coarse_systems: string;
  coarse_steps: { pseudorange_m: number; phase_m: number; snr_dbhz: number } | null;
}

/** What an earlier report has otherwise. */
export interface Comparison {
  file: string;
  observation_file: string;
  first_epoch_gpst: string | null;
  statements: { what: string; before: string | null; after: string | null }[];
  signals_gone: string[];
  signals_appeared: string[];
  figures: { subject: string | null; signal: string | null; figure: string; unit: string; before: number | null; after: number | null; worse: boolean | null }[];
  figures_compared: number;
}

export interface Run extends RunFigures {
  observation_file: string;
  joined_files: string[];
  stream: Stream | null;
  navigation_files: string[];
  marker: string | null;
  receiver: string | null;
  antenna: string | null;
  rinex_version: number | null;
  first_epoch_gpst: string | null;
  last_epoch_gpst: string | null;
  interval_source: string;
  navigation_coverage: Coverage[];
}

/** How a criterion of a profile came out for one figure. */
export interface Outcome {
  criterion: string;
  unit: string;
  subject: string | null;
  signal: string | null;
  direction: 'at_least' | 'at_most';
  value: number | null;
  grade: string;
  missed_by: number | null;
}

export interface ProfileVerdict {
  profile: string;
  title: string;
  grade: string;
  passed: boolean;
  outcomes: Outcome[];
}

/** Figures of our own over every signal; null or empty without data. */
export interface Analysis extends AnalysisFigures {
  with_orbits: boolean;
  solution_ecef_m: (number | null)[] | null;
  gaps: { last_before_gpst: string; first_after_gpst: string; missing_epochs: number }[];
  contradiction_list: { id: string; stated: string; found: string }[];
  without_orbit: string[];
  systems: (AnalysisSystemFigures & { letter: string })[];
  satellites?: (AnalysisSatelliteFigures & { satellite: string })[];
  signals: (AnalysisSignalFigures & { letter: string; signal: string; multipath_partner: string | null })[];
}

/** An event of the analysis; docs/user/events.md has the meaning of each member. */
export interface AnalysisEvent {
  time_gpst: string;
  satellite: string | null;
  elevation_deg: number | null;
  kind: string;
  signals: string | null;
  size_cycles: number[] | null;
  sure: boolean;
  margin: number | null;
  gap_s: number;
  loss_of_lock: boolean;
  evidence: string | null;
}

/** The figures of the library, by the rules of archives. */
export interface LibraryRecord {
  absence: { id: string; text: string } | null;
  headline: LibraryHeadlineFigures;
  run: LibraryRunFigures & { position_ecef_m: (number | null)[] | null; position_source: string };
  systems: SystemReport[];
  library_total: LibraryTotal;
  signals: SignalReport[];
  satellites?: SatelliteReport[];
  notes: { text: string }[];
}

export interface Report {
  library_version: string;
  /** The report in one line; text is what is wrong, the most harmful first. */
  verdict: { grade: 'good' | 'fair' | 'poor' | 'not judged'; text: string };
  comparison: Comparison | null;
  findings: Finding[];
  headline: HeadlineFigures;
  profile: ProfileVerdict | null;
  run: Run;
  analysis: Analysis;
  library: LibraryRecord;
  notices: Notice[];
  further_notices: number;
}

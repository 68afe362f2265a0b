// The report as the JSON writer gives it; null stands for no data.

export interface BandFigures {
  slot: number;
  band: string | null;
  mp_rms_m: number | null;
  snr_mean_dbhz: number | null;
}

export interface Figures {
  expected_epochs: number | null;
  observed_epochs: number | null;
  completeness_ratio: number | null;
  phase_geometry_slip_epochs: number | null;
  mp_restart_epochs: number | null;
  observations_per_restart: number | null;
  bands: BandFigures[];
}

export interface SystemReport extends Figures {
  letter: string;
  name: string;
  optimal_combination: string[];
  signals: string[];
}

export interface SignalReport {
  letter: string;
  name: string;
  signal: string;
  band: string | null;
  expected_epochs: number | null;
  observed_epochs: number | null;
  completeness_ratio: number | null;
  mp_rms_m: number | null;
  mp_values: number | null;
  mp_restart_epochs: number | null;
  phase_geometry_slip_epochs: number | null;
  observations_per_restart: number | null;
  snr_mean_dbhz: number | null;
  snr_mean_below_30deg_dbhz: number | null;
  snr_mean_above_30deg_dbhz: number | null;
}

export interface SatelliteReport extends Figures {
  satellite: string;
  state: string;
}

export interface Notice {
  file: string;
  line: number | null;
  text: string;
  count: number;
  recovered: boolean;
}

export interface Run {
  observation_file: string;
  navigation_files: string[];
  marker: string | null;
  receiver: string | null;
  antenna: string | null;
  rinex_version: number | null;
  first_epoch_gpst: string | null;
  last_epoch_gpst: string | null;
  duration_h: number | null;
  interval_s: number | null;
  interval_source: string;
  epochs: number;
  judged_epochs: number;
  lost_epochs: number;
  position_ecef_m: (number | null)[];
  position_source: string;
  distance_from_header_position_m: number | null;
  elevation_cutoff_deg: number | null;
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

export interface Verdict {
  profile: string;
  title: string;
  grade: string;
  passed: boolean;
  outcomes: Outcome[];
}

export interface Report {
  library_version: string;
  verdict?: Verdict | null;
  run: Run;
  systems: SystemReport[];
  library_total: Figures;
  signals: SignalReport[];
  satellites?: SatelliteReport[];
  notes: { text: string }[];
  notices: Notice[];
  further_notices: number;
}

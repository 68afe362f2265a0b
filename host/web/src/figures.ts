// Made from the figure rows of host/report (see figure_rows.h): change those, not this.

/** How a figure is shown: an empty column is in no table; ratios are shown in percent. */
export interface FigureColumn {
  key: string;
  unit: string;
  column: string;
  title: string;
  digits: number;
}

export interface RunFigures {
  duration_h: number | null;
  interval_s: number | null;
  epochs: number | null;
  judged_epochs: number | null;
  lost_epochs: number | null;
  distance_from_header_position_m: number | null;
  elevation_cutoff_deg: number | null;
  averaging_window_epochs: number | null;
}

export interface HeadlineFigures {
  expected_epochs: number | null;
  observed_epochs: number | null;
  completeness_ratio: number | null;
  mp1_rms_m: number | null;
  mp2_rms_m: number | null;
  observations_per_restart: number | null;
  satellites_observed: number | null;
  satellites_judged: number | null;
  satellites_excluded: number | null;
  satellites_unhealthy: number | null;
  satellites_without_record: number | null;
  satellites_without_position: number | null;
  satellites_below_cutoff: number | null;
  geometry_free_slips: number | null;
  code_jumps: number | null;
  receiver_slip_epochs: number | null;
  gaps_in_view: number | null;
}

export interface WholeFigures {
  expected_epochs: number | null;
  observed_epochs: number | null;
  completeness_ratio: number | null;
  phase_geometry_slip_epochs: number | null;
  mp_restart_epochs: number | null;
  observations_per_restart: number | null;
  mp_worst_rms_m: number | null;
}

export interface BandFigures {
  mp_rms_m: number | null;
  snr_mean_dbhz: number | null;
  snr_mean_below_30deg_dbhz: number | null;
  snr_mean_above_30deg_dbhz: number | null;
  iono_rms_cycles: number | null;
}

export interface TotalFigures {
  total_expected_epochs: number | null;
  total_observed_epochs: number | null;
  total_completeness_ratio: number | null;
  total_phase_geometry_slip_epochs: number | null;
  total_mp_restart_epochs: number | null;
  total_observations_per_restart: number | null;
}

export interface SlotFigures {
  total_mp_rms_m: number | null;
  total_snr_mean_dbhz: number | null;
  total_snr_mean_below_30deg_dbhz: number | null;
  total_snr_mean_above_30deg_dbhz: number | null;
  total_iono_rms_cycles: number | null;
}

export interface SignalFigures {
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

export interface CoverageFigures {
  epochs_seen: number | null;
  navigation_records: number | null;
  unhealthy_records: number | null;
  navigation_covered_ratio: number | null;
}

export const RUN: FigureColumn[] = [
  { key: 'duration_h', unit: 'h', column: "", title: "Time between first and last epoch", digits: 0 },
  { key: 'interval_s', unit: 's', column: "", title: "Interval the file is judged with", digits: 0 },
  { key: 'epochs', unit: 'epochs', column: "", title: "Epochs read", digits: 0 },
  { key: 'judged_epochs', unit: 'epochs', column: "", title: "Epochs taken into the run", digits: 0 },
  { key: 'lost_epochs', unit: 'epochs', column: "", title: "Epochs missing from the whole receiver", digits: 0 },
  { key: 'distance_from_header_position_m', unit: 'm', column: "", title: "Distance of the position used to the header's", digits: 0 },
  { key: 'elevation_cutoff_deg', unit: 'deg', column: "", title: "Elevation cut-off", digits: 0 },
  { key: 'averaging_window_epochs', unit: 'epochs', column: "", title: "Length of the multipath mean", digits: 0 },
];

export const HEADLINE: FigureColumn[] = [
  { key: 'expected_epochs', unit: 'epochs', column: "Expected", title: "Epochs at which a satellite should have been observed", digits: 0 },
  { key: 'observed_epochs', unit: 'epochs', column: "Observed", title: "Epochs with a complete observation", digits: 0 },
  { key: 'completeness_ratio', unit: '1', column: "Complete %", title: "Completeness", digits: 2 },
  { key: 'mp1_rms_m', unit: 'm', column: "", title: "Multipath of the first band slot, all systems (the headline's MP1)", digits: 3 },
  { key: 'mp2_rms_m', unit: 'm', column: "", title: "Multipath of the second band slot, all systems (the headline's MP2)", digits: 3 },
  { key: 'observations_per_restart', unit: 'epochs', column: "Obs per restart", title: "Complete observations per restart of the multipath mean", digits: 0 },
  { key: 'satellites_observed', unit: 'satellites', column: "", title: "Satellites with any value in the file", digits: 0 },
  { key: 'satellites_judged', unit: 'satellites', column: "", title: "Satellites judged", digits: 0 },
  { key: 'satellites_excluded', unit: 'satellites', column: "", title: "Satellites left out on request", digits: 0 },
  { key: 'satellites_unhealthy', unit: 'satellites', column: "", title: "Satellites that the broadcast records call unhealthy", digits: 0 },
  { key: 'satellites_without_record', unit: 'satellites', column: "", title: "Satellites without a broadcast record", digits: 0 },
  { key: 'satellites_without_position', unit: 'satellites', column: "", title: "Satellites with broadcast records and yet without a position", digits: 0 },
  { key: 'satellites_below_cutoff', unit: 'satellites', column: "", title: "Satellites that were never above the elevation cut-off", digits: 0 },
  { key: 'geometry_free_slips', unit: 'events', column: "", title: "Slips of the geometry-free phase, by satellite and epoch", digits: 0 },
  { key: 'code_jumps', unit: 'events', column: "", title: "Jumps of the code, by satellite and epoch", digits: 0 },
  { key: 'receiver_slip_epochs', unit: 'epochs', column: "", title: "Epochs at which many satellites slipped or jumped at once", digits: 0 },
  { key: 'gaps_in_view', unit: 'events', column: "", title: "Interruptions of single satellites while in view", digits: 0 },
];

export const WHOLE: FigureColumn[] = [
  { key: 'expected_epochs', unit: 'epochs', column: "Expected", title: "Epochs at which a satellite should have been observed", digits: 0 },
  { key: 'observed_epochs', unit: 'epochs', column: "Observed", title: "Epochs with a complete observation", digits: 0 },
  { key: 'completeness_ratio', unit: '1', column: "Complete %", title: "Completeness", digits: 2 },
  { key: 'phase_geometry_slip_epochs', unit: 'epochs', column: "PG slips", title: "Epochs with a cycle slip by the phase-minus-geometry test", digits: 0 },
  { key: 'mp_restart_epochs', unit: 'epochs', column: "Restarts", title: "Epochs at which the multipath mean restarted", digits: 0 },
  { key: 'observations_per_restart', unit: 'epochs', column: "Obs per restart", title: "Complete observations per restart of the multipath mean", digits: 0 },
  { key: 'mp_worst_rms_m', unit: 'm', column: "Worst MP m", title: "Largest multipath RMS of the bands of a system or satellite", digits: 3 },
];

export const SIGNAL: FigureColumn[] = [
  { key: 'expected_epochs', unit: 'epochs', column: "Expected", title: "Epochs at which a satellite should have been observed", digits: 0 },
  { key: 'observed_epochs', unit: 'epochs', column: "Observed", title: "Epochs with a complete observation", digits: 0 },
  { key: 'completeness_ratio', unit: '1', column: "Complete %", title: "Completeness", digits: 2 },
  { key: 'mp_rms_m', unit: 'm', column: "MP m", title: "Code multipath and noise (MP1 to MP6)", digits: 3 },
  { key: 'mp_values', unit: 'values', column: "MP values", title: "Number of multipath residuals in the sum", digits: 0 },
  { key: 'mp_restart_epochs', unit: 'epochs', column: "Restarts", title: "Epochs at which the multipath mean restarted", digits: 0 },
  { key: 'phase_geometry_slip_epochs', unit: 'epochs', column: "PG slips", title: "Epochs with a cycle slip by the phase-minus-geometry test", digits: 0 },
  { key: 'observations_per_restart', unit: 'epochs', column: "Obs per restart", title: "Complete observations per restart of the multipath mean", digits: 1 },
  { key: 'snr_mean_dbhz', unit: 'dB-Hz', column: "SNR", title: "Mean signal strength above the cut-off", digits: 1 },
  { key: 'snr_mean_below_30deg_dbhz', unit: 'dB-Hz', column: "\u2264 30\u00b0", title: "Mean signal strength up to 30 degrees", digits: 1 },
  { key: 'snr_mean_above_30deg_dbhz', unit: 'dB-Hz', column: "> 30\u00b0", title: "Mean signal strength above 30 degrees", digits: 1 },
];

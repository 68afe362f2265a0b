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
  elevation_cutoff_deg: number | null;
}

export interface HeadlineFigures {
  nominal_epochs: number | null;
  present_epochs: number | null;
  missing_epochs: number | null;
  data_gaps: number | null;
  cutoff_expected_epochs: number | null;
  cutoff_observed_epochs: number | null;
  cutoff_completeness_ratio: number | null;
  satellites_tracked: number | null;
  satellites_with_orbit: number | null;
  satellites_without_orbit: number | null;
  satellites_never_observed: number | null;
  cycle_slips: number | null;
  tested_steps: number | null;
  observations_per_slip: number | null;
  observations_without_slip: number | null;
  interruptions_of_satellites: number | null;
  interruptions_of_signals: number | null;
  gps_mp1_rms_m: number | null;
  gps_mp2_rms_m: number | null;
  worst_multipath_rms_m: number | null;
  solution_to_header_m: number | null;
  code_residual_rms_m: number | null;
  contradictions: number | null;
}

export interface LibraryRunFigures {
  judged_epochs: number | null;
  lost_epochs: number | null;
  distance_from_header_position_m: number | null;
  averaging_window_epochs: number | null;
}

export interface LibraryHeadlineFigures {
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

export interface AnalysisFigures {
  data_interval_s: number | null;
  nominal_epochs: number | null;
  present_epochs: number | null;
  usable_epochs: number | null;
  missing_epochs: number | null;
  disordered_epochs: number | null;
  data_gaps: number | null;
  receiver_mask_deg: number | null;
  position_solutions: number | null;
  failed_solutions: number | null;
  one_band_solutions: number | null;
  code_residual_rms_m: number | null;
  pdop_median: number | null;
  pdop_p95: number | null;
  scatter_east_m: number | null;
  scatter_north_m: number | null;
  scatter_up_m: number | null;
  antenna_moves: boolean | null;
  solution_to_header_m: number | null;
  solution_to_given_m: number | null;
  receiver_clock_offset_s: number | null;
  receiver_clock_drift_s_per_s: number | null;
  receiver_clock_resets: number | null;
  code_clock_jumps: number | null;
  receiver_restarts: number | null;
  receiver_clock_steered: boolean | null;
  allan_deviation: number | null;
  allan_deviation_10: number | null;
  satellites_without_orbit: number | null;
  satellites_never_observed: number | null;
  contradictions: number | null;
}

export interface AnalysisSystemFigures {
  satellites_tracked: number | null;
  satellites_without_orbit: number | null;
  satellites_never_observed: number | null;
  horizon_expected_epochs: number | null;
  horizon_observed_epochs: number | null;
  horizon_completeness_ratio: number | null;
  cutoff_expected_epochs: number | null;
  cutoff_observed_epochs: number | null;
  cutoff_completeness_ratio: number | null;
  sure_slips: number | null;
  unsure_slips: number | null;
  half_cycle_slips: number | null;
  phase_jumps: number | null;
  tested_steps: number | null;
  untested_steps: number | null;
  weakly_tested_steps: number | null;
  observations_per_slip: number | null;
  observations_without_slip: number | null;
  slips_per_1000_observations: number | null;
  loss_of_lock_flags: number | null;
  loss_of_lock_with_slip: number | null;
  below_cutoff_sure_slips: number | null;
  below_cutoff_unsure_slips: number | null;
  below_cutoff_half_cycle_slips: number | null;
  below_cutoff_phase_jumps: number | null;
  below_cutoff_tested_steps: number | null;
  below_cutoff_untested_steps: number | null;
  below_cutoff_weakly_tested_steps: number | null;
  below_cutoff_observations_per_slip: number | null;
  below_cutoff_observations_without_slip: number | null;
  below_cutoff_slips_per_1000_observations: number | null;
  below_cutoff_loss_of_lock_flags: number | null;
  below_cutoff_loss_of_lock_with_slip: number | null;
  arcs: number | null;
  median_arc_s: number | null;
  longest_arc_s: number | null;
  interruptions_of_signals: number | null;
  interruptions_of_satellites: number | null;
  interruptions_of_receiver: number | null;
  continuous_interruptions: number | null;
  slipped_interruptions: number | null;
  unresolved_interruptions: number | null;
  below_cutoff_interruptions_of_signals: number | null;
  below_cutoff_interruptions_of_satellites: number | null;
  below_cutoff_interruptions_of_receiver: number | null;
  below_cutoff_continuous_interruptions: number | null;
  below_cutoff_slipped_interruptions: number | null;
  below_cutoff_unresolved_interruptions: number | null;
  roti_median_tecu_min: number | null;
  roti_p95_tecu_min: number | null;
  roti_windows: number | null;
  disturbed_minutes: number | null;
  ionosphere_events: number | null;
}

export interface AnalysisSignalFigures {
  frequency_hz: number | null;
  signal_satellites: number | null;
  code_values: number | null;
  phase_values: number | null;
  doppler_values: number | null;
  strength_values: number | null;
  horizon_expected_epochs: number | null;
  horizon_observed_epochs: number | null;
  horizon_completeness_ratio: number | null;
  cutoff_expected_epochs: number | null;
  cutoff_observed_epochs: number | null;
  cutoff_completeness_ratio: number | null;
  strength_mean_dbhz: number | null;
  strength_p5_dbhz: number | null;
  strength_values_used: number | null;
  strength_drops: number | null;
  multipath_moving_rms_m: number | null;
  multipath_arc_rms_m: number | null;
  multipath_values: number | null;
  code_noise_m: number | null;
  phase_noise_mm: number | null;
  phase_noise_values: number | null;
  sure_slips: number | null;
  unsure_slips: number | null;
  half_cycle_slips: number | null;
  phase_jumps: number | null;
  tested_steps: number | null;
  untested_steps: number | null;
  weakly_tested_steps: number | null;
  observations_per_slip: number | null;
  observations_without_slip: number | null;
  slips_per_1000_observations: number | null;
  loss_of_lock_flags: number | null;
  loss_of_lock_with_slip: number | null;
  below_cutoff_sure_slips: number | null;
  below_cutoff_unsure_slips: number | null;
  below_cutoff_half_cycle_slips: number | null;
  below_cutoff_phase_jumps: number | null;
  below_cutoff_tested_steps: number | null;
  below_cutoff_untested_steps: number | null;
  below_cutoff_weakly_tested_steps: number | null;
  below_cutoff_observations_per_slip: number | null;
  below_cutoff_observations_without_slip: number | null;
  below_cutoff_slips_per_1000_observations: number | null;
  below_cutoff_loss_of_lock_flags: number | null;
  below_cutoff_loss_of_lock_with_slip: number | null;
  arcs: number | null;
  median_arc_s: number | null;
  longest_arc_s: number | null;
  interruptions_of_signals: number | null;
  interruptions_of_satellites: number | null;
  interruptions_of_receiver: number | null;
  continuous_interruptions: number | null;
  slipped_interruptions: number | null;
  unresolved_interruptions: number | null;
  below_cutoff_interruptions_of_signals: number | null;
  below_cutoff_interruptions_of_satellites: number | null;
  below_cutoff_interruptions_of_receiver: number | null;
  below_cutoff_continuous_interruptions: number | null;
  below_cutoff_slipped_interruptions: number | null;
  below_cutoff_unresolved_interruptions: number | null;
}

export interface AnalysisSatelliteFigures {
  has_orbit: boolean | null;
  tracked_epochs: number | null;
  highest_elevation_deg: number | null;
  horizon_expected_epochs: number | null;
  horizon_observed_epochs: number | null;
  horizon_completeness_ratio: number | null;
  cutoff_expected_epochs: number | null;
  cutoff_observed_epochs: number | null;
  cutoff_completeness_ratio: number | null;
  sure_slips: number | null;
  unsure_slips: number | null;
  half_cycle_slips: number | null;
  phase_jumps: number | null;
  tested_steps: number | null;
  untested_steps: number | null;
  weakly_tested_steps: number | null;
  observations_per_slip: number | null;
  observations_without_slip: number | null;
  slips_per_1000_observations: number | null;
  loss_of_lock_flags: number | null;
  loss_of_lock_with_slip: number | null;
  below_cutoff_sure_slips: number | null;
  below_cutoff_unsure_slips: number | null;
  below_cutoff_half_cycle_slips: number | null;
  below_cutoff_phase_jumps: number | null;
  below_cutoff_tested_steps: number | null;
  below_cutoff_untested_steps: number | null;
  below_cutoff_weakly_tested_steps: number | null;
  below_cutoff_observations_per_slip: number | null;
  below_cutoff_observations_without_slip: number | null;
  below_cutoff_slips_per_1000_observations: number | null;
  below_cutoff_loss_of_lock_flags: number | null;
  below_cutoff_loss_of_lock_with_slip: number | null;
  arcs: number | null;
  median_arc_s: number | null;
  longest_arc_s: number | null;
  interruptions_of_signals: number | null;
  interruptions_of_satellites: number | null;
  interruptions_of_receiver: number | null;
  continuous_interruptions: number | null;
  slipped_interruptions: number | null;
  unresolved_interruptions: number | null;
  below_cutoff_interruptions_of_signals: number | null;
  below_cutoff_interruptions_of_satellites: number | null;
  below_cutoff_interruptions_of_receiver: number | null;
  below_cutoff_continuous_interruptions: number | null;
  below_cutoff_slipped_interruptions: number | null;
  below_cutoff_unresolved_interruptions: number | null;
  satellite_clock_events: number | null;
}

export interface WideLaneFigures {
  wide_lane_spread_cycles: number | null;
  wide_lane_spread_m: number | null;
  wide_lane_values: number | null;
}

export const RUN: FigureColumn[] = [
  { key: 'duration_h', unit: 'h', column: "", title: "Time between first and last epoch", digits: 0 },
  { key: 'interval_s', unit: 's', column: "", title: "Interval the file is judged with", digits: 0 },
  { key: 'epochs', unit: 'epochs', column: "", title: "Epochs read", digits: 0 },
  { key: 'elevation_cutoff_deg', unit: 'deg', column: "", title: "Elevation cut-off", digits: 0 },
];

export const HEADLINE: FigureColumn[] = [
  { key: 'nominal_epochs', unit: 'epochs', column: "", title: "Epochs that the file should hold", digits: 0 },
  { key: 'present_epochs', unit: 'epochs', column: "", title: "Nominal epochs with any observation", digits: 0 },
  { key: 'missing_epochs', unit: 'epochs', column: "", title: "Nominal epochs without any observation", digits: 0 },
  { key: 'data_gaps', unit: 'events', column: "", title: "Gaps of the whole file", digits: 0 },
  { key: 'cutoff_expected_epochs', unit: 'epochs', column: "", title: "Epochs at which signals should have been observed, from the cut-off up", digits: 0 },
  { key: 'cutoff_observed_epochs', unit: 'epochs', column: "", title: "Expected epochs with code and phase, from the cut-off up", digits: 0 },
  { key: 'cutoff_completeness_ratio', unit: '1', column: "Cut-off %", title: "Completeness from the cut-off up", digits: 2 },
  { key: 'satellites_tracked', unit: 'satellites', column: "Satellites", title: "Satellites of a system in the file", digits: 0 },
  { key: 'satellites_with_orbit', unit: 'satellites', column: "", title: "Observed satellites with an orbit", digits: 0 },
  { key: 'satellites_without_orbit', unit: 'satellites', column: "No orbit", title: "Observed satellites without an orbit", digits: 0 },
  { key: 'satellites_never_observed', unit: 'satellites', column: "", title: "Satellites in view that were never observed", digits: 0 },
  { key: 'cycle_slips', unit: 'events', column: "Slips", title: "Cycle slips of satellites, of every size", digits: 0 },
  { key: 'tested_steps', unit: 'steps', column: "Tested steps", title: "Steps at whose end a slip would have been seen", digits: 0 },
  { key: 'observations_per_slip', unit: 'epochs', column: "", title: "Tested observations per cycle slip", digits: 0 },
  { key: 'observations_without_slip', unit: 'epochs', column: "", title: "Tested observations where there is no slip", digits: 0 },
  { key: 'interruptions_of_satellites', unit: 'events', column: "", title: "Interruptions of a satellite while others went on", digits: 0 },
  { key: 'interruptions_of_signals', unit: 'events', column: "", title: "Interruptions of a signal while others of the satellite went on", digits: 0 },
  { key: 'gps_mp1_rms_m', unit: 'm', column: "MP1 m", title: "MP1: multipath of the GPS signal of band 1 that archives use", digits: 3 },
  { key: 'gps_mp2_rms_m', unit: 'm', column: "MP2 m", title: "MP2: multipath of the GPS signal of band 2 that archives use", digits: 3 },
  { key: 'worst_multipath_rms_m', unit: 'm', column: "", title: "Multipath of the signal that has the most", digits: 3 },
  { key: 'solution_to_header_m', unit: 'm', column: "", title: "Distance of the position to the header's", digits: 2 },
  { key: 'code_residual_rms_m', unit: 'm', column: "", title: "RMS of the code residuals of the positions", digits: 2 },
  { key: 'contradictions', unit: 'events', column: "", title: "Statements of header and file name that the data contradict", digits: 0 },
];

export const LIBRARY_RUN: FigureColumn[] = [
  { key: 'judged_epochs', unit: 'epochs', column: "", title: "Epochs taken into the run", digits: 0 },
  { key: 'lost_epochs', unit: 'epochs', column: "", title: "Epochs missing from the whole receiver", digits: 0 },
  { key: 'distance_from_header_position_m', unit: 'm', column: "", title: "Distance of the position used to the header's", digits: 0 },
  { key: 'averaging_window_epochs', unit: 'epochs', column: "", title: "Length of the multipath mean", digits: 0 },
];

export const LIBRARY_HEADLINE: FigureColumn[] = [
  { key: 'expected_epochs', unit: 'epochs', column: "Expected", title: "Epochs at which a satellite should have been observed", digits: 0 },
  { key: 'observed_epochs', unit: 'epochs', column: "Observed", title: "Epochs with a complete observation", digits: 0 },
  { key: 'completeness_ratio', unit: '1', column: "Complete %", title: "Completeness", digits: 2 },
  { key: 'mp1_rms_m', unit: 'm', column: "", title: "Multipath of the first band slot, all systems (MP1 of the library's headline)", digits: 3 },
  { key: 'mp2_rms_m', unit: 'm', column: "", title: "Multipath of the second band slot, all systems (MP2 of the library's headline)", digits: 3 },
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

export const ANALYSIS: FigureColumn[] = [
  { key: 'data_interval_s', unit: 's', column: "", title: "Interval of the data", digits: 0 },
  { key: 'nominal_epochs', unit: 'epochs', column: "", title: "Epochs that the file should hold", digits: 0 },
  { key: 'present_epochs', unit: 'epochs', column: "", title: "Nominal epochs with any observation", digits: 0 },
  { key: 'usable_epochs', unit: 'epochs', column: "", title: "Nominal epochs that allow a position", digits: 0 },
  { key: 'missing_epochs', unit: 'epochs', column: "", title: "Nominal epochs without any observation", digits: 0 },
  { key: 'disordered_epochs', unit: 'epochs', column: "", title: "Epochs that do not go on in time", digits: 0 },
  { key: 'data_gaps', unit: 'events', column: "", title: "Gaps of the whole file", digits: 0 },
  { key: 'receiver_mask_deg', unit: 'deg', column: "", title: "The receiver's own elevation mask, as the data show it", digits: 0 },
  { key: 'position_solutions', unit: 'epochs', column: "", title: "Epochs with a position", digits: 0 },
  { key: 'failed_solutions', unit: 'epochs', column: "", title: "Epochs without a position", digits: 0 },
  { key: 'one_band_solutions', unit: 'epochs', column: "", title: "Positions with the ionosphere in them", digits: 0 },
  { key: 'code_residual_rms_m', unit: 'm', column: "", title: "RMS of the code residuals of the positions", digits: 0 },
  { key: 'pdop_median', unit: '1', column: "", title: "Median PDOP", digits: 0 },
  { key: 'pdop_p95', unit: '1', column: "", title: "PDOP that 95 % of the solutions keep", digits: 0 },
  { key: 'scatter_east_m', unit: 'm', column: "", title: "Scatter of the positions, east", digits: 0 },
  { key: 'scatter_north_m', unit: 'm', column: "", title: "Scatter of the positions, north", digits: 0 },
  { key: 'scatter_up_m', unit: 'm', column: "", title: "Scatter of the positions, up", digits: 0 },
  { key: 'antenna_moves', unit: '1', column: "", title: "Whether the antenna moves", digits: 0 },
  { key: 'solution_to_header_m', unit: 'm', column: "", title: "Distance of the position to the header's", digits: 0 },
  { key: 'solution_to_given_m', unit: 'm', column: "", title: "Distance of the position to the one given", digits: 0 },
  { key: 'receiver_clock_offset_s', unit: 's', column: "", title: "Mean offset of the receiver clock", digits: 0 },
  { key: 'receiver_clock_drift_s_per_s', unit: 's/s', column: "", title: "Drift of the receiver clock", digits: 0 },
  { key: 'receiver_clock_resets', unit: 'events', column: "", title: "Resets of the receiver clock", digits: 0 },
  { key: 'code_clock_jumps', unit: 'events', column: "", title: "Jumps of the codes of all satellites", digits: 0 },
  { key: 'receiver_restarts', unit: 'events', column: "", title: "Steps whose receiver clock cannot be known", digits: 0 },
  { key: 'receiver_clock_steered', unit: '1', column: "", title: "Whether the receiver clock is steered", digits: 0 },
  { key: 'allan_deviation', unit: '1', column: "", title: "Allan deviation of the receiver clock at the interval", digits: 0 },
  { key: 'allan_deviation_10', unit: '1', column: "", title: "Allan deviation of the receiver clock at ten times the interval", digits: 0 },
  { key: 'satellites_without_orbit', unit: 'satellites', column: "No orbit", title: "Observed satellites without an orbit", digits: 0 },
  { key: 'satellites_never_observed', unit: 'satellites', column: "", title: "Satellites in view that were never observed", digits: 0 },
  { key: 'contradictions', unit: 'events', column: "", title: "Statements of header and file name that the data contradict", digits: 0 },
];

export const ANALYSIS_SYSTEM: FigureColumn[] = [
  { key: 'satellites_tracked', unit: 'satellites', column: "Satellites", title: "Satellites of a system in the file", digits: 0 },
  { key: 'satellites_without_orbit', unit: 'satellites', column: "No orbit", title: "Observed satellites without an orbit", digits: 0 },
  { key: 'satellites_never_observed', unit: 'satellites', column: "", title: "Satellites in view that were never observed", digits: 0 },
  { key: 'horizon_expected_epochs', unit: 'epochs', column: "", title: "Epochs at which signals should have been observed, from the horizon up", digits: 0 },
  { key: 'horizon_observed_epochs', unit: 'epochs', column: "", title: "Expected epochs with code and phase, from the horizon up", digits: 0 },
  { key: 'horizon_completeness_ratio', unit: '1', column: "Horizon %", title: "Completeness from the horizon up", digits: 2 },
  { key: 'cutoff_expected_epochs', unit: 'epochs', column: "", title: "Epochs at which signals should have been observed, from the cut-off up", digits: 0 },
  { key: 'cutoff_observed_epochs', unit: 'epochs', column: "", title: "Expected epochs with code and phase, from the cut-off up", digits: 0 },
  { key: 'cutoff_completeness_ratio', unit: '1', column: "Cut-off %", title: "Completeness from the cut-off up", digits: 2 },
  { key: 'sure_slips', unit: 'events', column: "Slips", title: "Cycle slips whose size is certain", digits: 0 },
  { key: 'unsure_slips', unit: 'events', column: "Unsure", title: "Cycle slips with another size nearly as likely", digits: 0 },
  { key: 'half_cycle_slips', unit: 'events', column: "Half cycles", title: "Slips with a half cycle among their sizes", digits: 0 },
  { key: 'phase_jumps', unit: 'events', column: "Jumps of phase", title: "Breaks of the phase by an unknown size", digits: 0 },
  { key: 'tested_steps', unit: 'steps', column: "Tested steps", title: "Steps at whose end a slip would have been seen", digits: 0 },
  { key: 'untested_steps', unit: 'steps', column: "", title: "Steps that could not be tested", digits: 0 },
  { key: 'weakly_tested_steps', unit: 'steps', column: "", title: "Tested steps that would hide a slip on all signals at once", digits: 0 },
  { key: 'observations_per_slip', unit: 'epochs', column: "", title: "Tested observations per cycle slip", digits: 0 },
  { key: 'observations_without_slip', unit: 'epochs', column: "", title: "Tested observations where there is no slip", digits: 0 },
  { key: 'slips_per_1000_observations', unit: '1', column: "", title: "Cycle slips per 1,000 tested observations", digits: 0 },
  { key: 'loss_of_lock_flags', unit: 'events', column: "", title: "Loss-of-lock flags of the receiver", digits: 0 },
  { key: 'loss_of_lock_with_slip', unit: 'events', column: "", title: "Loss-of-lock flags that agree with a slip", digits: 0 },
  { key: 'below_cutoff_sure_slips', unit: 'events', column: "", title: "Cycle slips below the cut-off whose size is certain", digits: 0 },
  { key: 'below_cutoff_unsure_slips', unit: 'events', column: "", title: "Cycle slips below the cut-off with another size nearly as likely", digits: 0 },
  { key: 'below_cutoff_half_cycle_slips', unit: 'events', column: "", title: "Slips below the cut-off with a half cycle among their sizes", digits: 0 },
  { key: 'below_cutoff_phase_jumps', unit: 'events', column: "", title: "Breaks of the phase by an unknown size, below the cut-off", digits: 0 },
  { key: 'below_cutoff_tested_steps', unit: 'steps', column: "", title: "Steps below the cut-off at whose end a slip would have been seen", digits: 0 },
  { key: 'below_cutoff_untested_steps', unit: 'steps', column: "", title: "Steps below the cut-off that could not be tested", digits: 0 },
  { key: 'below_cutoff_weakly_tested_steps', unit: 'steps', column: "", title: "Tested steps below the cut-off that would hide a slip on all signals at once", digits: 0 },
  { key: 'below_cutoff_observations_per_slip', unit: 'epochs', column: "", title: "Tested observations per cycle slip, below the cut-off", digits: 0 },
  { key: 'below_cutoff_observations_without_slip', unit: 'epochs', column: "", title: "Tested observations below the cut-off where there is no slip", digits: 0 },
  { key: 'below_cutoff_slips_per_1000_observations', unit: '1', column: "", title: "Cycle slips per 1,000 tested observations, below the cut-off", digits: 0 },
  { key: 'below_cutoff_loss_of_lock_flags', unit: 'events', column: "", title: "Loss-of-lock flags of the receiver, below the cut-off", digits: 0 },
  { key: 'below_cutoff_loss_of_lock_with_slip', unit: 'events', column: "", title: "Loss-of-lock flags that agree with a slip, below the cut-off", digits: 0 },
  { key: 'arcs', unit: 'events', column: "Arcs", title: "Arcs of continuous phase", digits: 0 },
  { key: 'median_arc_s', unit: 's', column: "", title: "Median length of the arcs", digits: 0 },
  { key: 'longest_arc_s', unit: 's', column: "", title: "Length of the longest arc", digits: 0 },
  { key: 'interruptions_of_signals', unit: 'events', column: "", title: "Interruptions of a signal while others of the satellite went on", digits: 0 },
  { key: 'interruptions_of_satellites', unit: 'events', column: "", title: "Interruptions of a satellite while others went on", digits: 0 },
  { key: 'interruptions_of_receiver', unit: 'events', column: "", title: "Interruptions of the whole receiver", digits: 0 },
  { key: 'continuous_interruptions', unit: 'events', column: "", title: "Interruptions after which the phases go on", digits: 0 },
  { key: 'slipped_interruptions', unit: 'events', column: "", title: "Interruptions after which the phase slipped", digits: 0 },
  { key: 'unresolved_interruptions', unit: 'events', column: "", title: "Interruptions after which it is not known whether the phase goes on", digits: 0 },
  { key: 'below_cutoff_interruptions_of_signals', unit: 'events', column: "", title: "Interruptions of a signal while others of the satellite went on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_interruptions_of_satellites', unit: 'events', column: "", title: "Interruptions of a satellite while others went on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_interruptions_of_receiver', unit: 'events', column: "", title: "Interruptions of the whole receiver, of satellites below the cut-off", digits: 0 },
  { key: 'below_cutoff_continuous_interruptions', unit: 'events', column: "", title: "Interruptions after which the phases go on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_slipped_interruptions', unit: 'events', column: "", title: "Interruptions after which the phase slipped, below the cut-off", digits: 0 },
  { key: 'below_cutoff_unresolved_interruptions', unit: 'events', column: "", title: "Interruptions after which it is not known whether the phase goes on, below the cut-off", digits: 0 },
  { key: 'roti_median_tecu_min', unit: 'TECU/min', column: "", title: "Ionospheric activity: median ROTI", digits: 0 },
  { key: 'roti_p95_tecu_min', unit: 'TECU/min', column: "ROTI 95 %", title: "Ionospheric activity: 95th percentile of ROTI", digits: 2 },
  { key: 'roti_windows', unit: 'values', column: "", title: "Windows of ROTI", digits: 0 },
  { key: 'disturbed_minutes', unit: 'min', column: "", title: "Minutes of a disturbed ionosphere", digits: 0 },
  { key: 'ionosphere_events', unit: 'events', column: "", title: "Steps that only a patch of ionosphere explains", digits: 0 },
];

export const ANALYSIS_SIGNAL: FigureColumn[] = [
  { key: 'frequency_hz', unit: 'Hz', column: "", title: "Carrier frequency of a signal", digits: 0 },
  { key: 'signal_satellites', unit: 'satellites', column: "Sats", title: "Satellites that a signal was observed on", digits: 0 },
  { key: 'code_values', unit: 'values', column: "Codes", title: "Pseudoranges of a signal in the file", digits: 0 },
  { key: 'phase_values', unit: 'values', column: "Phases", title: "Carrier phases of a signal in the file", digits: 0 },
  { key: 'doppler_values', unit: 'values', column: "", title: "Doppler values of a signal in the file", digits: 0 },
  { key: 'strength_values', unit: 'values', column: "", title: "Signal strengths of a signal in the file", digits: 0 },
  { key: 'horizon_expected_epochs', unit: 'epochs', column: "", title: "Epochs at which signals should have been observed, from the horizon up", digits: 0 },
  { key: 'horizon_observed_epochs', unit: 'epochs', column: "", title: "Expected epochs with code and phase, from the horizon up", digits: 0 },
  { key: 'horizon_completeness_ratio', unit: '1', column: "Horizon %", title: "Completeness from the horizon up", digits: 2 },
  { key: 'cutoff_expected_epochs', unit: 'epochs', column: "", title: "Epochs at which signals should have been observed, from the cut-off up", digits: 0 },
  { key: 'cutoff_observed_epochs', unit: 'epochs', column: "", title: "Expected epochs with code and phase, from the cut-off up", digits: 0 },
  { key: 'cutoff_completeness_ratio', unit: '1', column: "Cut-off %", title: "Completeness from the cut-off up", digits: 2 },
  { key: 'strength_mean_dbhz', unit: 'dB-Hz', column: "SNR dB-Hz", title: "Mean signal strength", digits: 1 },
  { key: 'strength_p5_dbhz', unit: 'dB-Hz', column: "SNR 5 %", title: "Signal strength that 95 % of the values exceed", digits: 1 },
  { key: 'strength_values_used', unit: 'values', column: "", title: "Values in the mean of the signal strength", digits: 0 },
  { key: 'strength_drops', unit: 'events', column: "", title: "Times at which a signal was weaker than it usually is", digits: 0 },
  { key: 'multipath_moving_rms_m', unit: 'm', column: "MP m", title: "Code multipath and noise about a moving mean", digits: 3 },
  { key: 'multipath_arc_rms_m', unit: 'm', column: "MP arc m", title: "Code multipath and noise about the mean of each arc", digits: 3 },
  { key: 'multipath_values', unit: 'values', column: "", title: "Values in the multipath RMS", digits: 0 },
  { key: 'code_noise_m', unit: 'm', column: "Noise m", title: "White noise of the code", digits: 3 },
  { key: 'phase_noise_mm', unit: 'mm', column: "Phase mm", title: "Noise of the phase", digits: 2 },
  { key: 'phase_noise_values', unit: 'values', column: "", title: "Values in the noise of the phase", digits: 0 },
  { key: 'sure_slips', unit: 'events', column: "Slips", title: "Cycle slips whose size is certain", digits: 0 },
  { key: 'unsure_slips', unit: 'events', column: "Unsure", title: "Cycle slips with another size nearly as likely", digits: 0 },
  { key: 'half_cycle_slips', unit: 'events', column: "Half cycles", title: "Slips with a half cycle among their sizes", digits: 0 },
  { key: 'phase_jumps', unit: 'events', column: "Jumps of phase", title: "Breaks of the phase by an unknown size", digits: 0 },
  { key: 'tested_steps', unit: 'steps', column: "Tested steps", title: "Steps at whose end a slip would have been seen", digits: 0 },
  { key: 'untested_steps', unit: 'steps', column: "", title: "Steps that could not be tested", digits: 0 },
  { key: 'weakly_tested_steps', unit: 'steps', column: "", title: "Tested steps that would hide a slip on all signals at once", digits: 0 },
  { key: 'observations_per_slip', unit: 'epochs', column: "", title: "Tested observations per cycle slip", digits: 0 },
  { key: 'observations_without_slip', unit: 'epochs', column: "", title: "Tested observations where there is no slip", digits: 0 },
  { key: 'slips_per_1000_observations', unit: '1', column: "", title: "Cycle slips per 1,000 tested observations", digits: 0 },
  { key: 'loss_of_lock_flags', unit: 'events', column: "", title: "Loss-of-lock flags of the receiver", digits: 0 },
  { key: 'loss_of_lock_with_slip', unit: 'events', column: "", title: "Loss-of-lock flags that agree with a slip", digits: 0 },
  { key: 'below_cutoff_sure_slips', unit: 'events', column: "", title: "Cycle slips below the cut-off whose size is certain", digits: 0 },
  { key: 'below_cutoff_unsure_slips', unit: 'events', column: "", title: "Cycle slips below the cut-off with another size nearly as likely", digits: 0 },
  { key: 'below_cutoff_half_cycle_slips', unit: 'events', column: "", title: "Slips below the cut-off with a half cycle among their sizes", digits: 0 },
  { key: 'below_cutoff_phase_jumps', unit: 'events', column: "", title: "Breaks of the phase by an unknown size, below the cut-off", digits: 0 },
  { key: 'below_cutoff_tested_steps', unit: 'steps', column: "", title: "Steps below the cut-off at whose end a slip would have been seen", digits: 0 },
  { key: 'below_cutoff_untested_steps', unit: 'steps', column: "", title: "Steps below the cut-off that could not be tested", digits: 0 },
  { key: 'below_cutoff_weakly_tested_steps', unit: 'steps', column: "", title: "Tested steps below the cut-off that would hide a slip on all signals at once", digits: 0 },
  { key: 'below_cutoff_observations_per_slip', unit: 'epochs', column: "", title: "Tested observations per cycle slip, below the cut-off", digits: 0 },
  { key: 'below_cutoff_observations_without_slip', unit: 'epochs', column: "", title: "Tested observations below the cut-off where there is no slip", digits: 0 },
  { key: 'below_cutoff_slips_per_1000_observations', unit: '1', column: "", title: "Cycle slips per 1,000 tested observations, below the cut-off", digits: 0 },
  { key: 'below_cutoff_loss_of_lock_flags', unit: 'events', column: "", title: "Loss-of-lock flags of the receiver, below the cut-off", digits: 0 },
  { key: 'below_cutoff_loss_of_lock_with_slip', unit: 'events', column: "", title: "Loss-of-lock flags that agree with a slip, below the cut-off", digits: 0 },
  { key: 'arcs', unit: 'events', column: "Arcs", title: "Arcs of continuous phase", digits: 0 },
  { key: 'median_arc_s', unit: 's', column: "", title: "Median length of the arcs", digits: 0 },
  { key: 'longest_arc_s', unit: 's', column: "", title: "Length of the longest arc", digits: 0 },
  { key: 'interruptions_of_signals', unit: 'events', column: "", title: "Interruptions of a signal while others of the satellite went on", digits: 0 },
  { key: 'interruptions_of_satellites', unit: 'events', column: "", title: "Interruptions of a satellite while others went on", digits: 0 },
  { key: 'interruptions_of_receiver', unit: 'events', column: "", title: "Interruptions of the whole receiver", digits: 0 },
  { key: 'continuous_interruptions', unit: 'events', column: "", title: "Interruptions after which the phases go on", digits: 0 },
  { key: 'slipped_interruptions', unit: 'events', column: "", title: "Interruptions after which the phase slipped", digits: 0 },
  { key: 'unresolved_interruptions', unit: 'events', column: "", title: "Interruptions after which it is not known whether the phase goes on", digits: 0 },
  { key: 'below_cutoff_interruptions_of_signals', unit: 'events', column: "", title: "Interruptions of a signal while others of the satellite went on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_interruptions_of_satellites', unit: 'events', column: "", title: "Interruptions of a satellite while others went on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_interruptions_of_receiver', unit: 'events', column: "", title: "Interruptions of the whole receiver, of satellites below the cut-off", digits: 0 },
  { key: 'below_cutoff_continuous_interruptions', unit: 'events', column: "", title: "Interruptions after which the phases go on, below the cut-off", digits: 0 },
  { key: 'below_cutoff_slipped_interruptions', unit: 'events', column: "", title: "Interruptions after which the phase slipped, below the cut-off", digits: 0 },
  { key: 'below_cutoff_unresolved_interruptions', unit: 'events', column: "", title: "Interruptions after which it is not known whether the phase goes on, below the cut-off", digits: 0 },
];

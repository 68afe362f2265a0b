// What every figure of a report means. The text here is what `orsolva explain` prints.
#include "host/report/figures.h"

namespace orsolva_host {
namespace {

constexpr char kWholeRun[] = "the whole run";
constexpr char kNoReset[] = "never reset within a run";
constexpr char kNoCutoff[] = "independent of the elevation cut-off";
constexpr char kAboveCutoff[] =
    "only epochs with the satellite above the elevation cut-off (default 10 degrees)";
constexpr char kNoDenominator[] = "none";
constexpr char kHave[] =
    "Estey and Meertens 1999, GPS Solutions 3(1), "
    "pp. 42-49 (expected and complete observations)";
constexpr char kMultipath[] =
    "Estey and Meertens 1999, GPS Solutions 3(1), pp. 42-49, eq. 4 and 5 (the combination)";
constexpr char kRinexHeader[] = "RINEX 3.05, table A2 (header records)";
constexpr char kSnrSource[] =
    "RINEX 3.05, section 5.7 (signal strength observations in dB-Hz, as the receiver delivers them)";
constexpr char kSnrReset[] = "never reset within a run; values of 0 or below are left out";
constexpr char kBlewitt[] =
    "Blewitt 1990, An automatic editing algorithm for GPS data, Geophysical Research Letters 17(3), pp. "
    "199-202 (the phase combinations)";

}  // namespace

const Figure kFigureTable[] = {
    // ---- counts and completeness
    {"expected_epochs", "epochs", "expected exp #expt",
     "Epochs at which a satellite should have been observed",
     "The nominal epochs (first epoch plus whole intervals) at which the satellite stood above the cut-off, "
     "counted between its first and last observed epoch; summed over satellites. Epochs missing inside that "
     "span count as expected.",
     kWholeRun, kNoReset,
     "only nominal epochs with the satellite above the elevation cut-off; the elevation comes from the "
     "broadcast "
     "records",
     kNoDenominator, kHave},
    {"observed_epochs", "epochs", "observed obs have #have", "Epochs with a complete observation",
     "Epochs at which pseudorange, phase and SNR are all present: of the one code for a signal; of every "
     "code "
     "of the combination for a satellite or a system, where a combination of several codes leaves GPS L5, "
     "GLONASS G3, QZSS L5 and L6 and the bands that a BDS generation does not send out of account. A "
     "satellite without a complete observation of the system's combination adds the count of its own best "
     "one.",
     kWholeRun, kNoReset, kAboveCutoff, kNoDenominator, kHave},
    {"completeness_ratio", "1", "completeness compl compl% percent %", "Completeness",
     "observed_epochs / expected_epochs. A system divides the sums over its satellites, the library total "
     "the "
     "sums over the systems; a mean of ratios is never formed.",
     kWholeRun, kNoReset, kAboveCutoff, "expected_epochs", kHave},
    {"optimal_combination", "", "combination", "Best combination of signals of a system",
     "Of the combinations with one code a band (at most 10), the one with the highest completeness; the "
     "first "
     "of equal ones. All figures of a system and of its satellites belong to it.",
     kWholeRun, kNoReset, kAboveCutoff, kNoDenominator,
     "this system's own rule; the signals are named as in RINEX 3.05, tables 4 to 10"},
    // ---- multipath
    {"mp_rms_m", "m", "mp mp1 mp2 mp3 mp4 mp5 mp6 multipath mp_rms mp1_rms_m mp2_rms_m",
     "Code multipath and noise (MP1 to MP6)",
     "For code i with its partner on another band k: m = P_i - (f_i^2 + f_k^2)/(f_i^2 - f_k^2) lambda_i L_i "
     "+ 2 "
     "f_k^2/(f_i^2 - f_k^2) lambda_k L_k, free of geometry and of the first-order ionosphere. r = m less the "
     "mean of the window, the value itself included. mp = sqrt(sum r^2 / n). Systems pool their satellites "
     "by "
     "sqrt(sum n mp^2 / sum n). The digit of MP1 to MP6 is the band slot.",
     "a moving mean over the last 50 values at intervals up to 5 s, over 300 s up to 30 s, over 10 values "
     "beyond. Multipath slower than the window is taken out with the bias, so only figures of equal windows "
     "compare.",
     "the mean restarts, and that epoch adds r = 0, after a gap of more than 600 s; after a geometry-free "
     "slip (see mp_restart_epochs); and when r differs from the mean of the last residuals by more than 5.5 "
     "m (GPS and "
     "QZSS "
     "bands 1, 5, QZSS 6), 5.75 m (GPS and QZSS band 2), 5.6 m (GLONASS bands 1, 3), 6.25 m (GLONASS band "
     "2), "
     "5.4 m (BDS, Galileo).",
     "the sum holds only epochs above the elevation cut-off; the mean runs on below it",
     "mp_values, the number n of residuals in the sum, restarts included", kMultipath},
    {"mp_values", "values", "mp_count", "Number of multipath residuals in the sum",
     "One for every epoch with pseudorange and phase of the code and of its partner.", kWholeRun, kNoReset,
     kAboveCutoff, kNoDenominator, kMultipath},
    // ---- slips
    {"mp_restart_epochs", "epochs", "restarts rst jumps jump_epochs",
     "Epochs at which the multipath mean restarted",
     "Distinct epochs of a satellite with a restart by a code jump (thresholds as for mp_rms_m) or by an "
     "geometry-free slip: the geometry-free phase L_2 lambda_2 - L_1 lambda_1 changed by more than |(a - "
     "1)/a| "
     "dt x "
     "4 m/min, a = f_1^2/f_2^2, at least 0.026 m, or more than 242 s and less than 600 s passed. A "
     "satellite's "
     "figure joins the band slots 1 and 2, for GPS also 3; with one code only it equals "
     "phase_geometry_slip_epochs. Systems "
     "add their satellites. A signal counts the restarts of its own pair.",
     "neighbouring values of the pair", "gaps of 600 s and more are not counted", kAboveCutoff,
     kNoDenominator, kBlewitt},
    {"phase_geometry_slip_epochs", "epochs",
     "pg slips slip_epochs iono_slip_epochs iono_slips ion_sl ion ionsl",
     "Epochs with a cycle slip by the phase-minus-geometry test",
     "Change of lambda L - rho + c dt_sat between two values of a satellite (rho: distance to the broadcast "
     "position), compared with the median change of all signals of the epoch. A slip when they differ by "
     "more "
     "than 0.05 m (gap up to 1 s), 0.1 m (15 s), 0.15 m (30 s), 0.3 m (60 s), or the gap is longer than 60 "
     "s. "
     "Distinct epochs of a satellite over its bands; systems add their satellites. A signal counts its own "
     "pair: "
     "the partner is the code with the highest completeness.",
     "neighbouring values of the code", "gaps of 600 s and more are not tested", kAboveCutoff, kNoDenominator,
     "the geometric range and clock of IS-GPS-200, 20.3.3; GLONASS ICD L1/L2 5.1, annex 3; BDS-SIS-ICD-B1I "
     "3.0, "
     "5.2; Galileo OS SIS ICD 2.0, 5.1; the median of the epoch stands for the receiver clock"},
    {"observations_per_restart", "epochs",
     "obs/rst observations_per_slip obs_per_slip obs/slip o/slps o/slp oslps",
     "Complete observations per restart of the multipath mean",
     "observed_epochs / mp_restart_epochs; observed_epochs itself without a restart. Systems and satellites "
     "divide in "
     "whole numbers (the fraction is dropped), signals with a fraction.",
     kWholeRun, kNoReset, kAboveCutoff, "mp_restart_epochs", kHave},
    {"iono_rms_cycles", "cycles", "iono iod iono_rms",
     "Scatter of the wide-lane combination over the longest arc",
     "Standard deviation of the Melbourne-Wuebbena combination L_a - L_b - (lambda_b - lambda_a)/(lambda_a + "
     "lambda_b) (P_a/lambda_a + P_b/lambda_b) over the longest arc without a slip. A system shows its last "
     "satellite's.",
     "the longest arc between slips",
     "every slip (see phase_geometry_slip_epochs) and every gap of 600 s or more closes the arc",
     "the arc runs on below the elevation cut-off; slips are counted above it only", "epochs of the arc",
     kBlewitt},
    // ---- signal strength
    {"snr_mean_dbhz", "dB-Hz", "snr s1 s2 s3 s4 s5 s6", "Mean signal strength above the cut-off",
     "Arithmetic mean of the dB-Hz values; systems weight their satellites by the number of values.",
     kWholeRun, kSnrReset, kAboveCutoff, "number of values above the elevation cut-off", kSnrSource},
    {"snr_mean_below_30deg_dbhz", "dB-Hz", "snr<=30deg <=30 snr_below30",
     "Mean signal strength up to 30 degrees",
     "Arithmetic mean of the values at elevations of 30 degrees and less.", kWholeRun, kSnrReset,
     "values below the elevation cut-off count too", "number of values up to 30 degrees", kSnrSource},
    {"snr_mean_above_30deg_dbhz", "dB-Hz", "snr>30deg >30 snr_above30",
     "Mean signal strength above 30 degrees", "Arithmetic mean of the values at elevations above 30 degrees.",
     kWholeRun, kSnrReset, "independent of the cut-off as long as that is 30 degrees or less",
     "number of values above 30 degrees", kSnrSource},
    // ---- the run
    {"first_epoch_gpst", "", "first first_epoch", "First epoch of the file that was taken, GPS time",
     "The epoch as the file has it, brought to the GPS time scale.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, "RINEX 3.05, section 4.1 (time systems)"},
    {"last_epoch_gpst", "", "last last_epoch", "Last epoch of the file that was taken, GPS time",
     "The epoch as the file has it, brought to the GPS time scale.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, "RINEX 3.05, section 4.1 (time systems)"},
    {"duration_h", "h", "duration hours hrs", "Time between first and last epoch",
     "(last epoch - first epoch) / 3600 s, rounded to 1 ms before.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, "definition"},
    {"interval_s", "s", "interval dt", "Interval the file is judged with",
     "The one given; else the header's; else the most frequent difference of the first 600 epochs. Epochs "
     "less "
     "than 0.999 intervals after the last taken one are passed over.",
     kWholeRun, kNoReset, kNoCutoff, kNoDenominator, kRinexHeader},
    {"epochs", "epochs", "", "Epochs read", "Epochs of the file that hold observations.", kWholeRun, kNoReset,
     kNoCutoff, kNoDenominator, "RINEX 3.05, section 6 (epoch records)"},
    {"judged_epochs", "epochs", "judged", "Epochs taken into the run",
     "Epochs that lie at least 0.999 intervals after the one taken before.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, "definition"},
    {"lost_epochs", "epochs", "lost", "Epochs missing from the whole receiver",
     "floor(span / interval + 1) - judged_epochs.", kWholeRun, kNoReset, kNoCutoff, kNoDenominator,
     "definition"},
    {"position_ecef_m", "m", "position xyz", "Station position used for elevations, Earth-centred X, Y, Z",
     "The one given, the header's, or computed: the component-wise median of about 100 single point "
     "solutions "
     "spread over the first batch of epochs.",
     "the first 2,880 epochs", kNoReset, "satellites of every elevation take part until a position is known",
     kNoDenominator,
     "pseudorange equations with the broadcast ionosphere (IS-GPS-200, 20.3.3.5.2.5) and Saastamoinen's "
     "troposphere (1973, Bulletin Geodesique 107)"},
    {"distance_from_header_position_m", "m", "distance", "Distance of the position used to the header's",
     "Length of the difference of the two Earth-centred positions.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, kRinexHeader},
    {"elevation_cutoff_deg", "deg", "cutoff elevation cut-off", "Elevation cut-off",
     "The angle above the horizon that a satellite must exceed to count, from the station position and the "
     "broadcast orbit.",
     kWholeRun, kNoReset, "the cut-off itself; option --elevation", kNoDenominator, "definition"},
    {"averaging_window_epochs", "epochs", "window", "Length of the multipath mean",
     "50 values at intervals up to 5 s, 300 s / interval up to 30 s, 10 values beyond.", kWholeRun, kNoReset,
     kNoCutoff, kNoDenominator, "this system's own rule, long in use"},
    // ---- navigation coverage
    {"epochs_seen", "epochs", "seen", "Epochs with the satellite in the file",
     "Epochs that hold any value of the satellite, at whatever elevation.", kWholeRun, kNoReset, kNoCutoff,
     kNoDenominator, "definition"},
    {"navigation_records", "records", "records", "Broadcast records of a satellite that are used",
     "Records with health 0, each once.", kWholeRun, kNoReset, kNoCutoff, kNoDenominator,
     "RINEX 3.05, section 5.2 (navigation message files)"},
    {"unhealthy_records", "records", "unhealthy", "Broadcast records of a satellite that are left out",
     "Records with a health other than 0.", kWholeRun, kNoReset, kNoCutoff, kNoDenominator,
     "RINEX 3.05, section 5.2 (navigation message files)"},
    {"navigation_covered_ratio", "1", "covered coverage navigation_coverage",
     "Part of a satellite's epochs with a usable broadcast record",
     "Epochs seen that lie within 7,200 s (GPS, QZSS), 1,800 s (GLONASS) or 21,600 s (BDS, Galileo) of the "
     "reference time of a healthy record, divided by the epochs seen. Where it is below 1, elevations and "
     "all "
     "that needs them are missing.",
     kWholeRun, kNoReset, kNoCutoff, "epochs_seen",
     "fit intervals of IS-GPS-200, 20.3.4.4, GLONASS ICD L1/L2 5.1, 4.4, and the practice of the other "
     "systems"},
};

const int kFigures = sizeof(kFigureTable) / sizeof(kFigureTable[0]);

}  // namespace orsolva_host

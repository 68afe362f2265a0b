// Boundary records: the plain data that crosses the border between a host and the library.
//
// Every record has natural alignment on a 64-bit little-endian machine, and its layout is a contract: hosts
// lay out arrays of these records themselves, so sizes and offsets never change; the build of the library
// asserts each of them. Missing values are sent as 0. Nothing here needs more than the standard headers.
//
// Units: metres, seconds, radians, cycles and dB-Hz unless a field says otherwise.
#ifndef ORSOLVA_INTERFACE_RECORDS_H
#define ORSOLVA_INTERFACE_RECORDS_H

#include <cstdint>

/// A time: whole seconds since 1970-01-01 00:00:00 on the GPS time scale and a fraction of a second.
struct Time_gbt {
  std::int64_t time;
  double sec;
};

/// One signal of one satellite at one epoch.
struct Signal_QC_gbt {
  double pseudorange;  ///< m
  double phase;        ///< cycles
  float doppler;       ///< carried, never read
  float snr;           ///< dB-Hz
  std::uint8_t code;   ///< number of the signal, 0 = unused; table: docs/host/signals.md, in the sources
  std::uint8_t reserved[7];  ///< not read
};

/// One satellite at one epoch.
struct Satellite_gbt {
  std::uint8_t sys;  ///< 1 GPS, 2 GLONASS, 4 BDS, 8 Galileo, 16 QZSS, 32 IRNSS (dropped)
  std::int32_t prn;  ///< number within the system; QZSS 1 to 10
  std::uint32_t signal_num;
  Signal_QC_gbt signals[8];
};

/// One epoch of observations.
struct ObsEpoch_QC_gbt {
  Time_gbt time;
  std::uint32_t sat_num;
  Satellite_gbt sats[80];
};

/// One batch of epochs, in time order. The host keeps ownership.
struct ObsBodyData_QC_gbt {
  std::int32_t epoch_num;
  const ObsEpoch_QC_gbt* epochs;
};

/// Broadcast ephemeris of a GPS or QZSS satellite. Orbit elements as in IS-GPS-200, table 20-III, in
/// radians and metres.
struct GpsEph_gbt {
  std::int32_t reserved0;
  std::int32_t prn;
  Time_gbt toc;  ///< clock reference time
  double af0;    ///< s
  double af1;    ///< s/s
  double af2;    ///< s/s^2
  std::int32_t iode;
  std::int32_t reserved1;
  double crs;   ///< m
  double deln;  ///< rad/s
  double M0;    ///< rad
  double cuc;   ///< rad
  double e;
  double cus;    ///< rad
  double sqrtA;  ///< m^0.5
  double toes;   ///< s of week
  double cic;    ///< rad
  double OMG0;   ///< rad
  double cis;    ///< rad
  double i0;     ///< rad
  double crc;    ///< m
  double omg;    ///< rad
  double OMGd;   ///< rad/s
  double idot;   ///< rad/s
  std::int32_t reserved2;
  std::int32_t week;  ///< GPS week of toes
  double reserved3;
  double ura;        ///< accuracy, m
  std::int32_t svh;  ///< health, 0 = healthy
  std::int32_t reserved4[9];
};

/// Broadcast state vector of a GLONASS satellite (GLONASS ICD 5.1, section 4.4), reference time in UTC.
struct GloEph_gbt {
  std::int32_t reserved0;
  std::int32_t prn;   ///< slot number
  Time_gbt toe;       ///< UTC
  double clock_bias;  ///< -TauN, s
  double clock_rate;  ///< +GammaN, s/s
  double reserved1;
  double x;   ///< km
  double vx;  ///< km/s
  double ax;  ///< km/s^2
  std::int32_t svh;
  std::int32_t reserved2;
  double y;
  double vy;
  double ay;
  std::int32_t frequency_channel;  ///< -7 to 6
  std::int32_t reserved3;
  double z;
  double vz;
  double az;
  double reserved4[3];
};

/// Broadcast ephemeris of a BDS satellite. Times, week and toes are BDS time.
struct BdsEph_gbt {
  std::int32_t reserved0;
  std::int32_t prn;
  Time_gbt toc;
  double af0;
  double af1;
  double af2;
  std::int32_t iode;
  std::int32_t reserved1;
  double crs;
  double deln;
  double M0;
  double cuc;
  double e;
  double cus;
  double sqrtA;
  double toes;  ///< s of BDS week
  double cic;
  double OMG0;
  double cis;
  double i0;
  double crc;
  double omg;
  double OMGd;
  double idot;
  std::int32_t week;  ///< BDS week of toes
  std::int32_t reserved2;
  double ura;
  std::int32_t svh;
  std::int32_t reserved3;
  double tgd1;  ///< s
  double tgd2;  ///< s
  std::int32_t reserved4[3];
  std::uint8_t orbit_type;  ///< 1 = GEO, 2 = not GEO, 0 = decided by number
  std::uint8_t reserved5[3];
};

/// Broadcast ephemeris of a Galileo satellite.
struct GalEph_gbt {
  std::int32_t reserved0;
  std::int32_t prn;
  Time_gbt toc;
  double af0;
  double af1;
  double af2;
  std::int32_t iode;
  std::int32_t reserved1;
  double crs;
  double deln;
  double M0;
  double cuc;
  double e;
  double cus;
  double sqrtA;
  double toes;
  double cic;
  double OMG0;
  double cis;
  double i0;
  double crc;
  double omg;
  double OMGd;
  double idot;
  std::int32_t reserved2;
  std::int32_t week;  ///< week of toes, counted as GPS weeks
  double ura;
  std::int32_t svh;
  std::int32_t reserved3;
  std::int32_t reserved4[6];
};

/// The broadcast navigation set of a run.
struct NavBodyData_QC_gbt {
  std::int32_t gps_num;
  std::int32_t glo_num;
  std::int32_t bds_num;
  std::int32_t gal_num;
  std::int32_t qzs_num;
  const GpsEph_gbt* gps_eph;
  const GloEph_gbt* glo_eph;
  const BdsEph_gbt* bds_eph;
  const GalEph_gbt* gal_eph;
  const GpsEph_gbt* qzs_eph;
};

/// Configuration of a run. System order of the flags: GPS, GLONASS, BDS, Galileo, QZSS; of the rows of six:
/// the same and "BD3" (BDS satellites numbered 18 and above), which always follows the BDS row.
struct config_qct {
  std::uint8_t enable_system[5];  ///< 0 = the system is left out
  std::uint8_t reserved;          ///< not read
  std::uint8_t enable_position;   ///< not 0 = `position` is the station; 0 = computed from the first batch
  std::uint8_t combination_system[5];     ///< not 0 = part of the combined result
  double elevation;                       ///< cut-off, degrees; 1e-12 and below mean 0.0001 rad
  double interval;                        ///< s; 1e-12 and below mean 1 s
  double position[3];                     ///< ECEF, m
  std::int32_t include_satellite[6][64];  ///< by number - 1; low byte 0 = left out; the BD3 row is not read
  std::int32_t auto_detect_freq;          ///< not 0 = every band that has codes is used
  std::int32_t satellite_freq[6][6];      ///< 0 = the frequency slot is not used; the BD3 row is not read
};

/// What GNSSQCPlus and GNSSQC return. Only GNSSQC_OK is a success.
enum GNSSQC_STATE : std::int32_t {
  GNSSQC_OK = 1,               ///< the batch was taken in and measured
  GNSSQC_NO_DATA = 0,          ///< no epochs, or none with a usable time
  GNSSQC_NO_NAV = -1,          ///< GNSSQC only: no broadcast record
  GNSSQC_NO_POSITION = -2,     ///< none given and none could be computed; the epochs stay counted
  GNSSQC_INTERNAL_ERROR = -3,  ///< a null handle or memory that ran out
};

/// All figures of one satellite, one system or of the whole run, for one combination of codes with one code
/// per band slot: the one with which the system is most complete. Of a system and of the run counts are sums
/// over the satellites, and means are weighted by counts. A figure without data is 0.
struct qc_core_summary {
  std::int32_t system;   ///< system code, 0 = empty; of the total the first system combined
  std::int32_t padding;  ///< left as the host passed it
  /// Nominal epochs (one per interval) at which the satellite is above the elevation cut-off, from its first
  /// observed epoch to its last.
  std::uint64_t expected_epochs;
  /// Epochs above the cut-off at which every code of the combination has range, phase and SNR; of a
  /// combination of several codes those that not every satellite transmits are left out (GPS L5 among them).
  std::uint64_t observed_epochs;
  /// Cycle slips: epochs at which the phase-minus-geometry test finds one on any band slot. Of a satellite
  /// each epoch counts once.
  std::uint64_t slip_epochs;
  /// Multipath restarts: epochs at which the averaging of the multipath restarts, by a jump of the code or a
  /// geometry-free slip, on band slots 1 and 2 (GPS also 3). Gaps do not count. Equal to slip_epochs for a
  /// combination of a single code.
  std::uint64_t jump_epochs;
  double completeness;  ///< observed_epochs / expected_epochs, at most 1; 0 when none is expected
  double mp[6];         ///< m, RMS of the code multipath less its moving mean, above the cut-off
  double snr[6];        ///< dB-Hz, mean above the elevation cut-off
  double snr_30[6][2];  ///< dB-Hz, [0] mean not above 30 degrees, [1] mean above, whatever the cut-off
  /// observed_epochs / jump_epochs, an integer division: observed epochs per multipath restart, not per cycle
  /// slip. observed_epochs without a restart.
  double obs_per_slip;
  /// Cycles, standard deviation of the Melbourne-Wuebbena wide lane over the longest arc. Of a system that of
  /// the last satellite; of the total 0.
  double iod[6];
};

/// The whole-run result. System slots: GPS, GLONASS, BDS, Galileo, QZSS, BD3.
struct result_qct {
  Time_gbt start_time;         ///< first epoch
  Time_gbt end_time;           ///< last epoch
  double station_xyz[3];       ///< ECEF, m, given or computed
  double duration;             ///< hours from the first to the last epoch
  std::int32_t lost_epochs;    ///< nominal epochs from the first to the last less the epochs taken in
  std::int32_t padding;        ///< left as the host passed it
  qc_core_summary sys[6];      ///< slot BD3 stays without figures: the newer satellites are in the BDS slot
  qc_core_summary sat[6][64];  ///< by number - 1; every BDS satellite in the BDS slot
  qc_core_summary total;       ///< the systems to combine, merged
  std::uint32_t sat_used[6][64];  ///< 1 usable, 0 left out, 4294967295 unhealthy; BDS from 18 on in slot BD3
};

/// Figures of one signal code. Of a system counts are sums over the satellites that observed the code, and
/// means are weighted by counts. A figure without data is 0.
struct code_qc_entry {
  std::uint8_t code;        ///< signal number
  std::uint8_t padding[7];  ///< 0
  double completeness;      ///< observed_epochs / expected_epochs, not held to 1
  double mp_rms;            ///< m, RMS of the code multipath with the most complete partner code
  double snr;               ///< dB-Hz, mean above the elevation cut-off
  double snr_below30;       ///< dB-Hz, mean not above 30 degrees, below the cut-off too
  double snr_above30;       ///< dB-Hz, mean above 30 degrees
  /// observed_epochs / slip_count, a floating division: observed epochs per multipath restart.
  /// observed_epochs without a restart.
  double obs_per_slip;
  /// Multipath restarts of the code above the cut-off, by a jump of the code or a geometry-free slip. Without
  /// any multipath value the cycle slips of iod_slip_count.
  std::int32_t slip_count;
  std::int32_t padding2;            ///< 0
  std::uint64_t expected_epochs;    ///< of the satellite, as in qc_core_summary
  std::uint64_t observed_epochs;    ///< epochs above the cut-off at which the code has range, phase and SNR
  std::uint64_t mp_count;           ///< multipath values behind mp_rms
  std::uint32_t snr_count;          ///< values behind snr
  std::uint32_t snr_count_above30;  ///< values behind snr_above30
  std::uint32_t snr_count_below30;  ///< values behind snr_below30
  std::uint32_t iod_slip_count;     ///< cycle slips of the code that the phase-minus-geometry test counts
};

/// Up to eight codes of one satellite or one system.
struct code_qc_block {
  std::uint8_t system;      ///< system code, 0 = empty
  std::uint8_t padding[3];  ///< 0
  std::int32_t count;       ///< entries in use
  code_qc_entry entries[8];
};

/// The per-code result. Slots 0 to 4: GPS, GLONASS, BDS (every number), Galileo, QZSS; slot 5 stays zero.
struct total_code_qc_result {
  code_qc_block sys[6];
  code_qc_block sat[6][64];  ///< by number - 1
};

#endif  // ORSOLVA_INTERFACE_RECORDS_H

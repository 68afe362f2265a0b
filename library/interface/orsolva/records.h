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
  double pseudorange;        ///< m
  double phase;              ///< cycles
  float doppler;             ///< carried, never read
  float snr;                 ///< dB-Hz
  std::uint8_t code;         ///< number of the signal, 0 = unused; table: docs/host/signals.md, in the sources
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
  std::uint8_t enable_system[5];
  std::uint8_t reserved;
  std::uint8_t enable_position;
  std::uint8_t combination_system[5];
  double elevation;    ///< cut-off, degrees; 1e-12 and below mean 0.0001 rad
  double interval;     ///< s; 1e-12 and below mean 1 s
  double position[3];  ///< ECEF, m
  std::int32_t include_satellite[6][64];
  std::int32_t auto_detect_freq;
  std::int32_t satellite_freq[6][6];
};

/// What GNSSQCPlus and GNSSQC return. Only GNSSQC_OK is a success.
enum GNSSQC_STATE : std::int32_t {
  GNSSQC_OK = 1,
  GNSSQC_NO_DATA = 0,
  GNSSQC_NO_NAV = -1,
  GNSSQC_NO_POSITION = -2,
  GNSSQC_INTERNAL_ERROR = -3,
};

/// All figures of one satellite, one system or of the whole run. Six band slots a figure.
struct qc_core_summary {
  std::int32_t system;  ///< system code, 0 = empty
  std::int32_t padding;
  std::uint64_t expected_epochs;
  std::uint64_t observed_epochs;
  std::uint64_t slip_epochs;
  std::uint64_t jump_epochs;
  double completeness;  ///< 0 to 1
  double mp[6];         ///< RMS, m
  double snr[6];        ///< mean above the elevation cut-off, dB-Hz
  double snr_30[6][2];  ///< [0] mean not above 30 degrees, [1] mean above
  double obs_per_slip;
  double iod[6];  ///< cycles
};

/// The whole-run result. System slots: GPS, GLONASS, BDS, Galileo, QZSS, BD3.
struct result_qct {
  Time_gbt start_time;
  Time_gbt end_time;
  double station_xyz[3];  ///< ECEF, m
  double duration;        ///< hours
  std::int32_t lost_epochs;
  std::int32_t padding;
  qc_core_summary sys[6];
  qc_core_summary sat[6][64];
  qc_core_summary total;
  std::uint32_t sat_used[6][64];
};

/// Figures of one signal code.
struct code_qc_entry {
  std::uint8_t code;
  std::uint8_t padding[7];
  double completeness;
  double mp_rms;       ///< m
  double snr;          ///< mean above the elevation cut-off, dB-Hz
  double snr_below30;  ///< dB-Hz
  double snr_above30;  ///< dB-Hz
  double obs_per_slip;
  std::int32_t slip_count;
  std::int32_t padding2;
  std::uint64_t expected_epochs;
  std::uint64_t observed_epochs;
  std::uint64_t mp_count;
  std::uint32_t snr_count;
  std::uint32_t snr_count_above30;
  std::uint32_t snr_count_below30;
  std::uint32_t iod_slip_count;
};

/// Up to eight codes of one satellite or one system.
struct code_qc_block {
  std::uint8_t system;
  std::uint8_t padding[3];
  std::int32_t count;
  code_qc_entry entries[8];
};

/// The per-code result. Slots 0 to 4: GPS, GLONASS, BDS (every number), Galileo, QZSS; slot 5 stays zero.
struct total_code_qc_result {
  code_qc_block sys[6];
  code_qc_block sat[6][64];
};

#endif  // ORSOLVA_INTERFACE_RECORDS_H

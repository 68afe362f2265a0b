/* The boundary records for C: those of records.h, which says what the fields mean. Written by
 * library/interface/c/make_records.py; do not edit. */
#ifndef ORSOLVA_INTERFACE_RECORDS_C_H
#define ORSOLVA_INTERFACE_RECORDS_C_H

#include <stdint.h>

/* clang-format off */

typedef struct Time_gbt {
  int64_t time;
  double sec;
} Time_gbt;

typedef struct Signal_QC_gbt {
  double pseudorange;
  double phase;
  float doppler;
  float snr;
  uint8_t code;
  uint8_t reserved[7];
} Signal_QC_gbt;

typedef struct Satellite_gbt {
  uint8_t sys;
  int32_t prn;
  uint32_t signal_num;
  Signal_QC_gbt signals[8];
} Satellite_gbt;

typedef struct ObsEpoch_QC_gbt {
  Time_gbt time;
  uint32_t sat_num;
  Satellite_gbt sats[80];
} ObsEpoch_QC_gbt;

typedef struct ObsBodyData_QC_gbt {
  int32_t epoch_num;
  const ObsEpoch_QC_gbt* epochs;
} ObsBodyData_QC_gbt;

typedef struct GpsEph_gbt {
  int32_t reserved0;
  int32_t prn;
  Time_gbt toc;
  double af0;
  double af1;
  double af2;
  int32_t iode;
  int32_t reserved1;
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
  int32_t reserved2;
  int32_t week;
  double reserved3;
  double ura;
  int32_t svh;
  int32_t reserved4[9];
} GpsEph_gbt;

typedef struct GloEph_gbt {
  int32_t reserved0;
  int32_t prn;
  Time_gbt toe;
  double clock_bias;
  double clock_rate;
  double reserved1;
  double x;
  double vx;
  double ax;
  int32_t svh;
  int32_t reserved2;
  double y;
  double vy;
  double ay;
  int32_t frequency_channel;
  int32_t reserved3;
  double z;
  double vz;
  double az;
  double reserved4[3];
} GloEph_gbt;

typedef struct BdsEph_gbt {
  int32_t reserved0;
  int32_t prn;
  Time_gbt toc;
  double af0;
  double af1;
  double af2;
  int32_t iode;
  int32_t reserved1;
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
  int32_t week;
  int32_t reserved2;
  double ura;
  int32_t svh;
  int32_t reserved3;
  double tgd1;
  double tgd2;
  int32_t reserved4[3];
  uint8_t orbit_type;
  uint8_t reserved5[3];
} BdsEph_gbt;

typedef struct GalEph_gbt {
  int32_t reserved0;
  int32_t prn;
  Time_gbt toc;
  double af0;
  double af1;
  double af2;
  int32_t iode;
  int32_t reserved1;
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
  int32_t reserved2;
  int32_t week;
  double ura;
  int32_t svh;
  int32_t reserved3;
  int32_t reserved4[6];
} GalEph_gbt;

typedef struct NavBodyData_QC_gbt {
  int32_t gps_num;
  int32_t glo_num;
  int32_t bds_num;
  int32_t gal_num;
  int32_t qzs_num;
  const GpsEph_gbt* gps_eph;
  const GloEph_gbt* glo_eph;
  const BdsEph_gbt* bds_eph;
  const GalEph_gbt* gal_eph;
  const GpsEph_gbt* qzs_eph;
} NavBodyData_QC_gbt;

typedef struct config_qct {
  uint8_t enable_system[5];
  uint8_t reserved;
  uint8_t enable_position;
  uint8_t combination_system[5];
  double elevation;
  double interval;
  double position[3];
  int32_t include_satellite[6][64];
  int32_t auto_detect_freq;
  int32_t satellite_freq[6][6];
} config_qct;

typedef int32_t GNSSQC_STATE;
enum {
  GNSSQC_OK = 1,
  GNSSQC_NO_DATA = 0,
  GNSSQC_NO_NAV = -1,
  GNSSQC_NO_POSITION = -2,
  GNSSQC_INTERNAL_ERROR = -3
};

typedef struct qc_core_summary {
  int32_t system;
  int32_t padding;
  uint64_t expected_epochs;
  uint64_t observed_epochs;
  uint64_t slip_epochs;
  uint64_t jump_epochs;
  double completeness;
  double mp[6];
  double snr[6];
  double snr_30[6][2];
  double obs_per_slip;
  double iod[6];
} qc_core_summary;

typedef struct result_qct {
  Time_gbt start_time;
  Time_gbt end_time;
  double station_xyz[3];
  double duration;
  int32_t lost_epochs;
  int32_t padding;
  qc_core_summary sys[6];
  qc_core_summary sat[6][64];
  qc_core_summary total;
  uint32_t sat_used[6][64];
} result_qct;

typedef struct code_qc_entry {
  uint8_t code;
  uint8_t padding[7];
  double completeness;
  double mp_rms;
  double snr;
  double snr_below30;
  double snr_above30;
  double obs_per_slip;
  int32_t slip_count;
  int32_t padding2;
  uint64_t expected_epochs;
  uint64_t observed_epochs;
  uint64_t mp_count;
  uint32_t snr_count;
  uint32_t snr_count_above30;
  uint32_t snr_count_below30;
  uint32_t iod_slip_count;
} code_qc_entry;

typedef struct code_qc_block {
  uint8_t system;
  uint8_t padding[3];
  int32_t count;
  code_qc_entry entries[8];
} code_qc_block;

typedef struct total_code_qc_result {
  code_qc_block sys[6];
  code_qc_block sat[6][64];
} total_code_qc_result;

/* clang-format on */

#endif /* ORSOLVA_INTERFACE_RECORDS_C_H */

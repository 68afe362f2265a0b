// The layout of every boundary record, asserted: hosts build arrays of them with these sizes and offsets.
#ifndef ORSOLVA_INTERFACE_RECORD_LAYOUT_H
#define ORSOLVA_INTERFACE_RECORD_LAYOUT_H

// Hosts and library exchange these records as bytes, with pointers among them. Comes before every include,
// so that a machine whose headers are missing gets the reason too.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the records of the boundary are laid out for little-endian byte order; this machine has another"
#endif
#if defined(__SIZEOF_POINTER__) && __SIZEOF_POINTER__ != 8
#error "the records of the boundary are laid out for a word size of 64 bits; this build has another"
#endif

#include <cstddef>
#include <type_traits>

#include "orsolva/records.h"

static_assert(sizeof(void*) == 8, "the records of the boundary are laid out for a word size of 64 bits");

// clang-format off
#define ORSOLVA_RECORD(record, bytes)                                                     \
  static_assert(sizeof(record) == (bytes), "size of " #record);                           \
  static_assert(std::is_standard_layout_v<record>, "layout of " #record);                 \
  static_assert(std::is_trivially_copyable_v<record>, "plain data: " #record)
#define ORSOLVA_FIELD(record, field, offset) \
  static_assert(offsetof(record, field) == (offset), "offset of " #record "::" #field)

ORSOLVA_RECORD(Time_gbt, 16);
ORSOLVA_FIELD(Time_gbt, time, 0);
ORSOLVA_FIELD(Time_gbt, sec, 8);

ORSOLVA_RECORD(Signal_QC_gbt, 32);
ORSOLVA_FIELD(Signal_QC_gbt, pseudorange, 0);
ORSOLVA_FIELD(Signal_QC_gbt, phase, 8);
ORSOLVA_FIELD(Signal_QC_gbt, doppler, 16);
ORSOLVA_FIELD(Signal_QC_gbt, snr, 20);
ORSOLVA_FIELD(Signal_QC_gbt, code, 24);
ORSOLVA_FIELD(Signal_QC_gbt, reserved, 25);

ORSOLVA_RECORD(Satellite_gbt, 272);
ORSOLVA_FIELD(Satellite_gbt, sys, 0);
ORSOLVA_FIELD(Satellite_gbt, prn, 4);
ORSOLVA_FIELD(Satellite_gbt, signal_num, 8);
ORSOLVA_FIELD(Satellite_gbt, signals, 16);

ORSOLVA_RECORD(ObsEpoch_QC_gbt, 21784);
ORSOLVA_FIELD(ObsEpoch_QC_gbt, time, 0);
ORSOLVA_FIELD(ObsEpoch_QC_gbt, sat_num, 16);
ORSOLVA_FIELD(ObsEpoch_QC_gbt, sats, 24);

ORSOLVA_RECORD(ObsBodyData_QC_gbt, 16);
ORSOLVA_FIELD(ObsBodyData_QC_gbt, epoch_num, 0);
ORSOLVA_FIELD(ObsBodyData_QC_gbt, epochs, 8);

ORSOLVA_RECORD(GpsEph_gbt, 248);
ORSOLVA_FIELD(GpsEph_gbt, reserved0, 0);
ORSOLVA_FIELD(GpsEph_gbt, prn, 4);
ORSOLVA_FIELD(GpsEph_gbt, toc, 8);
ORSOLVA_FIELD(GpsEph_gbt, af0, 24);
ORSOLVA_FIELD(GpsEph_gbt, af1, 32);
ORSOLVA_FIELD(GpsEph_gbt, af2, 40);
ORSOLVA_FIELD(GpsEph_gbt, iode, 48);
ORSOLVA_FIELD(GpsEph_gbt, reserved1, 52);
ORSOLVA_FIELD(GpsEph_gbt, crs, 56);
ORSOLVA_FIELD(GpsEph_gbt, deln, 64);
ORSOLVA_FIELD(GpsEph_gbt, M0, 72);
ORSOLVA_FIELD(GpsEph_gbt, cuc, 80);
ORSOLVA_FIELD(GpsEph_gbt, e, 88);
ORSOLVA_FIELD(GpsEph_gbt, cus, 96);
ORSOLVA_FIELD(GpsEph_gbt, sqrtA, 104);
ORSOLVA_FIELD(GpsEph_gbt, toes, 112);
ORSOLVA_FIELD(GpsEph_gbt, cic, 120);
ORSOLVA_FIELD(GpsEph_gbt, OMG0, 128);
ORSOLVA_FIELD(GpsEph_gbt, cis, 136);
ORSOLVA_FIELD(GpsEph_gbt, i0, 144);
ORSOLVA_FIELD(GpsEph_gbt, crc, 152);
ORSOLVA_FIELD(GpsEph_gbt, omg, 160);
ORSOLVA_FIELD(GpsEph_gbt, OMGd, 168);
ORSOLVA_FIELD(GpsEph_gbt, idot, 176);
ORSOLVA_FIELD(GpsEph_gbt, reserved2, 184);
ORSOLVA_FIELD(GpsEph_gbt, week, 188);
ORSOLVA_FIELD(GpsEph_gbt, reserved3, 192);
ORSOLVA_FIELD(GpsEph_gbt, ura, 200);
ORSOLVA_FIELD(GpsEph_gbt, svh, 208);
ORSOLVA_FIELD(GpsEph_gbt, reserved4, 212);

ORSOLVA_RECORD(GloEph_gbt, 160);
ORSOLVA_FIELD(GloEph_gbt, reserved0, 0);
ORSOLVA_FIELD(GloEph_gbt, prn, 4);
ORSOLVA_FIELD(GloEph_gbt, toe, 8);
ORSOLVA_FIELD(GloEph_gbt, clock_bias, 24);
ORSOLVA_FIELD(GloEph_gbt, clock_rate, 32);
ORSOLVA_FIELD(GloEph_gbt, reserved1, 40);
ORSOLVA_FIELD(GloEph_gbt, x, 48);
ORSOLVA_FIELD(GloEph_gbt, vx, 56);
ORSOLVA_FIELD(GloEph_gbt, ax, 64);
ORSOLVA_FIELD(GloEph_gbt, svh, 72);
ORSOLVA_FIELD(GloEph_gbt, reserved2, 76);
ORSOLVA_FIELD(GloEph_gbt, y, 80);
ORSOLVA_FIELD(GloEph_gbt, vy, 88);
ORSOLVA_FIELD(GloEph_gbt, ay, 96);
ORSOLVA_FIELD(GloEph_gbt, frequency_channel, 104);
ORSOLVA_FIELD(GloEph_gbt, reserved3, 108);
ORSOLVA_FIELD(GloEph_gbt, z, 112);
ORSOLVA_FIELD(GloEph_gbt, vz, 120);
ORSOLVA_FIELD(GloEph_gbt, az, 128);
ORSOLVA_FIELD(GloEph_gbt, reserved4, 136);

ORSOLVA_RECORD(BdsEph_gbt, 240);
ORSOLVA_FIELD(BdsEph_gbt, reserved0, 0);
ORSOLVA_FIELD(BdsEph_gbt, prn, 4);
ORSOLVA_FIELD(BdsEph_gbt, toc, 8);
ORSOLVA_FIELD(BdsEph_gbt, af0, 24);
ORSOLVA_FIELD(BdsEph_gbt, af1, 32);
ORSOLVA_FIELD(BdsEph_gbt, af2, 40);
ORSOLVA_FIELD(BdsEph_gbt, iode, 48);
ORSOLVA_FIELD(BdsEph_gbt, reserved1, 52);
ORSOLVA_FIELD(BdsEph_gbt, crs, 56);
ORSOLVA_FIELD(BdsEph_gbt, deln, 64);
ORSOLVA_FIELD(BdsEph_gbt, M0, 72);
ORSOLVA_FIELD(BdsEph_gbt, cuc, 80);
ORSOLVA_FIELD(BdsEph_gbt, e, 88);
ORSOLVA_FIELD(BdsEph_gbt, cus, 96);
ORSOLVA_FIELD(BdsEph_gbt, sqrtA, 104);
ORSOLVA_FIELD(BdsEph_gbt, toes, 112);
ORSOLVA_FIELD(BdsEph_gbt, cic, 120);
ORSOLVA_FIELD(BdsEph_gbt, OMG0, 128);
ORSOLVA_FIELD(BdsEph_gbt, cis, 136);
ORSOLVA_FIELD(BdsEph_gbt, i0, 144);
ORSOLVA_FIELD(BdsEph_gbt, crc, 152);
ORSOLVA_FIELD(BdsEph_gbt, omg, 160);
ORSOLVA_FIELD(BdsEph_gbt, OMGd, 168);
ORSOLVA_FIELD(BdsEph_gbt, idot, 176);
ORSOLVA_FIELD(BdsEph_gbt, week, 184);
ORSOLVA_FIELD(BdsEph_gbt, reserved2, 188);
ORSOLVA_FIELD(BdsEph_gbt, ura, 192);
ORSOLVA_FIELD(BdsEph_gbt, svh, 200);
ORSOLVA_FIELD(BdsEph_gbt, reserved3, 204);
ORSOLVA_FIELD(BdsEph_gbt, tgd1, 208);
ORSOLVA_FIELD(BdsEph_gbt, tgd2, 216);
ORSOLVA_FIELD(BdsEph_gbt, reserved4, 224);
ORSOLVA_FIELD(BdsEph_gbt, orbit_type, 236);
ORSOLVA_FIELD(BdsEph_gbt, reserved5, 237);

ORSOLVA_RECORD(GalEph_gbt, 232);
ORSOLVA_FIELD(GalEph_gbt, reserved0, 0);
ORSOLVA_FIELD(GalEph_gbt, prn, 4);
ORSOLVA_FIELD(GalEph_gbt, toc, 8);
ORSOLVA_FIELD(GalEph_gbt, af0, 24);
ORSOLVA_FIELD(GalEph_gbt, af1, 32);
ORSOLVA_FIELD(GalEph_gbt, af2, 40);
ORSOLVA_FIELD(GalEph_gbt, iode, 48);
ORSOLVA_FIELD(GalEph_gbt, reserved1, 52);
ORSOLVA_FIELD(GalEph_gbt, crs, 56);
ORSOLVA_FIELD(GalEph_gbt, deln, 64);
ORSOLVA_FIELD(GalEph_gbt, M0, 72);
ORSOLVA_FIELD(GalEph_gbt, cuc, 80);
ORSOLVA_FIELD(GalEph_gbt, e, 88);
ORSOLVA_FIELD(GalEph_gbt, cus, 96);
ORSOLVA_FIELD(GalEph_gbt, sqrtA, 104);
ORSOLVA_FIELD(GalEph_gbt, toes, 112);
ORSOLVA_FIELD(GalEph_gbt, cic, 120);
ORSOLVA_FIELD(GalEph_gbt, OMG0, 128);
ORSOLVA_FIELD(GalEph_gbt, cis, 136);
ORSOLVA_FIELD(GalEph_gbt, i0, 144);
ORSOLVA_FIELD(GalEph_gbt, crc, 152);
ORSOLVA_FIELD(GalEph_gbt, omg, 160);
ORSOLVA_FIELD(GalEph_gbt, OMGd, 168);
ORSOLVA_FIELD(GalEph_gbt, idot, 176);
ORSOLVA_FIELD(GalEph_gbt, reserved2, 184);
ORSOLVA_FIELD(GalEph_gbt, week, 188);
ORSOLVA_FIELD(GalEph_gbt, ura, 192);
ORSOLVA_FIELD(GalEph_gbt, svh, 200);
ORSOLVA_FIELD(GalEph_gbt, reserved3, 204);
ORSOLVA_FIELD(GalEph_gbt, reserved4, 208);

ORSOLVA_RECORD(NavBodyData_QC_gbt, 64);
ORSOLVA_FIELD(NavBodyData_QC_gbt, gps_num, 0);
ORSOLVA_FIELD(NavBodyData_QC_gbt, glo_num, 4);
ORSOLVA_FIELD(NavBodyData_QC_gbt, bds_num, 8);
ORSOLVA_FIELD(NavBodyData_QC_gbt, gal_num, 12);
ORSOLVA_FIELD(NavBodyData_QC_gbt, qzs_num, 16);
ORSOLVA_FIELD(NavBodyData_QC_gbt, gps_eph, 24);
ORSOLVA_FIELD(NavBodyData_QC_gbt, glo_eph, 32);
ORSOLVA_FIELD(NavBodyData_QC_gbt, bds_eph, 40);
ORSOLVA_FIELD(NavBodyData_QC_gbt, gal_eph, 48);
ORSOLVA_FIELD(NavBodyData_QC_gbt, qzs_eph, 56);

ORSOLVA_RECORD(config_qct, 1744);
ORSOLVA_FIELD(config_qct, enable_system, 0);
ORSOLVA_FIELD(config_qct, reserved, 5);
ORSOLVA_FIELD(config_qct, enable_position, 6);
ORSOLVA_FIELD(config_qct, combination_system, 7);
ORSOLVA_FIELD(config_qct, elevation, 16);
ORSOLVA_FIELD(config_qct, interval, 24);
ORSOLVA_FIELD(config_qct, position, 32);
ORSOLVA_FIELD(config_qct, include_satellite, 56);
ORSOLVA_FIELD(config_qct, auto_detect_freq, 1592);
ORSOLVA_FIELD(config_qct, satellite_freq, 1596);

ORSOLVA_RECORD(qc_core_summary, 296);
ORSOLVA_FIELD(qc_core_summary, system, 0);
ORSOLVA_FIELD(qc_core_summary, padding, 4);
ORSOLVA_FIELD(qc_core_summary, expected_epochs, 8);
ORSOLVA_FIELD(qc_core_summary, observed_epochs, 16);
ORSOLVA_FIELD(qc_core_summary, slip_epochs, 24);
ORSOLVA_FIELD(qc_core_summary, jump_epochs, 32);
ORSOLVA_FIELD(qc_core_summary, completeness, 40);
ORSOLVA_FIELD(qc_core_summary, mp, 48);
ORSOLVA_FIELD(qc_core_summary, snr, 96);
ORSOLVA_FIELD(qc_core_summary, snr_30, 144);
ORSOLVA_FIELD(qc_core_summary, obs_per_slip, 240);
ORSOLVA_FIELD(qc_core_summary, iod, 248);

ORSOLVA_RECORD(result_qct, 117344);
ORSOLVA_FIELD(result_qct, start_time, 0);
ORSOLVA_FIELD(result_qct, end_time, 16);
ORSOLVA_FIELD(result_qct, station_xyz, 32);
ORSOLVA_FIELD(result_qct, duration, 56);
ORSOLVA_FIELD(result_qct, lost_epochs, 64);
ORSOLVA_FIELD(result_qct, padding, 68);
ORSOLVA_FIELD(result_qct, sys, 72);
ORSOLVA_FIELD(result_qct, sat, 1848);
ORSOLVA_FIELD(result_qct, total, 115512);
ORSOLVA_FIELD(result_qct, sat_used, 115808);

ORSOLVA_RECORD(code_qc_entry, 104);
ORSOLVA_FIELD(code_qc_entry, code, 0);
ORSOLVA_FIELD(code_qc_entry, padding, 1);
ORSOLVA_FIELD(code_qc_entry, completeness, 8);
ORSOLVA_FIELD(code_qc_entry, mp_rms, 16);
ORSOLVA_FIELD(code_qc_entry, snr, 24);
ORSOLVA_FIELD(code_qc_entry, snr_below30, 32);
ORSOLVA_FIELD(code_qc_entry, snr_above30, 40);
ORSOLVA_FIELD(code_qc_entry, obs_per_slip, 48);
ORSOLVA_FIELD(code_qc_entry, slip_count, 56);
ORSOLVA_FIELD(code_qc_entry, padding2, 60);
ORSOLVA_FIELD(code_qc_entry, expected_epochs, 64);
ORSOLVA_FIELD(code_qc_entry, observed_epochs, 72);
ORSOLVA_FIELD(code_qc_entry, mp_count, 80);
ORSOLVA_FIELD(code_qc_entry, snr_count, 88);
ORSOLVA_FIELD(code_qc_entry, snr_count_above30, 92);
ORSOLVA_FIELD(code_qc_entry, snr_count_below30, 96);
ORSOLVA_FIELD(code_qc_entry, iod_slip_count, 100);

ORSOLVA_RECORD(code_qc_block, 840);
ORSOLVA_FIELD(code_qc_block, system, 0);
ORSOLVA_FIELD(code_qc_block, padding, 1);
ORSOLVA_FIELD(code_qc_block, count, 4);
ORSOLVA_FIELD(code_qc_block, entries, 8);

ORSOLVA_RECORD(total_code_qc_result, 327600);
ORSOLVA_FIELD(total_code_qc_result, sys, 0);
ORSOLVA_FIELD(total_code_qc_result, sat, 5040);

static_assert(sizeof(GNSSQC_STATE) == 4, "size of GNSSQC_STATE");

#undef ORSOLVA_FIELD
#undef ORSOLVA_RECORD
// clang-format on

#endif  // ORSOLVA_INTERFACE_RECORD_LAYOUT_H

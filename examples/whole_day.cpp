// Judges everything a receiver observed, in hourly batches, and prints the figures of GPS.
#include <orsolva/session.hpp>

#include <array>
#include <cstdio>
#include <vector>

#include "small_sky.h"

namespace {

constexpr int kEpochsPerHour = 3600 / SMALL_SKY_INTERVAL_S;

std::vector<GpsEph_gbt> BroadcastRecords() {
  std::vector<GpsEph_gbt> records(SMALL_SKY_RECORDS);
  small_sky_navigation(records.data());
  return records;
}

std::vector<ObsEpoch_QC_gbt> Hour(int hour) {
  std::vector<ObsEpoch_QC_gbt> epochs(kEpochsPerHour);
  for (int i = 0; i < kEpochsPerHour; ++i) small_sky_epoch(hour * kEpochsPerHour + i, &epochs[i]);
  return epochs;
}

orsolva::Config StationConfig() {
  // [config]
  orsolva::Config config;
  config.systems = {orsolva::System::kGps};
  config.interval_s = SMALL_SKY_INTERVAL_S;
  config.position_m = {small_sky_station_m[0], small_sky_station_m[1], small_sky_station_m[2]};
  config.excluded_satellites = {{orsolva::System::kGps, 3}};
  // [config]
  return config;
}

void PrintSignals(const total_code_qc_result& codes) {
  // [signals]
  const code_qc_block& gps = codes.sys[orsolva::SlotOf(orsolva::System::kGps)];
  for (int i = 0; i < gps.count; ++i) {
    const code_qc_entry& entry = gps.entries[i];
    const orsolva::SignalInfo* signal = orsolva::FindSignal(orsolva::System::kGps, entry.code);
    std::printf("%s %s: multipath %.2f m, SNR %.1f dB-Hz\n", signal->band, signal->observation, entry.mp_rms,
                entry.snr);
  }
  // [signals]
}

int Fail(const orsolva::Status& status) {
  std::fprintf(stderr, "%s\n", status.Text());
  return 1;
}

}  // namespace

int main() {
  const std::vector<GpsEph_gbt> records = BroadcastRecords();
  const orsolva::Config config = StationConfig();
  orsolva::Navigation navigation;
  navigation.gps = records;

  // [run]
  orsolva::Session session;
  orsolva::Status status = session.Start(config, navigation);
  for (int hour = 0; status && hour < 24; ++hour) status = session.Feed(Hour(hour));
  if (!status) return Fail(status);
  const auto result = session.Result();
  if (!result) return Fail(result.status);
  std::printf("%.1f h, GPS %.2f %% complete\n", result->duration, 100.0 * result->sys[0].completeness);
  // [run]

  const auto codes = session.CodeResult();
  if (!codes) return Fail(codes.status);
  PrintSignals(*codes);
  return 0;
}

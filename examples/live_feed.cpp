// Takes a live stream epoch by epoch and shows the figures on the way.
#include <orsolva/session.hpp>

#include <cstdio>
#include <memory>
#include <vector>

#include "small_sky.h"

namespace {

orsolva::Status StartSession(orsolva::Session& session) {
  std::vector<GpsEph_gbt> records(SMALL_SKY_RECORDS);
  small_sky_navigation(records.data());
  orsolva::Navigation navigation;
  navigation.gps = records;
  orsolva::Config config;
  config.systems = {orsolva::System::kGps};
  config.interval_s = SMALL_SKY_INTERVAL_S;
  config.position_m = {small_sky_station_m[0], small_sky_station_m[1], small_sky_station_m[2]};
  return session.Start(config, navigation);  // the records have been copied and may go away
}

/// A stream with gaps: the receiver is off between 1:00 and 1:10.
bool NextEpoch(int& index, ObsEpoch_QC_gbt& epoch) {
  if (++index == 120) index = 140;
  if (index >= 360) return false;
  small_sky_epoch(index, &epoch);
  return true;
}

}  // namespace

int main() {
  orsolva::Session session;
  if (!StartSession(session)) return 1;

  // [feed]
  int index = -1;
  const auto epoch = std::make_unique<ObsEpoch_QC_gbt>();  // 21 KiB: too large for many stacks
  while (NextEpoch(index, *epoch)) {
    const orsolva::Status status = session.Feed({epoch.get(), 1});
    if (!status) std::fprintf(stderr, "epoch %d: %s\n", index, status.Text());  // the run goes on
    if (index % 60 != 59) continue;
    if (const auto result = session.Result()) {
      std::printf("%4.1f h: %.2f %% complete, %d epochs lost\n", result->duration,
                  100.0 * result->sys[0].completeness, result->lost_epochs);
    }
  }
  // [feed]
  return 0;
}

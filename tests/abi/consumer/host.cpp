// The smallest host: asks the library who it is and goes once through the life of a run. It uses the header
// name of the first release, which goes on working for one more.
#include <gnssqc.h>

#include <cstdio>
#include <memory>

int main() {
  char banner[128];
  std::puts(GetGNSSQCLibVersion(banner));
  GpsEph_gbt record{};
  record.prn = 5;
  NavBodyData_QC_gbt nav{};
  nav.gps_num = 1;
  nav.gps_eph = &record;
  config_qct config{};
  config.enable_position = 1;
  unsigned long long* handle = CreatQcProcess();
  if (handle == nullptr || !InitialQc(nav, &config, handle)) return 1;
  const auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  epoch->time.time = 1646524800;
  if (GNSSQCPlus({1, epoch.get()}, handle) != GNSSQC_OK) return 2;
  const auto result = std::make_unique<result_qct>();
  if (!GetAllPeriodResult(handle, result.get()) || result->lost_epochs != 0) return 3;
  const auto codes = std::make_unique<total_code_qc_result>();
  GetEachCodeResult(handle, *codes);
  DiposeProcess(handle);
  return codes->sys[0].count == 0 ? 0 : 4;
}

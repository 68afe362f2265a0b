#include "tests/truth/observed_run.h"

#include <cmath>

namespace orsolva_test {
namespace {

constexpr std::size_t kBatch = 500;

class Listening : public orsolva::QcDetailObserver {
 public:
  explicit Listening(const PairListener& listener) : listener_(&listener) {}
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override {}
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override { (*listener_)(detail); }

 private:
  const PairListener* listener_;
};

}  // namespace

PairKey KeyOf(const orsolva::PairEpochDetail& detail) {
  return {detail.satellite.sys, detail.satellite.prn, static_cast<int>(detail.code),
          static_cast<int>(detail.partner)};
}

ObservedRun::ObservedRun(const orsolva_host::Scenario& scenario, const PairListener& listener)
    : simulation_(scenario) {
  Listening observer(listener);
  good_ = Initialise(process_, simulation_, TruthConfig(scenario));
  orsolva::SetDetailObserver(process_.Handle(), &observer);
  std::vector<ObsEpoch_QC_gbt> batch;
  while (good_ && simulation_.NextBatch(batch, kBatch) > 0) good_ = process_.Feed(batch) == GNSSQC_OK;
  orsolva::SetDetailObserver(process_.Handle(), nullptr);
  results_ = std::make_unique<Results>(process_);
}

const code_qc_entry* ObservedRun::EntryOf(int system, int prn, int code) const {
  return FindEntry(*results_->Codes, system, prn, code);
}

std::int64_t EpochNumber(const orsolva_host::Scenario& scenario, const Time_gbt& time) {
  return std::llround(SecondsAfter(scenario.start, time) / scenario.interval_s);
}

void Silence(orsolva_host::ErrorModel& errors) {
  errors.code_noise_m = {};
  errors.multipath_m = {};
  errors.phase_noise_m = {};
}

MultipathWeights WeightsOf(double f_code_hz, double f_partner_hz) {
  const double a = f_code_hz * f_code_hz, b = f_partner_hz * f_partner_hz;
  return {-(a + b) / (a - b), 2 * b / (a - b)};
}

int MeanWindowOf(double interval_s) {
  if (interval_s <= 5) return 50;
  return interval_s <= 30 ? static_cast<int>(300 / interval_s) : 10;
}

double SquaresLessMovingMean(std::uint64_t n, int window) {
  double sum = 0;
  for (std::uint64_t k = 1; k <= n; ++k) {
    sum += 1 - 1 / static_cast<double>(std::min<std::uint64_t>(k, static_cast<std::uint64_t>(window)));
  }
  return sum;
}

}  // namespace orsolva_test

// Drives the exported functions: one run over epochs in a given split.
#ifndef ORSOLVA_TESTS_SUPPORT_RUN_H
#define ORSOLVA_TESTS_SUPPORT_RUN_H

#include <cstring>
#include <memory>
#include <vector>

#include "orsolva/gnssqc.h"
#include "tests/support/navigation_set.h"

namespace orsolva_test {

struct Disposer {
  void operator()(unsigned long long* handle) const { DiposeProcess(handle); }
};
/// A handle that frees itself.
using OwnedHandle = std::unique_ptr<unsigned long long, Disposer>;

/// A handle with the calls of a run.
class Process {
 public:
  Process() : handle_(CreatQcProcess()) {}
  unsigned long long* Handle() const { return handle_.get(); }

  bool Initialise(const NavigationSet& navigation, const config_qct& config) {
    return InitialQc(navigation.Body(), &config, handle_.get());
  }
  GNSSQC_STATE Feed(const ObsEpoch_QC_gbt* epochs, int count) {
    return GNSSQCPlus({count, epochs}, handle_.get());
  }
  GNSSQC_STATE Feed(const std::vector<ObsEpoch_QC_gbt>& epochs) {
    return Feed(epochs.data(), static_cast<int>(epochs.size()));
  }

 private:
  OwnedHandle handle_;
};

/// Both results of a run, zero-filled before they are asked for the first time.
struct Results {
  std::unique_ptr<result_qct> Whole = std::make_unique<result_qct>();
  std::unique_ptr<total_code_qc_result> Codes = std::make_unique<total_code_qc_result>();
  bool Plausible = false;

  Results() = default;
  explicit Results(const Process& process) { AskFor(process); }

  void AskFor(const Process& process) {
    Plausible = GetAllPeriodResult(process.Handle(), Whole.get());
    GetEachCodeResult(process.Handle(), *Codes);
  }

  /// Whether every byte of both records is the same.
  bool SameBits(const Results& other) const {
    return Plausible == other.Plausible && std::memcmp(Whole.get(), other.Whole.get(), sizeof *Whole) == 0 &&
           std::memcmp(Codes.get(), other.Codes.get(), sizeof *Codes) == 0;
  }
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_RUN_H

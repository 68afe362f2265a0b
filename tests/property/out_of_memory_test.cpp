// Every allocation of a run fails once: the call that needed it gives its failure value, nothing leaks, and
// the handle can be used and disposed of all the same.
#include "tests/property/failing_memory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#define ORSOLVA_LEAK_CHECK 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define ORSOLVA_LEAK_CHECK 1
#endif
#endif

#include "orsolva/session.hpp"
#include "tests/support/run.h"
#include "tests/support/sanitized.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

constexpr int kEpochs = 4;

// The sanitizers make a run tens of times longer: there only every 40th allocation fails.
constexpr long kStep = kSanitized ? 40 : 1;

const SimulatedSky& Sky() {
  static const SimulatedSky sky([] {
    SkyOptions options;
    options.Epochs = kEpochs;
    options.Start +=
        1000;  // before the reference time of the nearest GLONASS record: integrated against time
    return options;
  }());
  return sky;
}

config_qct Configuration(bool position_given, bool bands_detected) {
  config_qct config = Sky().Config();
  config.enable_position = position_given ? 1 : 0;
  config.auto_detect_freq = bands_detected ? 1 : 0;
  return config;
}

/// What the calls of a run gave.
struct Answers {
  bool Created = false;
  bool Initialised = false;
  GNSSQC_STATE First = GNSSQC_OK;
  GNSSQC_STATE Second = GNSSQC_OK;
  bool Plausible = false;

  bool AllGood() const {
    return Created && Initialised && First == GNSSQC_OK && Second == GNSSQC_OK && Plausible;
  }
};

/// One whole run in two batches that goes on whatever a call gives. Allocates nothing itself.
Answers WholeRun(const config_qct& config, result_qct& whole, total_code_qc_result& codes) {
  Answers answers;
  const NavBodyData_QC_gbt navigation = Sky().Navigation.Body();
  unsigned long long* handle = CreatQcProcess();
  answers.Created = handle != nullptr;
  if (handle == nullptr) return answers;
  answers.Initialised = InitialQc(navigation, &config, handle);
  const ObsEpoch_QC_gbt* epochs = Sky().Epochs.data();
  answers.First = GNSSQCPlus({kEpochs / 2, epochs}, handle);
  answers.Second = GNSSQCPlus({kEpochs - kEpochs / 2, epochs + kEpochs / 2}, handle);
  answers.Plausible = GetAllPeriodResult(handle, &whole);
  GetEachCodeResult(handle, codes);
  DiposeProcess(handle);
  return answers;
}

/// Whether the position is given, and whether the bands are detected: with bands of the configuration the
/// result per code allocates system by system.
class OutOfMemory : public testing::TestWithParam<std::tuple<bool, bool>> {
 protected:
  std::unique_ptr<result_qct> whole_ = std::make_unique<result_qct>();
  std::unique_ptr<total_code_qc_result> codes_ = std::make_unique<total_code_qc_result>();
  std::unique_ptr<result_qct> good_whole_ = std::make_unique<result_qct>();
  std::unique_ptr<total_code_qc_result> good_codes_ = std::make_unique<total_code_qc_result>();
  const config_qct config_ = Configuration(std::get<0>(GetParam()), std::get<1>(GetParam()));

  bool SameAsGood() const {
    return std::memcmp(whole_.get(), good_whole_.get(), sizeof *whole_) == 0 &&
           std::memcmp(codes_.get(), good_codes_.get(), sizeof *codes_) == 0;
  }

  /// Counts the allocations of an undisturbed run and keeps its results.
  long AllocationsOfAGoodRun() {
    *good_whole_ = {};
    *good_codes_ = {};
    EXPECT_TRUE(WholeRun(config_, *good_whole_, *good_codes_).AllGood());
    FailingMemory::Arm(FailingMemory::kNever, 0);
    WholeRun(config_, *good_whole_, *good_codes_);
    const long calls = FailingMemory::calls;
    FailingMemory::Disarm();
    return calls;
  }

  /// One run in which allocations n to `to` fail.
  void RunWithout(long n, long to) {
    *whole_ = {};
    *codes_ = {};
    const long live = FailingMemory::live;
    FailingMemory::Arm(n, to);
    const Answers answers = WholeRun(config_, *whole_, *codes_);
    const bool failed = FailingMemory::Disarm();
    ASSERT_TRUE(failed) << n;
    ASSERT_EQ(FailingMemory::live, live) << "leak after allocation " << n << " failed";
    // The call in which an allocation fails reports the failure. Only the result per code has no value for
    // it.
    ASSERT_TRUE(!answers.AllGood() || CodesAreZero() || SameAsGood())
        << "allocation " << n << " failed unseen";
  }

  bool CodesAreZero() const {
    static const total_code_qc_result zero = {};
    return std::memcmp(codes_.get(), &zero, sizeof zero) == 0;
  }
};

TEST_P(OutOfMemory, EveryAllocationMayFailOnce) {
  const long calls = AllocationsOfAGoodRun();
  ASSERT_GT(calls, 20);
  for (long n = 1; n <= calls; n += kStep) {
    RunWithout(n, n);
    if (HasFatalFailure()) return;
  }
  RecordProperty("allocations", static_cast<int>(calls));
  *whole_ = {};
  *codes_ = {};
  EXPECT_TRUE(WholeRun(config_, *whole_, *codes_).AllGood());
  EXPECT_TRUE(SameAsGood()) << "an undisturbed run afterwards";
}

TEST_P(OutOfMemory, MemoryMayStayAwayForGood) {
  const long calls = AllocationsOfAGoodRun();
  for (long n = 1; n <= calls; n += kStep) {
    RunWithout(n, FailingMemory::kNever);
    if (HasFatalFailure()) return;
  }
}

TEST_P(OutOfMemory, AResultThatFailedCanBeAskedForAgain) {
  AllocationsOfAGoodRun();
  Process process;
  ASSERT_TRUE(process.Initialise(Sky().Navigation, config_));
  ASSERT_EQ(process.Feed(Sky().Epochs.data(), kEpochs / 2), GNSSQC_OK);
  ASSERT_EQ(process.Feed(Sky().Epochs.data() + kEpochs / 2, kEpochs - kEpochs / 2), GNSSQC_OK);
  for (long n = 1;; n += kStep) {
    FailingMemory::Arm(n, n);
    const bool plausible = GetAllPeriodResult(process.Handle(), whole_.get());
    GetEachCodeResult(process.Handle(), *codes_);
    if (!FailingMemory::Disarm()) break;
    ASSERT_TRUE(!plausible || CodesAreZero()) << "allocation " << n << " failed unseen";
    *whole_ = {};
    *codes_ = {};
    ASSERT_TRUE(GetAllPeriodResult(process.Handle(), whole_.get()));
    GetEachCodeResult(process.Handle(), *codes_);
    ASSERT_TRUE(SameAsGood()) << "after allocation " << n << " of the results failed";
  }
}

/// The same run as WholeRun through the wrapper, which goes on while it can.
/// @return whether every call was good
bool SessionRun(const config_qct& config, result_qct& whole, total_code_qc_result& codes) {
  orsolva::Session session;
  const NavBodyData_QC_gbt navigation = Sky().Navigation.Body();
  const ObsEpoch_QC_gbt* epochs = Sky().Epochs.data();
  if (!session.Start(config, navigation)) return false;
  const bool first = session.Feed({epochs, kEpochs / 2}).Ok();
  const bool second = session.Feed({epochs + kEpochs / 2, kEpochs - kEpochs / 2}).Ok();
  const auto result = session.Result();
  const auto code_result = session.CodeResult();
  if (result) whole = *result;
  if (code_result) codes = *code_result;
  return first && second && result && code_result;
}

TEST_P(OutOfMemory, ASessionThrowsNothingAndReportsWhatFailed) {
  AllocationsOfAGoodRun();
  for (long n = 1;; n += 5 * kStep) {
    *whole_ = {};
    *codes_ = {};
    const long live = FailingMemory::live;
    FailingMemory::Arm(n, n);
    bool good = true;
    ASSERT_NO_THROW(good = SessionRun(config_, *whole_, *codes_)) << n;
    if (!FailingMemory::Disarm()) break;
    ASSERT_EQ(FailingMemory::live, live) << "leak after allocation " << n << " failed";
    ASSERT_TRUE(!good || CodesAreZero() || SameAsGood()) << "allocation " << n << " failed unseen";
  }
  EXPECT_TRUE(SameAsGood()) << "an undisturbed run afterwards";
}

TEST(OutOfMemoryOneShot, GivesAnErrorAndLeaksOnlyWhatIsKnown) {
  const NavBodyData_QC_gbt navigation = Sky().Navigation.Body();
  const config_qct config = Configuration(true, true);
  const auto result = std::make_unique<result_qct>();
  for (long n = 1;; n += kStep) {
    const long live = FailingMemory::live;
    FailingMemory::Arm(n, n);
#ifdef ORSOLVA_LEAK_CHECK
    __lsan::ScopedDisabler deliberate;
#endif
    const GNSSQC_STATE state = GNSSQC({kEpochs, Sky().Epochs.data()}, navigation, config, *result);
    if (!FailingMemory::Disarm()) break;
    // Refused navigation keeps the process object (see GNSSQC); every other way frees everything.
    if (state != GNSSQC_NO_NAV) {
      ASSERT_EQ(FailingMemory::live, live) << n;
    }
  }
}

std::string NameOf(const testing::TestParamInfo<std::tuple<bool, bool>>& tested) {
  const auto [given, detected] = tested.param;
  return std::string(given ? "Given" : "Computed") + (detected ? "" : "WithGivenBands");
}

// The position is computed before any band matters: one of the two cases with given bands is enough.
INSTANTIATE_TEST_SUITE_P(Position, OutOfMemory,
                         testing::Values(std::tuple(true, true), std::tuple(false, true),
                                         std::tuple(true, false)),
                         NameOf);

}  // namespace
}  // namespace orsolva_test

// Every bit of the results of simulated runs and of the reference cases is the one of the committed digests.
//
// The digests are in golden_digests.txt. To make them again after a change that is meant to move bits:
//   ORSOLVA_WRITE_GOLDEN=tests/property/golden_digests.txt build/bin/golden_test
// with the reference cases next to the checkout, and say in the commit which figures moved and why.
//
// Bits follow the mathematical functions of the platform, whose last bit differs between C libraries and
// processors. The file therefore begins with a digest of those functions; where they differ the tests skip.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>

#include "tests/support/deliberate_leak.h"
#include "tests/support/digest.h"
#include "tests/support/reference_case.h"
#include "tests/support/run.h"
#include "tests/support/shared_folder.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

using Digests = std::map<std::string, std::uint64_t>;

template <class Record>
std::uint64_t DigestOf(const Record& record, std::uint64_t digest = kEmptyDigest) {
  return Digest(&record, sizeof record, digest);
}

std::uint64_t MathDigest() {
  std::uint64_t digest = kEmptyDigest;
  for (int i = 1; i < 20000; ++i) {
    const double x = i * 7.3e-4;
    const double y = std::fmod(x, 2.0) - 1.0;
    for (const double value : {std::sin(x), std::cos(x), std::atan2(y, x), std::asin(y), std::atan(x)}) {
      digest = DigestOf(value, digest);
    }
  }
  return digest;
}

SkyOptions Options(double interval, std::uint32_t seed) {
  SkyOptions options;
  options.Interval = interval;
  options.Epochs = 240;
  options.Seed = seed;
  options.MissingShare = 0.02;
  return options;
}

std::uint64_t SkyDigest(double interval, bool given, std::uint32_t seed) {
  const SimulatedSky sky(Options(interval, seed));
  config_qct config = sky.Config();
  config.enable_position = given ? 1 : 0;
  Process process;
  if (!process.Initialise(sky.Navigation, config)) return 0;
  std::uint64_t digest = kEmptyDigest;
  // Both results after each of three batches: what is asked in between is golden too.
  for (int part = 0; part < 3; ++part) {
    if (process.Feed(sky.Epochs.data() + part * 80, 80) != GNSSQC_OK) return 0;
    const Results results(process);
    digest = DigestOf(*results.Codes, DigestOf(*results.Whole, digest));
  }
  return digest;
}

std::uint64_t ReferenceDigest(const std::filesystem::path& folder) {
  const ReferenceCase reference(folder);
  const NavBodyData_QC_gbt navigation = reference.Navigation.Body();
  const auto whole = std::make_unique<result_qct>();
  const auto codes = std::make_unique<total_code_qc_result>();
  std::uint64_t digest = kEmptyDigest;
  unsigned long long* handle = CreatQcProcess();
  for (const auto& call : reference.Text.at("calls")) {
    const auto name = call.at("call").get<std::string>();
    if (name == "init") InitialQc(navigation, &reference.Config, handle);
    if (name == "plus") digest = DigestOf(GNSSQCPlus(reference.Batch(call), handle), digest);
    if (name == "result") {
      std::memset(whole.get(), 0, sizeof *whole);  // padding too
      digest = DigestOf(GetAllPeriodResult(handle, whole.get()), digest);
      digest = DigestOf(*whole, digest);
    }
    if (name == "codes") {
      GetEachCodeResult(handle, *codes);
      digest = DigestOf(*codes, digest);
    }
    if (name == "one_shot") {
      std::memset(whole.get(), 0, sizeof *whole);  // padding too
      testing::internal::CaptureStdout();
      const LeakIsDeliberate leak;
      GNSSQC(reference.Batch(call), navigation, reference.Config, *whole);
      std::fflush(stdout);
      testing::internal::GetCapturedStdout();
      digest = DigestOf(*whole, digest);
    }
  }
  DiposeProcess(handle);
  return digest;
}

Digests SkyDigests() {
  Digests digests;
  for (const std::uint32_t seed : {1U, 2U}) {
    for (const double interval : {0.5, 1.0, 30.0}) {
      for (const bool given : {true, false}) {
        char name[80];
        std::snprintf(name, sizeof name, "sky-%gs-seed-%u-position-%s", interval, seed,
                      given ? "given" : "computed");
        digests[name] = SkyDigest(interval, given, seed);
      }
    }
  }
  return digests;
}

Digests ReferenceDigests() {
  Digests digests;
  const std::filesystem::path folder = SharedFolder() / "reference";
  for (const std::string& name : ReferenceCaseNames(folder)) digests[name] = ReferenceDigest(folder / name);
  return digests;
}

Digests Committed() {
  Digests digests;
  std::ifstream file(std::filesystem::path(ORSOLVA_SOURCE_DIR) / "tests/property/golden_digests.txt");
  std::string name;
  std::uint64_t digest = 0;
  while (file >> name >> std::hex >> digest) digests[name] = digest;
  return digests;
}

void WriteTo(const char* path) {
  Digests all = SkyDigests();
  all.merge(ReferenceDigests());
  std::ofstream file(path);
  file << "platform-mathematics " << std::hex << MathDigest() << "\n";
  for (const auto& [name, digest] : all) file << name << " " << std::hex << digest << "\n";
}

/// Skips the test, except on the server that has to run it (ORSOLVA_NO_SKIPS).
void Skip(const std::string& why) {
  if (std::getenv("ORSOLVA_NO_SKIPS") != nullptr) {
    FAIL() << why;
  } else {
    GTEST_SKIP() << why;
  }
}

class Golden : public testing::Test {
 protected:
  void SetUp() override {
    if (const char* path = std::getenv("ORSOLVA_WRITE_GOLDEN"); path != nullptr) WriteTo(path);
    committed_ = Committed();
    ASSERT_FALSE(committed_.empty());
    if (committed_.at("platform-mathematics") != MathDigest()) {
      Skip("the digests were made with other mathematical functions");
    }
  }

  void Expect(const Digests& digests) {
    for (const auto& [name, digest] : digests) {
      ASSERT_EQ(committed_.count(name), 1U) << name << " has no committed digest";
      EXPECT_EQ(committed_.at(name), digest) << name << " gives other bits";
    }
  }

  Digests committed_;
};

TEST_F(Golden, EveryResultBitOfSimulatedRunsIsTheCommittedOne) { Expect(SkyDigests()); }

TEST_F(Golden, EveryResultBitOfTheReferenceCasesIsTheCommittedOne) {
  const Digests digests = ReferenceDigests();
  if (digests.empty()) return Skip("no reference cases at " + SharedFolder().string());
  Expect(digests);
}

}  // namespace
}  // namespace orsolva_test

// Every reference case: the same calls on the same records give the expected figures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>
#include <type_traits>

#include "orsolva/gnssqc.h"
#include "tests/support/deliberate_leak.h"
#include "tests/support/json_reader.h"
#include "tests/support/record_fields.h"
#include "tests/support/reference_case.h"
#include "tests/support/shared_folder.h"

namespace orsolva_test {
namespace {

std::filesystem::path ReferenceFolder() { return SharedFolder() / "reference"; }

/// Compares two records by the tolerances of a case and collects what differs.
class Comparison {
 public:
  explicit Comparison(const Json& tolerances) : tolerances_(tolerances) {}

  template <class T>
  void operator()(const std::string& path, const std::string& name, T got, T expected) {
    const Json& fields = tolerances_.at("fields");
    const Json& rule = fields.contains(name)
                           ? fields.at(name)
                           : tolerances_.at(std::is_floating_point_v<T> ? "doubles" : "integers");
    if (rule.contains("compare") && !rule.at("compare").get<bool>()) return;
    ++compared_;
    if (Agree(static_cast<double>(got), static_cast<double>(expected), rule)) return;
    if (++different_ <= 12) {
      report_ << "  " << path << "." << name << ": " << +got << ", expected " << +expected << "\n";
    }
  }

  int Compared() const { return compared_; }
  int Different() const { return different_; }
  std::string Report() const { return report_.str(); }

 private:
  static bool Agree(double a, double b, const Json& rule) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return true;
    const double bound = rule.at("absolute").get<double>() +
                         rule.at("relative").get<double>() * std::max(std::abs(a), std::abs(b));
    return std::abs(a - b) <= bound;
  }

  const Json& tolerances_;
  int compared_ = 0;
  int different_ = 0;
  std::ostringstream report_;
};

class ReferenceCases : public testing::TestWithParam<std::string> {
 protected:
  template <class Record>
  void ExpectRecord(const ReferenceCase& reference, const Json& call, const Record& got) {
    const auto file = call.at("file").get<std::string>();
    const auto expected = UnpackRecord<Record>(reference.Folder / file);
    Comparison comparison(reference.Text.at("tolerances"));
    VisitFields(got, expected, comparison);
    EXPECT_GT(comparison.Compared(), 1000);
    EXPECT_EQ(comparison.Different(), 0) << file << " of " << GetParam() << " differs:\n"
                                         << comparison.Report();
  }
};

TEST_P(ReferenceCases, GivesTheExpectedFigures) {
  if (GetParam() == "none") GTEST_SKIP() << "no reference cases at " << ReferenceFolder();
  const ReferenceCase reference(ReferenceFolder() / GetParam());
  const NavBodyData_QC_gbt navigation = reference.Navigation.Body();
  unsigned long long* handle = CreatQcProcess();
  ASSERT_NE(handle, nullptr);
  for (const auto& call : reference.Text.at("calls")) {
    const auto name = call.at("call").get<std::string>();
    SCOPED_TRACE(call.dump());
    if (name == "init") {
      EXPECT_EQ(InitialQc(navigation, &reference.Config, handle), call.at("returns").get<bool>());
    } else if (name == "plus") {
      EXPECT_EQ(GNSSQCPlus(reference.Batch(call), handle), call.at("returns").get<int>());
    } else if (name == "result") {
      auto record = std::make_unique<result_qct>();
      EXPECT_EQ(GetAllPeriodResult(handle, record.get()), call.at("returns").get<bool>());
      ExpectRecord(reference, call, *record);
    } else if (name == "codes") {
      auto record = std::make_unique<total_code_qc_result>();
      GetEachCodeResult(handle, *record);
      ExpectRecord(reference, call, *record);
    } else if (name == "one_shot") {
      auto record = std::make_unique<result_qct>();
      testing::internal::CaptureStdout();
      const LeakIsDeliberate leak;
      const int state = GNSSQC(reference.Batch(call), navigation, reference.Config, *record);
      std::fflush(stdout);
      EXPECT_EQ(testing::internal::GetCapturedStdout(), call.at("prints").get<std::string>());
      EXPECT_EQ(state, call.at("returns").get<int>());
      ExpectRecord(reference, call, *record);
    } else {
      ADD_FAILURE() << "unknown call";
    }
  }
  DiposeProcess(handle);
}

std::vector<std::string> CaseNames() {
  std::vector<std::string> names = ReferenceCaseNames(ReferenceFolder());
  if (names.empty()) names.push_back("none");
  return names;
}

INSTANTIATE_TEST_SUITE_P(Shared, ReferenceCases, testing::ValuesIn(CaseNames()), [](const auto& tested) {
  std::string name = tested.param;
  for (char& c : name) {
    if (c == '-') c = '_';
  }
  return name;
});

}  // namespace
}  // namespace orsolva_test

// Any bytes as a user's profile of limits, held against a report with and without figures.
#include "host/report/profile.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "host/report/verdict_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orsolva_host::Report;

Report SmallReport() {
  Report report;
  report.run.epochs = 100;
  report.systems.emplace_back();
  report.systems.back().letter = 'G';
  return report;
}

void HoldAgainst(const orsolva_host::Profile& profile, const Report& report) {
  const orsolva_host::ProfileVerdict verdict = Judge(report, profile);
  orsolva_fuzz::Require(verdict.outcomes.size() >= profile.criteria.size(), "an outcome a criterion");
  for (const orsolva_host::CriterionOutcome& outcome : verdict.outcomes) {
    orsolva_fuzz::Require(std::isfinite(outcome.good_limit) && std::isfinite(outcome.fair_limit),
                          "limits are numbers");
  }
  orsolva_host::VerdictText(verdict, orsolva_host::TextStyle());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    const orsolva_host::Profile profile = orsolva_host::ParseProfile(text, "fuzzed");
    HoldAgainst(profile, Report());
    HoldAgainst(profile, SmallReport());
  } catch (const orsolva_host::ProfileError& error) {
    const std::string what = error.what();
    orsolva_fuzz::Require(what.compare(0, 7, "fuzzed:") == 0, "an error begins with file and line");
  }
  return 0;
}

#include "host/judging/library_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include "host/judging/run_error.h"
#include "host/report/build_report.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/run_facts.h"

namespace orsolva_host {
namespace {

using orsolva::StatusCode;

constexpr const char* kNoRecords = "The navigation files hold no record that the library can use.";
constexpr const char* kNoneOfTheTime = "The navigation files hold no record of the time of the observations.";

/// The configuration of the library. @param interval_s  the nominal interval
config_qct Configuration(const JudgingSettings& settings, const EpochSource& source, double interval_s) {
  config_qct config = {};
  for (int slot = 0; slot < kSystems; ++slot) {
    const bool on = settings.systems.find(kSystemTable[slot].letter) != std::string::npos;
    config.enable_system[slot] = config.combination_system[slot] = on ? 1 : 0;
  }
  config.elevation = settings.elevation_cutoff_deg;
  config.interval = interval_s;
  config.auto_detect_freq = 1;
  for (auto& row : config.include_satellite) std::fill(std::begin(row), std::end(row), 1);
  for (auto& row : config.satellite_freq) std::fill(std::begin(row), std::end(row), 1);
  for (const ExcludedSatellite& out : settings.excluded) {
    config.include_satellite[out.system_slot][out.number - 1] = 0;
  }
  if (settings.position.source != PositionSource::kComputed) {
    const bool header = settings.position.source == PositionSource::kHeader;
    const std::array<double, 3>& xyz = header ? *source.Header().position : settings.position.xyz_m;
    config.enable_position = 1;
    std::copy(xyz.begin(), xyz.end(), config.position);
  }
  return config;
}

/// Of a batch that the library did not take.
std::string NoticeOfBatch(StatusCode status) {
  const char* why = status == StatusCode::kNoPosition ? "no position could be computed from it"
                                                      : "it holds no usable epoch";
  return std::string("a batch of epochs is not judged: ") + why;
}

/// "2021-12-21"
std::string DateText(const Time_gbt& time) {
  const CivilTime civil = ToCivil(time);
  return fmt::format("{:04}-{:02}-{:02}", civil.year, civil.month, civil.day);
}

/// The name under which the broadcast records of a day are distributed (RINEX 3.05, table A1).
std::string BroadcastFileName(const Time_gbt& time) {
  const CivilTime civil = ToCivil(time);
  const std::int64_t day =
      DaysFromCivil(civil.year, civil.month, civil.day) - DaysFromCivil(civil.year, 1, 1) + 1;
  return fmt::format("BRDC00IGS_R_{:04}{:03}0000_01D_MN.rnx.gz", civil.year, day);
}

/// What would be there with the broadcast records of a day, and a file that has them.
std::string NavigationAdvice(const char* found, const Time_gbt& first) {
  return fmt::format(
      "{} Elevations, completeness and positions need the broadcast records of {}: name a file such as {} "
      "after "
      "the observation file.",
      found, DateText(first), BroadcastFileName(first));
}

}  // namespace

LibraryRun::LibraryRun(const EpochSource& source, const JudgingSettings& settings, Diagnostics& diagnostics,
                       DetailSink* detail)
    : source_(source), settings_(settings), diagnostics_(diagnostics) {
  sinks_.Add(&events_);
  if (detail == nullptr) return;
  sinks_.Add(detail);
  observer_ = &sinks_;
}

void LibraryRun::Refuse(std::string id, std::string text) {
  if (settings_.strict) throw RunError(source_.Name() + ": " + text, NoticeOfBatch(last_status_));
  diagnostics_.Add(source_.Name(), 0, text);
  absence_ = LibraryAbsence{std::move(id), std::move(text)};
}

void LibraryRun::RefuseNavigation(const char* found) {
  Refuse("no-navigation", NavigationAdvice(found, first_));
}

void LibraryRun::Start(const ReadNavigation& navigation, const Time_gbt& first, double interval_s) {
  interval_s_ = interval_s;
  coverage_ = std::make_unique<CoverageCounter>(navigation.set, settings_.systems);
  sinks_.Begin(first, interval_s);
  first_ = first;
  if (navigation.files.empty()) {
    return RefuseNavigation(
        "No navigation file is named, and none of the day lies next to the observations.");
  }
  if (navigation.set.Size() == 0) return RefuseNavigation(kNoRecords);
  config_ = Configuration(settings_, source_, interval_s);
  const orsolva::Status status = session_.Start(config_, navigation.set.Body());
  if (status.Code() == StatusCode::kNoMemory) throw RunError("there is not enough memory for a run.");
  if (!status) return RefuseNavigation(kNoRecords);
  orsolva::SetDetailObserver(session_.Handle(), observer_);
}

/// Records are added with a configuration: one without the computed position would have it computed again.
void LibraryRun::KeepPosition() {
  if (config_.enable_position || !orsolva::FactsOf(session_.Handle()).position_known) return;
  const orsolva::Outcome<result_qct> result = session_.Result();
  if (!result && result.status.Code() != StatusCode::kImplausible) return;
  std::copy(std::begin(result->station_xyz), std::end(result->station_xyz), config_.position);
  config_.enable_position = 1;
}

void LibraryRun::AddNavigation(const NavigationSet& set) {
  if (set.Size() == 0 || !coverage_) return;
  coverage_->AddRecords(set);
  if (!session_.Started()) return;
  KeepPosition();
  InitialQc(set.Body(), &config_, session_.Handle());
}

void LibraryRun::Feed(const ObsEpoch_QC_gbt* epochs, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) coverage_->Add(epochs[i]);
  if (absence_) return;
  last_status_ = session_.Feed({epochs, count}).Code();
  sinks_.EndBatch();
  if (last_status_ == StatusCode::kOk) {
    ++batches_taken_;
  } else if (last_status_ == StatusCode::kNoPosition || last_status_ == StatusCode::kNoData) {
    diagnostics_.Add(source_.Name(), 0, NoticeOfBatch(last_status_), false);
  } else {
    throw RunError(source_.Name() + ": internal error of the library in the epochs from " +
                   TimeText(epochs[0].time) + " on. Please report it with the file.");
  }
}

bool LibraryRun::AnyCovered() const {
  const std::vector<NavigationCoverage> rows = coverage_->Rows();
  return std::any_of(rows.begin(), rows.end(),
                     [](const NavigationCoverage& row) { return row.covered_ratio > 0; });
}

void LibraryRun::RefuseUnfed() {
  if (!AnyCovered()) return RefuseNavigation(kNoneOfTheTime);
  if (last_status_ == StatusCode::kNoPosition) {
    return Refuse(
        "no-position",
        "No position could be computed from the observations. Check that the navigation files cover "
        "the epochs, or give the position with --position header or --position X,Y,Z.");
  }
  Refuse("no-epochs", "The library found no epoch that it can judge. Check the systems and the interval.");
}

/// Makes the report from the results. @return false when the library refuses them
bool LibraryRun::Judge(Report& report) {
  const orsolva::Outcome<result_qct> result = session_.Result();
  if (!result && result.status.Code() != StatusCode::kImplausible) {
    throw RunError("there is not enough memory for a result.");
  }
  if (!result) {
    std::string why = "The library's result is not plausible";
    if (result->lost_epochs < 0) {
      why += fmt::format(
          ": there are {} more epochs than an interval of {:g} s allows. Give the interval of the "
          "data with --interval, and check for duplicate epochs",
          -static_cast<std::int64_t>(result->lost_epochs), interval_s_);
    }
    Refuse("implausible", why + ".");
    return false;
  }
  const orsolva::Outcome<total_code_qc_result> codes = session_.CodeResult();
  if (!codes) throw RunError("there is not enough memory for a result.");
  Report judged = BuildReport(report.run, *result, *codes, orsolva::FactsOf(session_.Handle()));
  if (judged.signals.empty() && !AnyCovered()) {
    RefuseNavigation(kNoneOfTheTime);
    return false;
  }
  sinks_.Finish(*codes);
  report = std::move(judged);
  return true;
}

Report LibraryRun::Finish(ReportRun run) {
  Report report;
  report.run = std::move(run);
  if (!absence_ && batches_taken_ == 0) RefuseUnfed();
  const bool judged = !absence_ && Judge(report);
  if (!judged) sinks_.Finish(*std::make_unique<total_code_qc_result>());
  report.run.library_absence = absence_;
  report.run.navigation_coverage = coverage_->Rows();
  return report;
}

std::optional<RunEvents> LibraryRun::Events() const {
  if (absence_) return std::nullopt;
  return EventsOf(events_);
}

}  // namespace orsolva_host

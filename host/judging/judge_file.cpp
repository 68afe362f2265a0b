#include "host/judging/judge_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

#include "host/judging/epoch_batch.h"
#include "host/judging/library_version.h"
#include "host/judging/nominal_interval.h"
#include "host/report/build_report.h"
#include "host/report/detail_collector.h"
#include "host/report/navigation_coverage.h"
#include "host/report/profile.h"
#include "host/report/run_events.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/detail.h"
#include "orsolva/run_facts.h"
#include "orsolva/session.hpp"

namespace orsolva_host {
namespace {

using orsolva::StatusCode;

constexpr std::size_t kBatchEpochs = 2880;

void RequirePosition(const JudgingSettings& settings, const EpochSource& source) {
  if (settings.position.source == PositionSource::kHeader && !source.Header().position) {
    throw RunError(source.Name() +
                   ": the header holds no approximate position. Use --position X,Y,Z or --position spp.");
  }
}

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

const char* NameOf(PositionSource source) {
  if (source == PositionSource::kHeader) return "header";
  return source == PositionSource::kOption ? "option" : "computed";
}

/// Of a batch that the library did not take.
std::string NoticeOfBatch(StatusCode status) {
  const char* why = status == StatusCode::kNoPosition ? "no position could be computed from it"
                                                      : "it holds no usable epoch";
  return std::string("a batch of epochs is not judged: ") + why;
}

/// One run from its epochs to its report.
class Run {
 public:
  Run(EpochSource& source, const JudgingSettings& settings, Diagnostics& diagnostics,
      const RunObservers& observers)
      : source_(source),
        settings_(settings),
        diagnostics_(diagnostics),
        monitor_(observers.monitor),
        batch_(MakeEpochBatch(kBatchEpochs)) {
    sinks_.Add(&events_);
    if (observers.detail != nullptr) sinks_.Add(observers.detail);
  }

  Report Judged(SharedNavigation& named);

 private:
  void FillBatch();
  void TakeNavigation(SharedNavigation& named);
  void Start();
  void FeedBatch();
  RunError NoBatchError() const;
  Report Finish();
  ReportRun Facts() const;

  EpochSource& source_;
  const JudgingSettings& settings_;
  Diagnostics& diagnostics_;
  RunMonitor* monitor_;
  DetailCollector events_{DetailCollector::Keep::kFindings};
  DetailFanOut sinks_;
  EpochBatch batch_;
  std::size_t batch_size_ = 0;
  std::shared_ptr<const ReadNavigation> navigation_;
  std::unique_ptr<CoverageCounter> coverage_;
  NominalInterval interval_;
  orsolva::Session session_;
  std::uint64_t epochs_ = 0;
  int batches_taken_ = 0;
  StatusCode last_status_ = StatusCode::kOk;
};

Report Run::Judged(SharedNavigation& named) {
  FillBatch();
  if (batch_size_ == 0) throw RunError(source_.Name() + ": found no epoch. Check that the file is complete.");
  TakeNavigation(named);
  interval_ = ChooseInterval(settings_, source_, batch_.get(), batch_size_, diagnostics_);
  RequirePosition(settings_, source_);
  Start();
  while (batch_size_ > 0) {
    FeedBatch();
    FillBatch();
  }
  if (batches_taken_ == 0) throw NoBatchError();
  return Finish();
}

void Run::FillBatch() {
  batch_size_ = 0;
  while (batch_size_ < kBatchEpochs && source_.Next(batch_[batch_size_])) {
    ++batch_size_;
    ++epochs_;
    if (monitor_ == nullptr) continue;
    monitor_->epochs.fetch_add(1, std::memory_order_relaxed);
    if (monitor_->stop.load(std::memory_order_relaxed)) throw Stopped();
  }
}

void Run::TakeNavigation(SharedNavigation& named) {
  navigation_ =
      named.Empty() ? ReadNavigationBeside(source_.Name(), batch_[0].time, settings_.limits) : named.Get();
  if (navigation_->files.empty() && !navigation_->failure) {
    throw RunError(
        source_.Name() +
        ": no navigation file named, and none of its day next to it. Elevations need satellite positions: "
        "name the RINEX navigation files of the day after the observation file.");
  }
  diagnostics_.Append(navigation_->notices);
  if (navigation_->failure) throw FileError(*navigation_->failure);
  if (navigation_->set.Size() == 0) {
    throw RunError(
        navigation_->files.front() +
        ": found no navigation record that can be used. Name the broadcast navigation files of the "
        "day.");
  }
  coverage_ = std::make_unique<CoverageCounter>(navigation_->set, settings_.systems);
}

void Run::Start() {
  const config_qct config = Configuration(settings_, source_, interval_.interval_s);
  const orsolva::Status status = session_.Start(config, navigation_->set.Body());
  if (status.Code() == StatusCode::kNoMemory) throw RunError("there is not enough memory for a run.");
  if (!status) {
    throw RunError(
        "the library refused the navigation records. Name the broadcast navigation files of the day.");
  }
  orsolva::SetDetailObserver(session_.Handle(), &sinks_);
  sinks_.Begin(batch_[0].time, interval_.interval_s);
}

void Run::FeedBatch() {
  for (std::size_t i = 0; i < batch_size_; ++i) coverage_->Add(batch_[i]);
  last_status_ = session_.Feed({batch_.get(), batch_size_}).Code();
  sinks_.EndBatch();
  if (last_status_ == StatusCode::kOk) {
    ++batches_taken_;
    return;
  }
  if (last_status_ == StatusCode::kNoPosition || last_status_ == StatusCode::kNoData) {
    diagnostics_.Add(source_.Name(), 0, NoticeOfBatch(last_status_), false);
    return;
  }
  throw RunError(source_.Name() + ": internal error of the library in the epochs from " +
                 TimeText(batch_[0].time) + " on. Please report it with the file.");
}

RunError Run::NoBatchError() const {
  const char* error =
      last_status_ == StatusCode::kNoPosition
          ? "no position could be computed from the observations. Check that the navigation files cover the "
            "epochs, or give the position with --position header or --position X,Y,Z."
          : "found no epoch that can be judged. Check the systems and the interval.";
  return RunError(source_.Name() + ": " + error, NoticeOfBatch(last_status_));
}

Report Run::Finish() {
  const orsolva::Outcome<result_qct> result = session_.Result();
  if (!result && result.status.Code() != StatusCode::kImplausible) {
    throw RunError("there is not enough memory for a result.");
  }
  if (!result) {
    std::string why = source_.Name() + ": the result is not plausible";
    if (result->lost_epochs < 0) {
      why += fmt::format(
          ": there are {} more epochs than an interval of {:g} s allows. Give the interval of the "
          "data with --interval, and check for duplicate epochs",
          -static_cast<std::int64_t>(result->lost_epochs), interval_.interval_s);
    }
    throw RunError(why + ".");
  }
  const orsolva::Outcome<total_code_qc_result> codes = session_.CodeResult();
  if (!codes) throw RunError("there is not enough memory for a result.");
  sinks_.Finish(*codes);
  Report report = BuildReport(Facts(), *result, *codes, orsolva::FactsOf(session_.Handle()));
  if (const auto& header = source_.Header().position) {
    const auto& xyz = report.run.position_m;
    report.run.distance_from_header_m =
        std::hypot(xyz[0] - (*header)[0], xyz[1] - (*header)[1], xyz[2] - (*header)[2]);
  }
  report.run.navigation_coverage = coverage_->Rows();
  report.show_satellites = settings_.show_satellites;
  report.notices = NoticesOf(diagnostics_);
  report.further_notices = diagnostics_.Uncounted();
  if (diagnostics_.Incomplete()) report.read_error = diagnostics_.Incomplete()->what();
  if (source_.Failure()) report.read_error = source_.Failure()->what();
  const RunEvents events = EventsOf(events_);
  Conclude(report, &events);
  if (settings_.profile) report.verdict = Judge(report, *settings_.profile);
  return report;
}

ReportRun Run::Facts() const {
  const ObservationHeader& header = source_.Header();
  ReportRun run;
  run.library_version = kLibraryVersion;
  run.observation_file = source_.Name();
  run.navigation_files = navigation_->files;
  run.marker = header.marker;
  run.receiver = header.receiver;
  run.antenna = header.antenna;
  run.rinex_version = header.version;
  run.systems = settings_.systems;
  for (const ExcludedSatellite& out : settings_.excluded) {
    run.excluded.push_back(SatelliteName(kSystemTable[out.system_slot].letter, out.number));
  }
  run.elevation_cutoff_deg = settings_.elevation_cutoff_deg;
  run.interval_s = interval_.interval_s;
  run.interval_source = interval_.source;
  run.position_source = NameOf(settings_.position.source);
  run.epochs = epochs_;
  return run;
}

}  // namespace

Report JudgeEpochs(EpochSource& source, const JudgingSettings& settings, SharedNavigation& navigation,
                   Diagnostics& diagnostics, const RunObservers& observers) {
  return Run(source, settings, diagnostics, observers).Judged(navigation);
}

Report JudgeFile(const std::string& observation_file, const JudgingSettings& settings,
                 SharedNavigation& navigation, Diagnostics& diagnostics, const RunObservers& observers) {
  const std::unique_ptr<EpochSource> source =
      OpenObservations(observation_file, settings, diagnostics, observers.monitor);
  return JudgeEpochs(*source, settings, navigation, diagnostics, observers);
}

}  // namespace orsolva_host

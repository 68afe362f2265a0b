#include "host/live/stations/hour_run.h"

#include <cmath>
#include <utility>

#include "host/judging/library_epoch.h"
#include "host/judging/library_version.h"
#include "host/judging/run_error.h"
#include "host/report/build_report.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host::live {

HourRun::HourRun(const JudgingSettings& settings, std::string name, ObservationHeader header,
                 std::shared_ptr<const ReadNavigation> navigation, EventSink& events)
    : settings_(settings),
      source_(std::move(name), std::move(header)),
      navigation_(std::move(navigation)),
      library_(source_, settings_, diagnostics_, nullptr),
      analysis_(settings_, source_, navigation_->broadcast, nullptr, &events, nullptr) {
  analysis_.KeepMultipath();
}

void HourRun::Add(ObservationEpoch& epoch) {
  if (batched_ == batch_.size()) batch_.emplace_back();
  ObsEpoch_QC_gbt& record = batch_[batched_++];
  FillLibraryEpoch(epoch, source_.Name(), diagnostics_, record);
  last_ = record.time;
  if (epochs_++ == 0) first_ = last_;
  analysis_.Add(epoch);
  if (batched_ == (started_ ? kLaterBatches : kFirstBatch)) Feed();
}

void HourRun::Feed() {
  if (batched_ == 0) return;
  const bool first = !started_;
  if (first) {
    if (batched_ < 2 && !settings_.interval_s) return;
    interval_ = ChooseInterval(settings_, source_, batch_.data(), batched_, diagnostics_);
    library_.Start(*navigation_, batch_.front().time, interval_.interval_s);
    started_ = true;
  }
  library_.Feed(batch_.data(), batched_);
  batched_ = 0;
  if (first) batch_ = std::vector<ObsEpoch_QC_gbt>(kLaterBatches);
}

void HourRun::EndMinute(const ReadNavigation& more) {
  Feed();
  if (more.set.Size() == 0) return;
  if (started_) library_.AddNavigation(more.set);
  analysis_.AddRecords(more.broadcast);
}

ReportRun HourRun::Facts() const {
  const ObservationHeader& header = source_.Header();
  ReportRun run;
  run.library_version = kLibraryVersion;
  run.observation_file = source_.Name();
  run.navigation_files = navigation_->files;
  run.receiver = header.receiver;
  run.antenna = header.antenna;
  run.systems = settings_.systems;
  run.elevation_cutoff_deg = settings_.elevation_cutoff_deg;
  run.interval_s = interval_.interval_s;
  run.interval_source = interval_.source;
  run.position_source = settings_.position.source == PositionSource::kHeader   ? "header"
                        : settings_.position.source == PositionSource::kOption ? "option"
                                                                               : "computed";
  run.epochs = epochs_;
  run.first_epoch = first_;
  run.last_epoch = last_;
  run.duration_h = Difference(last_, first_) / 3600;
  return run;
}

std::optional<Report> HourRun::Finish() {
  Feed();
  if (!started_) return std::nullopt;
  Report report = library_.Finish(Facts());
  report.analysis = analysis_.Finish({});
  const auto& header = source_.Header().position;
  if (const auto& xyz = report.run.position_m; xyz && header) {
    report.run.distance_from_header_m =
        std::hypot((*xyz)[0] - (*header)[0], (*xyz)[1] - (*header)[1], (*xyz)[2] - (*header)[2]);
  }
  report.notices = NoticesOf(diagnostics_);
  report.further_notices = diagnostics_.Uncounted();
  const std::optional<RunEvents> events = library_.Events();
  Conclude(report, events ? &*events : nullptr);
  return report;
}

}  // namespace orsolva_host::live

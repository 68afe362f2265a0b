#include "host/judging/judge_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "host/judging/analysis_run.h"
#include "host/judging/analysis_thread.h"
#include "host/judging/epoch_batch.h"
#include "host/judging/known_records.h"
#include "host/judging/library_run.h"
#include "host/judging/library_version.h"
#include "host/judging/nominal_interval.h"
#include "host/judging/selected_epochs.h"
#include "host/judging/statement_notices.h"
#include "host/report/build_report.h"
#include "host/report/comparison.h"
#include "host/report/findings.h"
#include "host/report/history_profile.h"
#include "host/report/profile.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

// The first batch decides which codes the library has, and holds a whole day at 30 s. What follows at 1 Hz
// needs no such room: a batch and the library's copies of it take 40 KB per epoch.
constexpr std::size_t kFirstBatchEpochs = 2880;
constexpr std::size_t kLaterBatchEpochs = 720;

void RequirePosition(const JudgingSettings& settings, const EpochSource& source) {
  if (settings.position.source == PositionSource::kHeader && !source.Header().position) {
    throw RunError(source.Name() +
                   ": the header holds no approximate position. Use --position X,Y,Z or --position spp.");
  }
}

const char* NameOf(PositionSource source) {
  if (source == PositionSource::kHeader) return "header";
  return source == PositionSource::kOption ? "option" : "computed";
}

/// The last epoch of the header, as far as it can be believed.
Time_gbt LastStated(const ObservationHeader& header, const Time_gbt& first) {
  return header.last_epoch && Difference(*header.last_epoch, first) > 0 ? *header.last_epoch : first;
}

/// The systems chosen that are in an epoch and of which the library takes records.
std::string SystemsOf(const ObservationEpoch& epoch, const std::string& chosen) {
  std::string systems;
  for (const char letter : chosen) {
    const bool seen = std::any_of(epoch.satellites.begin(), epoch.satellites.end(),
                                  [letter](const auto& s) { return s.id.system == letter; });
    if (seen && SystemSlot(letter) >= 0) systems += letter;
  }
  return systems;
}

/// The same of those that the header lists. Of RINEX 2, whose list does not say which, those of the epoch.
std::string SystemsListed(const ObservationHeader& header, const std::string& chosen,
                          const ObservationEpoch& first) {
  if (header.version < 3) return SystemsOf(first, chosen);
  std::string systems;
  for (const char letter : chosen) {
    if (SystemSlot(letter) >= 0 && !header.TypesOf(letter).empty()) systems += letter;
  }
  return systems;
}

/// One run from its epochs to its report.
class Run {
 public:
  Run(EpochSource& source, const JudgingSettings& settings, Diagnostics& diagnostics,
      const RunObservers& observers)
      : source_(source),
        settings_(settings),
        diagnostics_(diagnostics),
        observers_(observers),
        batch_(MakeEpochBatch(kFirstBatchEpochs)),
        library_(source, settings, diagnostics, observers.detail) {}

  Report Judged(SharedNavigation& named);

 private:
  void FillBatch();
  void ShrinkBatch();
  bool ReadEpoch();
  void StartAnalysis(const Time_gbt& first);
  void TakeNamed(SharedNavigation& named);
  void TakeNavigation(const Time_gbt& first);
  void TakeFurther();
  void Feed();
  void TakeEpoch(const Time_gbt& time);
  Report Finish();
  ReportRun Facts() const;

  EpochSource& source_;
  const JudgingSettings& settings_;
  Diagnostics& diagnostics_;
  RunObservers observers_;
  EpochBatch batch_;
  std::size_t batch_room_ = kFirstBatchEpochs;
  std::size_t batch_size_ = 0;
  ObservationEpoch full_;
  std::shared_ptr<const ReadNavigation> named_;       ///< null when no file is named
  std::shared_ptr<const ReadNavigation> navigation_;  ///< named, or where no records are, those found
  std::optional<KnownRecords> known_;                 ///< once records have come with the data
  NavigationSet further_;                             ///< for the library, before the next batch
  LibraryRun library_;
  bool library_started_ = false;
  NominalInterval interval_;
  std::optional<Time_gbt> first_, last_;
  std::uint64_t epochs_ = 0;
  bool ended_ = false;                        ///< the source
  std::unique_ptr<AnalysisThread> analysis_;  ///< last: it uses what is above
};

Report Run::Judged(SharedNavigation& named) {
  TakeNamed(named);
  FillBatch();
  if (batch_size_ == 0) throw RunError(source_.Name() + ": " + source_.NothingFound());
  interval_ = ChooseInterval(settings_, source_, batch_.get(), batch_size_, diagnostics_);
  RequirePosition(settings_, source_);
  library_.Start(*navigation_, batch_[0].time, interval_.interval_s);
  library_started_ = true;
  while (batch_size_ > 0) {
    Feed();
    if (!ended_ && library_.KnowsItsCodes()) ShrinkBatch();
    FillBatch();
  }
  return Finish();
}

/// Records that came within a batch count for all of it: how the batches lie does not depend on when they
/// came.
void Run::Feed() {
  library_.AddNavigation(std::exchange(further_, {}));
  library_.Feed(batch_.get(), batch_size_);
}

void Run::FillBatch() {
  batch_size_ = 0;
  while (batch_size_ < batch_room_ && !ended_) {
    if (ReadEpoch()) {
      ++batch_size_;
      continue;
    }
    ended_ = true;
    if (analysis_) analysis_->End(source_.Changes());
  }
}

void Run::ShrinkBatch() {
  if (batch_room_ == kLaterBatchEpochs) return;
  batch_.reset();
  batch_ = MakeEpochBatch(kLaterBatchEpochs);
  batch_room_ = kLaterBatchEpochs;
  analysis_->ExpectSmallBatches();
}

/// Reads the next epoch into the batch and hands it to the analysis. @return false at the end of the data
bool Run::ReadEpoch() {
  if (!source_.Next(batch_[batch_size_], full_)) return false;
  const Time_gbt& time = batch_[batch_size_].time;
  if (!analysis_) StartAnalysis(time);
  TakeFurther();
  analysis_->Add(full_);
  TakeEpoch(time);
  return true;
}

void Run::StartAnalysis(const Time_gbt& first) {
  TakeNavigation(first);
  TakeFurther();
  auto run =
      std::make_unique<AnalysisRun>(settings_, source_, navigation_->broadcast,
                                    named_ ? named_->precise : nullptr, observers_.events, observers_.series);
  analysis_ = std::make_unique<AnalysisThread>(std::move(run), settings_.analysis_on_own_thread);
}

void Run::TakeEpoch(const Time_gbt& time) {
  ++epochs_;
  if (!first_ || Difference(time, *first_) < 0) first_ = time;
  if (!last_ || Difference(time, *last_) > 0) last_ = time;
  RunMonitor* const monitor = observers_.monitor;
  if (monitor == nullptr) return;
  monitor->epochs.fetch_add(1, std::memory_order_relaxed);
  if (monitor->stop.load(std::memory_order_relaxed)) throw Stopped();
}

void Run::TakeNavigation(const Time_gbt& first) {
  if (named_) {
    diagnostics_.Append(named_->notices);
    if (named_->failure) throw FileError(*named_->failure);
  }
  navigation_ = named_;
  const std::shared_ptr<const ReadNavigation> own = source_.Navigation();
  if (own && named_ && named_->has_record_files) navigation_ = Joined(*named_, *own);
  if (named_ && named_->has_record_files) return;
  if (own) {
    navigation_ = own;
    return;
  }
  const NavigationWanted wanted = {source_.Name(), first, LastStated(source_.Header(), first),
                                   SystemsListed(source_.Header(), settings_.systems, full_),
                                   SystemsOf(full_, settings_.systems)};
  navigation_ = ReadNavigationBeside(wanted, settings_.limits);
  diagnostics_.Append(navigation_->notices);
  source_.TakeChannels(navigation_->broadcast);
}

/// Records that came with the data, those before the first epoch among them.
void Run::TakeFurther() {
  for (const std::shared_ptr<const ReadNavigation>& more : source_.NewNavigation()) {
    diagnostics_.Append(more->notices);
    if (!known_) known_.emplace().New(*navigation_);
    const ReadNavigation fresh = known_->New(*more);
    navigation_ = Together(*navigation_, fresh);
    source_.TakeChannels(fresh.broadcast);
    if (!analysis_) continue;
    analysis_->AddRecords(std::make_shared<BroadcastRecords>(fresh.broadcast));
    if (library_started_) Append(fresh.set, further_);
  }
}

void Run::TakeNamed(SharedNavigation& named) {
  if (named.Empty()) return;
  named_ = named.Get();
  source_.TakeChannels(named_->broadcast);
}

Report Run::Finish() {
  Report report = library_.Finish(Facts());
  report.analysis = analysis_->Result();
  const auto& header = source_.Header().position;
  if (const auto& xyz = report.run.position_m; xyz && header) {
    report.run.distance_from_header_m =
        std::hypot((*xyz)[0] - (*header)[0], (*xyz)[1] - (*header)[1], (*xyz)[2] - (*header)[2]);
  }
  report.figures = settings_.figures;
  report.show_satellites = report.show_satellite_signals = settings_.show_satellites;
  AddStatementNotices(source_.Name(), report.analysis.figures.contradictions, diagnostics_);
  report.notices = NoticesOf(diagnostics_);
  report.further_notices = diagnostics_.Uncounted();
  if (diagnostics_.Incomplete()) report.read_error = diagnostics_.Incomplete()->what();
  if (source_.Failure()) report.read_error = source_.Failure()->what();
  const std::optional<RunEvents> events = library_.Events();
  Conclude(report, events ? &*events : nullptr);
  return report;
}

/// Holds a report against what the settings name, once everything else is in it. What became worse since an
/// earlier report is among its findings.
void HoldAgainst(const JudgingSettings& settings, Report& report) {
  if (settings.profile) report.profile_verdict = Judge(report, *settings.profile);
  if (settings.history) report.profile_verdict = Judge(report, *settings.history);
  if (settings.compare_with.empty()) return;
  const EarlierReport now = AsEarlier(report);
  report.comparison = Compare(ReportToCompare(settings.compare_with, now), now);
  report.findings = FindingsOf(report);
  report.verdict = VerdictOf(report);
}

ReportRun Run::Facts() const {
  const ObservationHeader& header = source_.Header();
  ReportRun run;
  run.library_version = kLibraryVersion;
  run.observation_file = source_.Name();
  run.joined_files = source_.FilesOfSpan();
  run.stream = source_.Stream();
  run.navigation_files = navigation_->files;
  for (const std::string& file : named_ ? named_->files : std::vector<std::string>()) {
    auto& files = run.navigation_files;
    if (std::find(files.begin(), files.end(), file) == files.end()) files.push_back(file);
  }
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
  // The library's own, where it judges, replace these.
  run.first_epoch = first_;
  run.last_epoch = last_;
  run.duration_h = Difference(*last_, *first_) / 3600;
  return run;
}

}  // namespace

Report JudgeEpochs(EpochSource& source, const JudgingSettings& settings, SharedNavigation& navigation,
                   Diagnostics& diagnostics, const RunObservers& observers) {
  Report report;
  if (settings.selection.IsEverything()) {
    report = Run(source, settings, diagnostics, observers).Judged(navigation);
  } else {
    SelectedEpochs selected(source, settings.selection, diagnostics);
    report = Run(selected, settings, diagnostics, observers).Judged(navigation);
    report.run.selection = selected.Facts();
  }
  HoldAgainst(settings, report);
  return report;
}

Report JudgeFiles(const JoinedFiles& files, const JudgingSettings& settings, SharedNavigation& navigation,
                  Diagnostics& diagnostics, const RunObservers& observers) {
  const std::unique_ptr<EpochSource> source = OpenJoined(files, settings, diagnostics, observers.monitor);
  return JudgeEpochs(*source, settings, navigation, diagnostics, observers);
}

Report JudgeFile(const std::string& observation_file, const JudgingSettings& settings,
                 SharedNavigation& navigation, Diagnostics& diagnostics, const RunObservers& observers) {
  return JudgeFiles({observation_file}, settings, navigation, diagnostics, observers);
}

}  // namespace orsolva_host

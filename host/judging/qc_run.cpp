#include "host/judging/qc_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include "host/judging/counted_file.h"
#include "host/judging/epoch_batch.h"
#include "host/report/build_report.h"
#include "host/report/navigation_coverage.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/detail.h"
#include "orsolva/gnssqc.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kBatchEpochs = 2880;
constexpr std::size_t kEpochsForInterval = 600;

struct DisposeHandle {
  void operator()(unsigned long long* handle) const { DiposeProcess(handle); }
};
using Handle = std::unique_ptr<unsigned long long, DisposeHandle>;

/// One run from its files to its report.
class Run {
 public:
  Run(const QcSettings& settings, SharedNavigation& navigation, Diagnostics& diagnostics, DetailSink* detail,
      RunMonitor* monitor)
      : settings_(settings),
        named_(navigation),
        diagnostics_(diagnostics),
        detail_(detail),
        monitor_(monitor),
        observations_(OpenCounted(settings.observation_file, diagnostics, settings.limits, monitor),
                      settings.observation_file, diagnostics, {settings.snr_from_strength, settings.limits}),
        batch_(MakeEpochBatch(kBatchEpochs)) {}

  Report Do() {
    FillBatch();
    if (batch_size_ == 0) {
      throw RunError(settings_.observation_file + ": found no epoch. Check that the file is whole.");
    }
    ChooseNavigation();
    ChooseInterval();
    ChoosePosition();
    Start();
    while (batch_size_ > 0) {
      TakeBatch();
      FillBatch();
    }
    if (batches_taken_ == 0) throw RunError(WhyNothingWasTaken());
    return Finish();
  }

 private:
  void ChooseNavigation();
  std::shared_ptr<const ReadNavigation> NavigationBesideIt() const;
  void FillBatch();
  void ChooseInterval();
  void ChoosePosition();
  config_qct Configuration() const;
  void Start();
  void TakeBatch();
  std::string WhyNothingWasTaken() const;
  Report Finish();
  ReportRun Facts() const;

  const QcSettings& settings_;
  SharedNavigation& named_;
  Diagnostics& diagnostics_;
  DetailSink* detail_;
  RunMonitor* monitor_;
  ObservationReader observations_;
  EpochBatch batch_;
  std::size_t batch_size_ = 0;
  std::shared_ptr<const ReadNavigation> navigation_;
  std::unique_ptr<CoverageCounter> coverage_;
  Handle handle_;
  double interval_s_ = 0;
  std::string interval_source_;
  std::uint64_t epochs_ = 0;
  int batches_taken_ = 0;
  GNSSQC_STATE last_state_ = GNSSQC_OK;
};

void Run::ChooseNavigation() {
  navigation_ = named_.Empty() ? NavigationBesideIt() : named_.Get();
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

std::shared_ptr<const ReadNavigation> Run::NavigationBesideIt() const {
  auto read = std::make_shared<ReadNavigation>();
  read->files = NavigationBeside(settings_.observation_file, batch_[0].time);
  if (read->files.empty()) {
    throw RunError(
        settings_.observation_file +
        ": no navigation file named, and none of its day beside it. Elevations need satellite positions: "
        "name the RINEX navigation files of the day after the observation file.");
  }
  for (const std::string& file : read->files) {
    read->notices.Add(file, 0, "no navigation file is named; this one beside the observation file is used");
  }
  NavigationReader reader(read->notices, {settings_.limits});
  for (const std::string& file : read->files) {
    try {
      reader.Read(file);
    } catch (const FileError& error) {
      // A file nobody named must not stop a run that others of its day serve.
      if (read->files.size() == 1) {
        read->failure = error;
        return read;
      }
      read->notices.Add(file, error.Line(), "passed over: found " + error.Found(), false);
    }
  }
  read->set = reader.Take();
  return read;
}

void Run::FillBatch() {
  batch_size_ = 0;
  while (batch_size_ < kBatchEpochs && observations_.Next(batch_[batch_size_])) {
    ++batch_size_;
    ++epochs_;
    if (monitor_ == nullptr) continue;
    monitor_->epochs.fetch_add(1, std::memory_order_relaxed);
    if (monitor_->stop.load(std::memory_order_relaxed)) throw Stopped();
  }
}

void Run::ChooseInterval() {
  const std::optional<double> header = observations_.Header().interval_s;
  const std::optional<double> data = DetectInterval(batch_.get(), batch_size_);
  if (settings_.interval_s) {
    interval_s_ = *settings_.interval_s;
    interval_source_ = "option";
  } else if (header) {
    interval_s_ = *header;
    interval_source_ = "header";
    if (data && std::fabs(*data - *header) > 0.01 * *header) {
      diagnostics_.Add(settings_.observation_file, 0,
                       fmt::format("the header says an interval of {:g} s and the data have {:g} s; the "
                                   "header's is used unless --interval says otherwise",
                                   *header, *data));
    }
  } else if (data) {
    interval_s_ = *data;
    interval_source_ = "data";
  } else {
    throw RunError(settings_.observation_file +
                   ": the interval is not in the header and cannot be told from the epochs. Give it with "
                   "--interval SECONDS.");
  }
}

void Run::ChoosePosition() {
  if (settings_.position.source == PositionSource::kHeader && !observations_.Header().position) {
    throw RunError(settings_.observation_file +
                   ": the header holds no approximate position. Use --position X,Y,Z or --position spp.");
  }
}

config_qct Run::Configuration() const {
  config_qct config = {};
  for (int slot = 0; slot < kSystems; ++slot) {
    const bool on = settings_.systems.find(kSystemTable[slot].letter) != std::string::npos;
    config.enable_system[slot] = config.combination_system[slot] = on ? 1 : 0;
  }
  config.elevation = settings_.elevation_deg;
  config.interval = interval_s_;
  config.auto_detect_freq = 1;
  for (auto& row : config.include_satellite) std::fill(std::begin(row), std::end(row), 1);
  for (auto& row : config.satellite_freq) std::fill(std::begin(row), std::end(row), 1);
  for (const ExcludedSatellite& out : settings_.excluded) {
    config.include_satellite[out.system_slot][out.number - 1] = 0;
  }
  if (settings_.position.source != PositionSource::kComputed) {
    const bool header = settings_.position.source == PositionSource::kHeader;
    const std::array<double, 3>& xyz = header ? *observations_.Header().position : settings_.position.xyz_m;
    config.enable_position = 1;
    std::copy(xyz.begin(), xyz.end(), config.position);
  }
  return config;
}

void Run::Start() {
  handle_.reset(CreatQcProcess());
  if (!handle_) throw RunError("there is not enough memory for a run.");
  const config_qct config = Configuration();
  if (!InitialQc(navigation_->set.Body(), &config, handle_.get())) {
    throw RunError(
        "the library refused the navigation records. Name the broadcast navigation files of the day.");
  }
  orsolva::SetDetailObserver(handle_.get(), detail_);
  if (detail_ != nullptr) detail_->Begin(batch_[0].time, interval_s_);
}

void Run::TakeBatch() {
  for (std::size_t i = 0; i < batch_size_; ++i) coverage_->Add(batch_[i]);
  ObsBodyData_QC_gbt body = {};
  body.epoch_num = static_cast<std::int32_t>(batch_size_);
  body.epochs = batch_.get();
  last_state_ = GNSSQCPlus(body, handle_.get());
  if (detail_ != nullptr) detail_->EndBatch();
  if (last_state_ == GNSSQC_INTERNAL_ERROR) {
    throw RunError(settings_.observation_file + ": the library met an internal error at the epochs from " +
                   TimeText(batch_[0].time) + " on. Please report it with the file.");
  }
  if (last_state_ == GNSSQC_OK) {
    ++batches_taken_;
  } else {
    diagnostics_.Add(settings_.observation_file, 0,
                     last_state_ == GNSSQC_NO_POSITION
                         ? "a batch of epochs is not judged: no position could be computed from it"
                         : "a batch of epochs is not judged: it holds no usable epoch",
                     false);
  }
}

std::string Run::WhyNothingWasTaken() const {
  if (last_state_ == GNSSQC_NO_POSITION) {
    return settings_.observation_file +
           ": no position could be computed from the observations. Check that the navigation files cover the "
           "epochs, or give the position with --position header or --position X,Y,Z.";
  }
  return settings_.observation_file +
         ": found no epoch that can be judged. Check the systems and the interval.";
}

Report Run::Finish() {
  const auto result = std::make_unique<result_qct>();
  const auto codes = std::make_unique<total_code_qc_result>();
  if (!GetAllPeriodResult(handle_.get(), result.get())) {
    std::string why = settings_.observation_file + ": the result is not plausible";
    if (result->lost_epochs < 0) {
      why += fmt::format(
          ": there are {} more epochs than an interval of {:g} s allows. Give the interval of the "
          "data with --interval, and check for epochs that stand twice",
          -static_cast<std::int64_t>(result->lost_epochs), interval_s_);
    }
    throw RunError(why + ".");
  }
  GetEachCodeResult(handle_.get(), *codes);
  if (detail_ != nullptr) detail_->Finish(*codes);
  Report report = BuildReport(Facts(), *result, *codes);
  if (const auto& header = observations_.Header().position) {
    const auto& xyz = report.run.position_m;
    report.run.distance_from_header_m =
        std::hypot(xyz[0] - (*header)[0], xyz[1] - (*header)[1], xyz[2] - (*header)[2]);
  }
  report.run.navigation_coverage = coverage_->Rows();
  report.show_satellites = settings_.satellites;
  report.notices = NoticesOf(diagnostics_);
  report.further_notices = diagnostics_.Uncounted();
  if (diagnostics_.Incomplete()) report.read_error = diagnostics_.Incomplete()->what();
  if (observations_.Failure()) report.read_error = observations_.Failure()->what();
  return report;
}

ReportRun Run::Facts() const {
  const ObservationHeader& header = observations_.Header();
  ReportRun run;
  run.library_version = LibraryVersion();
  run.observation_file = settings_.observation_file;
  run.navigation_files = navigation_->files;
  run.marker = header.marker;
  run.receiver = header.receiver;
  run.antenna = header.antenna;
  run.rinex_version = header.version;
  run.systems = settings_.systems;
  for (const ExcludedSatellite& out : settings_.excluded) {
    run.excluded.push_back(SatelliteName(kSystemTable[out.system_slot].letter, out.number));
  }
  run.elevation_cutoff_deg = settings_.elevation_deg;
  run.interval_s = interval_s_;
  run.interval_source = interval_source_;
  const PositionSource source = settings_.position.source;
  run.position_source = source == PositionSource::kHeader   ? "header"
                        : source == PositionSource::kOption ? "option"
                                                            : "computed";
  run.epochs = epochs_;
  return run;
}

}  // namespace

std::optional<double> DetectInterval(const ObsEpoch_QC_gbt* epochs, std::size_t count) {
  constexpr double kTicksPerSecond = 1e4;
  constexpr double kLongest_s = 1e6;
  std::map<std::int64_t, int> counts;
  for (std::size_t i = 1; i < std::min(count, kEpochsForInterval); ++i) {
    const double difference = std::fabs(Difference(epochs[i].time, epochs[i - 1].time));
    if (difference < kLongest_s) ++counts[std::llround(difference * kTicksPerSecond)];
  }
  counts.erase(0);
  const auto most = std::max_element(counts.begin(), counts.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most == counts.end()) return std::nullopt;
  return static_cast<double>(most->first) / kTicksPerSecond;
}

std::string LibraryBanner() {
  char buffer[512] = {};
  GetGNSSQCLibVersion(buffer);
  return buffer;
}

std::string LibraryVersion() {
  constexpr std::string_view kKey = "version: ";
  const std::string banner = LibraryBanner();
  const std::size_t key = banner.find(kKey);
  if (key == std::string::npos) return {};
  const std::size_t begin = key + kKey.size();
  return banner.substr(begin, banner.find('\n', begin) - begin);
}

Report RunQc(const QcSettings& settings, SharedNavigation& navigation, Diagnostics& diagnostics,
             DetailSink* detail, RunMonitor* monitor) {
  return Run(settings, navigation, diagnostics, detail, monitor).Do();
}

}  // namespace orsolva_host

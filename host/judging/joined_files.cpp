#include "host/judging/joined_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/station_statements.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kDay_ns = 86400 * kNanosecondsPerSecond;

/// What decides about the span of a file.
struct Placed {
  std::string station;  ///< empty: nothing is known
  double interval_s = 0;
  std::int64_t begin_ns = 0;
  std::string file;
};

std::string NameOfFile(const std::string& path) { return std::filesystem::path(path).filename().string(); }

void PlaceByHeader(Placed& placed) {
  try {
    Diagnostics unused;
    const ObservationReader reader(placed.file, unused);
    const StationDescription stated = DescriptionOf(reader.Header(), placed.file);
    if (!stated.first_ns || stated.marker.empty()) return;
    placed.station = stated.marker;
    placed.begin_ns = *stated.first_ns;
    placed.interval_s = stated.interval_s.value_or(0);
  } catch (const FileError&) {
    // It stays alone; judging it says what is wrong.
  }
}

Placed PlaceOf(const std::string& file) {
  Placed placed;
  placed.file = file;
  // A look into a pipe would take its beginning away.
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored) && std::filesystem::exists(file, ignored))
    return placed;
  if (file == "-") return placed;
  const FileNameStatement name = StatementOfName(NameOfFile(file));
  if (name.station.empty() || !name.begin_ns) {
    PlaceByHeader(placed);
    return placed;
  }
  placed.station = name.station;
  placed.interval_s = name.interval_s.value_or(0);
  placed.begin_ns = *name.begin_ns;
  return placed;
}

/// Files that agree in it are one span: station, interval and day, or 0 for any day.
using SpanKey = std::tuple<std::string, double, std::int64_t>;

/// @return nothing for a file that nothing is known of
std::optional<SpanKey> SpanKeyOf(const Placed& placed, JoinRule rule) {
  if (placed.station.empty() || std::isnan(placed.interval_s)) return std::nullopt;
  return SpanKey(placed.station, placed.interval_s, rule == JoinRule::kAll ? 0 : placed.begin_ns / kDay_ns);
}

class JoinedSource : public EpochSource {
 public:
  JoinedSource(const JoinedFiles& files, const JudgingSettings& settings, Diagnostics& diagnostics,
               RunMonitor* monitor)
      : files_(files), settings_(settings), diagnostics_(diagnostics), monitor_(monitor) {
    if (!OpenNext()) throw FileError(*failure_);
    header_ = part_->Header();
    header_.last_epoch = LastStated(files_.back());
    CollectNavigation();
    diagnostics_.Add(Name(), 0,
                     fmt::format("judged as one span with {} more, the last of them {}",
                                 files_.size() == 2 ? "1 file" : fmt::format("{} files", files_.size() - 1),
                                 NameOfFile(files_.back())));
  }

  const std::string& Name() const override { return files_.front(); }
  const ObservationHeader& Header() const override { return header_; }
  const std::optional<FileError>& Failure() const override { return failure_; }

  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override {
    while (part_ || OpenNext()) {
      if (!NextOfPart(epoch, full)) {
        ClosePart();
      } else if (before_ && !(Difference(epoch.time, *before_) > 0)) {
        notices_.Add(files_[next_ - 1], 0, "epochs that the files before already hold are skipped");
      } else {
        if (!last_ || Difference(epoch.time, *last_) > 0) last_ = epoch.time;
        return true;
      }
    }
    return false;
  }

  std::vector<DescriptionChange> Changes() const override {
    std::vector<DescriptionChange> all = changes_;
    if (part_) Append(part_->Changes(), all);
    return all;
  }

  StationDescription Described() const override {
    StationDescription description = DescriptionOf(header_, Name());
    const FileNameStatement last = StatementOfName(NameOfFile(files_.back()));
    FileNameStatement& name = description.name;
    name.period_s = name.begin_ns && last.begin_ns && last.period_s
                        ? std::optional(SecondsBetween(*last.begin_ns, *name.begin_ns) + *last.period_s)
                        : std::nullopt;
    return description;
  }

  std::vector<std::string> FilesOfSpan() const override { return files_; }
  std::optional<StreamFacts> Stream() const override {
    StreamFacts all = stream_;
    if (part_ && part_->Stream()) AddStream(*part_->Stream(), all);
    return all.format.empty() ? std::nullopt : std::optional(all);
  }
  std::shared_ptr<const ReadNavigation> Navigation() const override { return navigation_; }
  void TakeChannels(const BroadcastRecords& records) override {
    channels_ = &records;
    if (part_) part_->TakeChannels(records);
  }

 private:
  static std::optional<Time_gbt> LastStated(const std::string& file) {
    try {
      Diagnostics unused;
      return ObservationReader(file, unused).Header().last_epoch;
    } catch (const FileError&) {
      return std::nullopt;
    }
  }

  static void Append(const std::vector<DescriptionChange>& more, std::vector<DescriptionChange>& to) {
    constexpr std::size_t kMaxChanges = 100;
    const std::size_t room = kMaxChanges - std::min(kMaxChanges, to.size());
    to.insert(to.end(), more.begin(),
              more.begin() + static_cast<std::ptrdiff_t>(std::min(room, more.size())));
  }

  /// The records of all recordings of streams, as epochs of one may need those of the next.
  void CollectNavigation() {
    navigation_ = part_->Navigation();
    if (!part_->Stream()) return;
    for (std::size_t i = next_; i < files_.size(); ++i) {
      try {
        Diagnostics unused;
        const auto own = OpenObservations(files_[i], settings_, unused)->Navigation();
        if (own) navigation_ = navigation_ ? Joined(*navigation_, *own) : own;
      } catch (const FileError&) {
        // It is reported when its turn comes.
      }
    }
    if (navigation_) TakeChannels(navigation_->broadcast);
  }

  static void AddStream(const StreamFacts& more, StreamFacts& to) {
    to.format = more.format;
    to.frames += more.frames;
    to.crc_errors += more.crc_errors;
    to.skipped_bytes += more.skipped_bytes;
    for (const StreamMessages& row : more.messages) {
      const auto at = std::lower_bound(to.messages.begin(), to.messages.end(), row.type,
                                       [](const StreamMessages& m, int type) { return m.type < type; });
      if (at == to.messages.end() || at->type != row.type) {
        to.messages.insert(at, row);
      } else {
        at->messages += row.messages;
        at->damaged += row.damaged;
      }
    }
    for (const char letter : more.coarse_systems) {
      if (to.coarse_systems.find(letter) == std::string::npos) to.coarse_systems += letter;
    }
  }

  /// Opens the next file that can be opened. @return false when there is none
  bool OpenNext() {
    while (next_ < files_.size()) {
      const std::string& file = files_[next_++];
      try {
        part_ = OpenObservations(file, settings_, notices_, monitor_);
        if (channels_ != nullptr) part_->TakeChannels(*channels_);
        TakeHeader(part_->Header());
        return true;
      } catch (const FileError& error) {
        Fail(error);
        ClosePart();
      }
    }
    return false;
  }

  bool NextOfPart(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
    try {
      return part_->Next(epoch, full);
    } catch (const FileError& error) {
      Fail(error);
      return false;
    }
  }

  void Fail(const FileError& error) {
    if (!failure_) failure_ = error;
    notices_.Add(error.File(), error.Line(), "left out: found " + error.Found() + ". " + error.Advice(),
                 false);
  }

  void ClosePart() {
    if (part_) {
      Append(part_->Changes(), changes_);
      if (part_->Stream()) AddStream(*part_->Stream(), stream_);
      if (part_->Failure() && !failure_) failure_ = part_->Failure();
    }
    part_.reset();
    before_ = last_;
    diagnostics_.Join(notices_);
    notices_ = Diagnostics();
  }

  /// What a header says that differs from those before.
  void TakeHeader(const ObservationHeader& header) {
    const std::array<std::pair<const char*, std::string>, 3> now = {
        {{"antenna", header.antenna}, {"receiver", header.receiver}, {"marker", header.marker}}};
    for (std::size_t i = 0; i < now.size(); ++i) {
      const auto& [what, text] = now[i];
      if (next_ > 1 && !described_[i].empty() && text != described_[i]) {
        Append({{what, described_[i], text}}, changes_);
        notices_.Add(
            files_[next_ - 1], 0,
            fmt::format("{} changes from {} to {}", what, Printable(described_[i]), Printable(text)));
      }
      described_[i] = text;
    }
  }

  JoinedFiles files_;
  const JudgingSettings& settings_;
  Diagnostics& diagnostics_;
  RunMonitor* monitor_;
  Diagnostics notices_;  ///< of the file at hand
  std::unique_ptr<EpochSource> part_;
  std::size_t next_ = 0;  ///< file to be opened
  StreamFacts stream_;    ///< of the files before; without format where they are of another kind
  std::shared_ptr<const ReadNavigation> navigation_;  ///< of the data themselves
  ObservationHeader header_;
  std::array<std::string, 3> described_;  ///< antenna, receiver and marker of the last header
  std::vector<DescriptionChange> changes_;
  std::optional<Time_gbt> last_;    ///< the latest epoch
  std::optional<Time_gbt> before_;  ///< the latest of the files before
  std::optional<FileError> failure_;
  const BroadcastRecords* channels_ = nullptr;  ///< those of the run, which outlive its source's use
};

}  // namespace

JoinRule JoinRuleOf(std::string_view name) {
  if (name == "day") return JoinRule::kDay;
  return name == "all" ? JoinRule::kAll : JoinRule::kNone;
}

std::vector<JoinedFiles> SpansOf(const std::vector<std::string>& files, JoinRule rule) {
  std::vector<std::vector<Placed>> spans;
  std::map<SpanKey, std::size_t> known;
  for (const std::string& file : files) {
    Placed placed = rule == JoinRule::kNone ? Placed{{}, 0, 0, file} : PlaceOf(file);
    std::size_t span = spans.size();
    if (const std::optional<SpanKey> key = SpanKeyOf(placed, rule))
      span = known.emplace(*key, span).first->second;
    if (span == spans.size()) spans.emplace_back();
    spans[span].push_back(std::move(placed));
  }
  std::vector<JoinedFiles> joined;
  for (std::vector<Placed>& span : spans) {
    std::sort(span.begin(), span.end(), [](const Placed& a, const Placed& b) {
      return std::tie(a.begin_ns, a.file) < std::tie(b.begin_ns, b.file);
    });
    joined.emplace_back();
    for (Placed& placed : span) joined.back().push_back(std::move(placed.file));
  }
  return joined;
}

std::unique_ptr<EpochSource> OpenJoined(const JoinedFiles& files, const JudgingSettings& settings,
                                        Diagnostics& diagnostics, RunMonitor* monitor) {
  if (files.size() == 1) return OpenObservations(files.front(), settings, diagnostics, monitor);
  return std::make_unique<JoinedSource>(files, settings, diagnostics, monitor);
}

}  // namespace orsolva_host

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/argument_texts.h"
#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/judging/observation_contents.h"
#include "host/judging/opened_file.h"
#include "host/judging/orbit_contents.h"
#include "host/judging/run_error.h"
#include "host/judging/settings.h"
#include "host/judging/stream_contents.h"
#include "host/report/text_layout.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/station_statements.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kNameWidth = 18;

struct InspectSettings {
  std::vector<std::string> files;
  InputLimits limits;
};

void Row(std::string name, const std::string& value) {
  name.resize(kNameWidth, ' ');
  std::fputs(Wrapped(value.empty() ? "-" : value, name, std::string(kNameWidth, ' '), 80).c_str(), stdout);
}

std::string TimeAt(std::int64_t time_ns) { return TimeText(TimeOfNanoseconds(time_ns)); }

/// "31 satellites"
std::string Many(std::size_t count, const char* one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

/// "90 s", "15 min", "2 h", in the largest unit that the time fills.
std::string DurationText(double seconds) {
  if (seconds >= 7200) return fmt::format("{:.4g} h", seconds / 3600);
  return seconds >= 120 ? fmt::format("{:.4g} min", seconds / 60) : fmt::format("{:g} s", seconds);
}

void ShowNotices(const Diagnostics& diagnostics) {
  Row("Notices", fmt::format("{}", diagnostics.Total()));
  for (const Notice& n : diagnostics.Notices()) {
    const std::string place = n.line > 0 ? fmt::format("line {}", n.line) : "file";
    const std::string text = (n.recovered ? "" : "not repaired: ") + n.text;
    std::fputs(Wrapped(NoticeText(place, 0, text, n.count), "  ", "    ", 80).c_str(), stdout);
  }
}

void ShowHeader(const ObservationHeader& header) {
  Row("Kind", fmt::format("{} observations, RINEX {:.2f}",
                          header.crinex ? "Hatanaka-compressed (CRINEX)" : "plain", header.version));
  Row("Marker", header.marker);
  Row("Receiver", header.receiver);
  Row("Antenna", header.antenna);
  if (const auto& p = header.position) {
    Row("Position X Y Z", fmt::format("{:.4f} {:.4f} {:.4f} m, of the header", (*p)[0], (*p)[1], (*p)[2]));
  } else {
    Row("Position X Y Z", "none in the header");
  }
}

void ShowInterval(const ObservationHeader& header, const analysis::SpanFigures& span) {
  Row("Interval", fmt::format("{} in the header, {} in the data",
                              header.interval_s ? fmt::format("{:g} s", *header.interval_s) : "none",
                              span.interval_s > 0 ? fmt::format("{:g} s", span.interval_s) : "none"));
}

void ShowGaps(const analysis::SpanFigures& span) {
  constexpr std::size_t kMaxShown = 5;
  const std::size_t count = span.gaps.size() + span.further_gaps;
  if (count == 0) return Row("Gaps", "none");
  Row("Gaps", fmt::format("{}, {} missing", Many(count, "gap"), Many(span.lost_epochs.value_or(0), "epoch")));
  for (std::size_t i = 0; i < std::min(kMaxShown, span.gaps.size()); ++i) {
    const analysis::DataGap& gap = span.gaps[i];
    Row("", fmt::format("{} to {}, {}", TimeAt(gap.last_before_ns), TimeAt(gap.first_after_ns).substr(11),
                        Many(gap.missing_epochs, "epoch")));
  }
  if (count > kMaxShown) Row("", fmt::format("and {} more", count - kMaxShown));
}

void ShowSystems(const std::map<char, SystemContents>& systems) {
  for (const char letter : kAllSystems) {
    const auto found = systems.find(letter);
    if (found == systems.end()) continue;
    const SystemContents& system = found->second;
    std::string text = fmt::format("{}, {} satellite-epochs; signals",
                                   Many(system.satellites.size(), "satellite"), system.observations);
    for (const auto& [code, count] : system.signals) text += fmt::format(" {}={}", code, count);
    Row(NameOfSystem(letter), text);
  }
}

void ShowContents(const ObservationContents& contents, const ObservationHeader& header) {
  const analysis::SpanFigures& span = contents.span;
  Row("Epochs", fmt::format("{}", contents.epochs) +
                    (span.expected_epochs ? fmt::format(", {} expected", *span.expected_epochs) : ""));
  if (contents.epochs == 0) return;
  Row("First epoch", TimeAt(span.first_ns) + " GPST");
  Row("Last epoch", TimeAt(span.last_ns) + " GPST");
  Row("Duration", fmt::format("{:.4f} h", SecondsBetween(span.last_ns, span.first_ns) / 3600));
  ShowInterval(header, span);
  ShowGaps(span);
  if (contents.power_failures > 0)
    Row("Power failures", fmt::format("{} by the epoch flags", contents.power_failures));
  ShowSystems(contents.systems);
  for (const analysis::Contradiction& c : contents.contradictions)
    Row("Contradiction", Printable(fmt::format("{}: stated {}, found {}", c.id, c.stated, c.found)));
  if (contents.contradictions.empty()) Row("Contradictions", "none of file name, header and data");
}

void InspectObservations(std::unique_ptr<ByteSource> bytes, const std::string& file,
                         const InputLimits& limits, Diagnostics& diagnostics) {
  ObservationReader reader(std::move(bytes), file, diagnostics, {false, limits});
  ShowHeader(reader.Header());
  ObservationTally tally(reader.Header().interval_s);
  const auto show = [&] {
    StationDescription stated = DescriptionOf(reader.Header(), file);
    stated.changes = reader.Changes();
    ShowContents(tally.Contents(stated), reader.Header());
  };
  const auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch full;
  try {
    while (reader.Next(*epoch, full)) tally.Add(full);
  } catch (...) {
    // What was read before the end is still worth knowing.
    show();
    throw;
  }
  show();
  if (reader.Failure()) throw FileError(*reader.Failure());
}

/// Reference times, and a row per system. @param what  they are called
void ShowOrbits(const OrbitContents& contents, const char* what, const std::string& file) {
  const OrbitSystem all = AllOf(contents);
  std::size_t satellites = 0;
  for (const auto& [letter, system] : contents) satellites += system.satellites.size();
  Row("Contents", fmt::format("{} of {}", Many(all.Total(), what), Many(satellites, "satellite")));
  if (all.times.empty()) return;
  Row("First reference", TimeAt(all.times.begin()->first) + " GPST");
  Row("Last reference", TimeAt(all.times.rbegin()->first) + " GPST");
  for (const char letter : kAllSystems) {
    const auto found = contents.find(letter);
    if (found == contents.end()) continue;
    const OrbitSystem& system = found->second;
    std::string text =
        fmt::format("{}, {}", Many(system.satellites.size(), "satellite"), Many(system.Total(), what));
    for (const auto& [message, count] : system.messages) text += fmt::format(" {}={}", message, count);
    if (system.unhealthy > 0) text += fmt::format(", {} unhealthy", system.unhealthy);
    text += fmt::format("; {} to {}", TimeAt(system.times.begin()->first).substr(0, 16),
                        TimeAt(system.times.rbegin()->first).substr(0, 16));
    if (const auto step_s = system.LongestStep_s()) text += ", longest step " + DurationText(*step_s);
    Row(NameOfSystem(letter), text);
  }
  const std::string contradiction = NameContradiction(file, contents);
  if (!contradiction.empty()) Row("Contradiction", contradiction);
}

void InspectNavigation(std::unique_ptr<ByteSource> bytes, const std::string& file, const InputLimits& limits,
                       Diagnostics& diagnostics) {
  NavigationReader reader(diagnostics, {limits});
  reader.Read(std::move(bytes), file);
  Row("Kind", fmt::format("navigation, RINEX {:.2f}", reader.Version()));
  ShowOrbits(ContentsOf(reader.Broadcast()), "record", file);
}

void InspectPreciseOrbits(std::unique_ptr<ByteSource> bytes, const std::string& file,
                          const InputLimits& limits, Diagnostics& diagnostics) {
  const OrbitContents contents = ReadOrbitContents(std::move(bytes), file, diagnostics, limits);
  Row("Kind", "precise orbits, SP3");
  ShowOrbits(contents, "point", file);
}

void InspectStream(OpenedFile opened, const std::string& file, Diagnostics& diagnostics) {
  ShowStream(*opened.stream, std::move(opened.bytes), file, diagnostics,
             [](const std::string& name, const std::string& text) { Row(name, text); });
}

void InspectContents(const std::string& file, const InputLimits& limits, Diagnostics& diagnostics) {
  OpenedFile opened = OpenAnyFile(file, diagnostics, limits);
  switch (opened.kind) {
    case ContentKind::kNavigation:
      return InspectNavigation(std::move(opened.bytes), file, limits, diagnostics);
    case ContentKind::kPreciseOrbits:
      return InspectPreciseOrbits(std::move(opened.bytes), file, limits, diagnostics);
    case ContentKind::kStream:
      return InspectStream(std::move(opened), file, diagnostics);
    case ContentKind::kObservations:
      return InspectObservations(std::move(opened.bytes), file, limits, diagnostics);
  }
}

bool Inspect(const std::string& file, const InputLimits& limits) {
  Diagnostics diagnostics;
  Row("File", file == "-" ? "standard input" : Printable(file));
  bool good = true;
  try {
    InspectContents(file, limits, diagnostics);
  } catch (const std::exception& error) {
    std::fflush(stdout);
    PrintError(ErrorText(error));
    good = false;
  }
  ShowNotices(diagnostics);
  if (good && diagnostics.Incomplete()) {
    std::fflush(stdout);
    PrintError(diagnostics.Incomplete()->what());
  }
  return good && !diagnostics.Incomplete();
}

int InspectAll(const InspectSettings& settings) {
  int exit_code = kGood;
  for (std::size_t i = 0; i < settings.files.size(); ++i) {
    if (i > 0) std::puts("");
    if (!Inspect(settings.files[i], settings.limits)) exit_code = kRunFailed;
  }
  return exit_code;
}

}  // namespace

Command InspectCommand() {
  auto settings = std::make_shared<InspectSettings>();
  Option files = ListOption(
      "FILE", "FILE", settings->files,
      "RINEX observation or navigation files, recordings of streams (RTCM 3, Septentrio SBF, u-blox UBX) or "
      "precise orbits (SP3), compressed or not; - for standard input");
  files.many = true;
  std::vector<Option> options = {
      Positional(std::move(files), true),
      Parsed("max-size", "BYTES", "8G", ParseSize, settings->limits,
             "Largest size in bytes that a compressed file may expand to"),
  };
  return {"inspect", "List what files hold, without navigation and without a check", std::move(options),
          [settings] { return InspectAll(*settings); }};
}

}  // namespace orsolva_host

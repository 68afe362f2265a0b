#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/argument_texts.h"
#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/judging/nominal_interval.h"
#include "host/judging/rtcm_detection.h"
#include "host/judging/run_error.h"
#include "host/judging/stream_contents.h"
#include "host/report/text_layout.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kNameWidth = 18;
constexpr std::size_t kFirstEpochs = 600;

struct InspectSettings {
  std::vector<std::string> files;
  InputLimits limits;
};

void Row(std::string name, const std::string& value) {
  name.resize(kNameWidth, ' ');
  std::fputs(Wrapped(value.empty() ? "-" : value, name, std::string(kNameWidth, ' '), 80).c_str(), stdout);
}

/// What the observations of a system hold.
struct SystemCounts {
  std::set<int> satellites;
  std::uint64_t observations = 0;        ///< satellites summed over epochs
  std::map<int, std::uint64_t> signals;  ///< by signal code number
};

struct Contents {
  std::uint64_t epochs = 0;
  Time_gbt first = {};
  Time_gbt last = {};
  std::array<SystemCounts, kSystems> systems;
  std::vector<ObsEpoch_QC_gbt> start;  ///< for the interval
};

void Count(const ObsEpoch_QC_gbt& epoch, Contents& contents) {
  if (contents.epochs++ == 0) contents.first = epoch.time;
  contents.last = epoch.time;
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    const Satellite_gbt& satellite = epoch.sats[i];
    const int slot = SystemSlotOfCode(satellite.sys);
    if (slot < 0) continue;
    SystemCounts& counts = contents.systems[slot];
    counts.satellites.insert(satellite.prn);
    ++counts.observations;
    for (std::uint32_t k = 0; k < satellite.signal_num; ++k) ++counts.signals[satellite.signals[k].code];
  }
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

void ShowContents(const Contents& contents, const ObservationHeader& header) {
  Row("Epochs", fmt::format("{}", contents.epochs));
  if (contents.epochs == 0) return;
  Row("First epoch", TimeText(contents.first) + " GPST");
  Row("Last epoch", TimeText(contents.last) + " GPST");
  Row("Duration", fmt::format("{:.4f} h", Difference(contents.last, contents.first) / 3600));
  const auto found = MostFrequentInterval(contents.start.data(), contents.start.size());
  Row("Interval", fmt::format("{} in the header, {} in the data",
                              header.interval_s ? fmt::format("{:g} s", *header.interval_s) : "none",
                              found ? fmt::format("{:g} s", *found) : "none"));
  for (int slot = 0; slot < kSystems; ++slot) {
    const SystemCounts& counts = contents.systems[slot];
    if (counts.observations == 0) continue;
    std::string text = fmt::format("{} satellites, {} satellite-epochs; signals", counts.satellites.size(),
                                   counts.observations);
    for (const auto& [code, count] : counts.signals) {
      text += fmt::format(" {}={}", SignalName(kSystemTable[slot].code, code), count);
    }
    Row(kSystemTable[slot].name, text);
  }
}

void InspectObservations(const std::string& file, const InputLimits& limits, Diagnostics& diagnostics) {
  ObservationReader reader(file, diagnostics, {false, limits});
  ShowHeader(reader.Header());
  Contents contents;
  const auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  try {
    while (reader.Next(*epoch)) {
      Count(*epoch, contents);
      if (contents.start.size() < kFirstEpochs) {
        contents.start.emplace_back();
        contents.start.back().time = epoch->time;
      }
    }
  } catch (...) {
    // What was read before the end is still worth knowing.
    ShowContents(contents, reader.Header());
    throw;
  }
  ShowContents(contents, reader.Header());
  if (reader.Failure()) throw FileError(*reader.Failure());
}

void InspectNavigation(const std::string& file, const InputLimits& limits, Diagnostics& diagnostics) {
  NavigationReader reader(diagnostics, {limits});
  reader.Read(file);
  const NavigationSet set = reader.Take();
  Row("Kind", "navigation");
  Row("Records", fmt::format("GPS {}, GLONASS {}, BDS {}, Galileo {}, QZSS {}", set.gps.size(),
                             set.glonass.size(), set.bds.size(), set.galileo.size(), set.qzss.size()));
}

void InspectStream(const std::string& file, const InputLimits& limits, Diagnostics& diagnostics) {
  ShowStream(OpenBytes(file, diagnostics, limits), file, diagnostics,
             [](const std::string& name, const std::string& text) { Row(name, text); });
}

bool Inspect(const std::string& file, const InputLimits& limits) {
  Diagnostics diagnostics;
  Row("File", Printable(file));
  bool good = true;
  try {
    if (RtcmContentOf(file) != RtcmContent::kNone) {
      InspectStream(file, limits, diagnostics);
    } else if (KindOfFile(file) == FileKind::kNavigation) {
      InspectNavigation(file, limits, diagnostics);
    } else {
      InspectObservations(file, limits, diagnostics);
    }
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
  Option files = ListOption("FILE", "FILE", settings->files,
                            "RINEX observation or navigation files and RTCM 3 streams, compressed or not");
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

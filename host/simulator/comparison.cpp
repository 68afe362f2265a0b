#include "host/simulator/comparison.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "host/rinex/satellite_names.h"
#include "host/simulator/fault_detection.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::json;

/// A mean of means, each with its weight; squares for root mean squares.
struct Pooled {
  double weight = 0;
  double sum = 0;

  void Add(const Json& value, double count, bool square) {
    if (!value.is_number() || count <= 0) return;
    const double v = value.get<double>();
    weight += count;
    sum += count * (square ? v * v : v);
  }
  std::optional<double> Mean() const {
    if (weight <= 0) return std::nullopt;
    return sum / weight;
  }
  std::optional<double> Root() const {
    if (weight <= 0) return std::nullopt;
    return std::sqrt(sum / weight);
  }
};

/// Truth of one signal, or of the signals of one system, over the healthy satellites.
struct Expectation {
  std::uint64_t expected = 0;
  std::uint64_t observed = 0;
  std::uint64_t slips = 0;
  Pooled multipath, strength;
};

struct Expectations {
  std::map<std::string, Expectation> systems;  ///< by letter
  std::map<std::string, Expectation> signals;  ///< by letter and signal, such as "G1C"
};

Json Parsed(const NamedText& file, const char* what, const std::vector<const char*>& keys) {
  Json json = Json::parse(file.text, nullptr, false);
  bool good = json.is_object();
  for (const char* key : keys) good = good && json.contains(key);
  if (!good) throw ComparisonError(fmt::format("{}: is not a {}", file.name, what));
  return json;
}

void AddSignal(const Json& s, Expectation& e) {
  const double above = s.at("above_cutoff_epochs").get<double>();
  e.observed += s.at("above_cutoff_epochs").get<std::uint64_t>();
  e.multipath.Add(s.at("code_error_less_moving_mean_rms_m"), above, true);
}

Expectations ExpectationsOf(const Json& truth) {
  Expectations all;
  for (const Json& satellite : truth.at("satellites")) {
    const std::string letter = satellite.at("satellite").get<std::string>().substr(0, 1);
    // A signal strength needs no orbit: the analysis takes those of unhealthy satellites too.
    for (const Json& signal : satellite.at("signals")) {
      all.signals[letter + signal.at("signal").get<std::string>()].strength.Add(
          signal.at("snr_mean_dbhz"), signal.at("tracked_epochs").get<double>(), false);
    }
    if (!satellite.at("healthy").get<bool>()) continue;
    const auto expected = satellite.at("above_cutoff_epochs").get<std::uint64_t>();
    for (const Json& signal : satellite.at("signals")) {
      for (Expectation* e :
           {&all.systems[letter], &all.signals[letter + signal.at("signal").get<std::string>()]}) {
        e->expected += expected;
        AddSignal(signal, *e);
      }
    }
  }
  for (const Json& fault : truth.at("faults")) {
    if (fault.at("kind") != "slip" || !fault.at("shows_in_the_data").get<bool>()) continue;
    const std::string letter = fault.at("satellite").get<std::string>().substr(0, 1);
    ++all.systems[letter].slips;
    ++all.signals[letter + fault.at("signal").get<std::string>()].slips;
  }
  return all;
}

std::string Fixed(const std::optional<double>& value, int decimals) {
  return value && std::isfinite(*value) ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

std::string Fixed(const Json& value, int decimals) {
  return value.is_number() ? Fixed(std::optional<double>(value.get<double>()), decimals) : "-";
}

std::string Text(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  return value.is_null() ? "-" : value.dump();
}

/// "GPS" for "G"
std::string SystemName(const Json& letter) {
  const std::string name = Text(letter);
  const int slot = SystemSlot(name[0]);
  return slot < 0 ? name : kSystemTable[slot].name;
}

/// Empty for a fault that affects all satellites or signals.
std::string NameOrAll(const Json& value) { return value.is_null() ? "" : value.get<std::string>(); }

std::optional<double> Distance(const Json& a, const Json& b) {
  double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const double d = a.at(i).get<double>() - b.at(i).get<double>();
    sum += d * d;
  }
  return std::sqrt(sum);
}

class Comparison {
 public:
  Comparison(const NamedText& report, const NamedText& truth, const DetailTable* detail)
      : report_name_(report.name),
        truth_name_(truth.name),
        report_(Parsed(report, "report of orsolva qc --json", {"run", "analysis"})),
        truth_(Parsed(truth, "truth.json written by orsolva simulate", {"receiver", "satellites", "faults"})),
        run_(report_.at("run")),
        analysis_(report_.at("analysis")),
        detail_(detail) {}

  std::string Write() {
    CheckSameRun();
    expectations_ = ExpectationsOf(truth_);
    WriteRun();
    WriteSystems();
    WriteSignals();
    WriteFaults();
    if (detail_ != nullptr) WriteDetectedFaults();
    WriteNotes();
    return std::move(out_);
  }

 private:
  void MustAgree(const char* what, const std::string& found, const std::string& expected, const char* hint) {
    if (found == expected) return;
    throw ComparisonError(fmt::format("{}: found {} {}, expected {} as in {}. {}", report_name_, what, found,
                                      expected, truth_name_, hint));
  }

  void CheckSameRun() {
    MustAgree("interval", Fixed(run_.at("interval_s"), 3), Fixed(truth_.at("interval_s"), 3),
              "Compare a report of the whole data.");
    MustAgree("elevation cut-off", Fixed(run_.at("elevation_cutoff_deg"), 3),
              Fixed(truth_.at("cutoff_deg"), 3),
              "Run qc with this --elevation, or simulate with another truth_cutoff_deg.");
    MustAgree("first epoch", Text(run_.at("first_epoch_gpst")), Text(truth_.at("first_epoch_gpst")),
              "Compare files of one simulation.");
    MustAgree("last epoch", Text(run_.at("last_epoch_gpst")), Text(truth_.at("last_epoch_gpst")),
              "Compare files of one simulation.");
  }

  void Line(const std::string& text) { out_ += text + "\n"; }
  void Row(const std::string& what, const std::string& report, const std::string& truth) {
    Line(fmt::format("{:<28}{:>25}{:>25}", what, report, truth));
  }

  void WriteRun() {
    const Json& receiver = truth_.at("receiver");
    const Json& position = receiver.at("track").at(0).at("position_ecef_m");
    Line(fmt::format("Scenario {}, seed {}", Text(truth_.at("scenario")), Text(truth_.at("seed"))));
    Row("", "Report", "Truth");
    Row("First epoch (GPST)", Text(run_.at("first_epoch_gpst")), Text(truth_.at("first_epoch_gpst")));
    Row("Last epoch (GPST)", Text(run_.at("last_epoch_gpst")), Text(truth_.at("last_epoch_gpst")));
    Row("Epochs in the file", Text(run_.at("epochs")), Text(truth_.at("delivered_epochs")));
    Row("Epochs not in the file", Text(Library("run").value("lost_epochs", Json())),
        Text(truth_.at("missing_epochs")));
    const Json& solution = analysis_.at("solution_ecef_m");
    if (solution.is_array())
      Row("Error of the position (m)", Fixed(Distance(solution, position), 3), "0.000");
    Row("Error of the header's (m)", Fixed(analysis_.at("solution_to_header_m"), 3),
        Fixed(Distance(receiver.at("header_position_ecef_m"), position), 3));
  }

  /// Slips of every size.
  static std::uint64_t SlipsOf(const Json& owner) {
    std::uint64_t sum = 0;
    for (const char* key : {"sure_slips", "unsure_slips", "half_cycle_slips", "phase_jumps"}) {
      if (owner.at(key).is_number()) sum += owner.at(key).get<std::uint64_t>();
    }
    return sum;
  }

  void WriteSystems() {
    Line("\nSYSTEMS (observations of all signals above the cut-off)");
    Line("                Expected          Observed      Completeness %       Slips");
    Line("System      Report    Truth    Report    Truth   Report  Truth  found injected");
    std::uint64_t found = 0, injected = 0;
    for (const Json& system : analysis_.at("systems")) {
      const Expectation& e = expectations_.systems[system.at("letter").get<std::string>()];
      std::optional<double> truth_percent, report_percent;
      if (e.expected > 0)
        truth_percent = 100.0 * static_cast<double>(e.observed) / static_cast<double>(e.expected);
      if (const Json& ratio = system.at("cutoff_completeness_ratio"); ratio.is_number())
        report_percent = 100 * ratio.get<double>();
      const std::uint64_t slips = SlipsOf(system);
      found += slips;
      injected += e.slips;
      Line(fmt::format("{:<9}{:>9}{:>9}{:>10}{:>9}{:>9}{:>7}{:>7}{:>9}", SystemName(system.at("letter")),
                       Text(system.at("cutoff_expected_epochs")), e.expected,
                       Text(system.at("cutoff_observed_epochs")), e.observed, Fixed(report_percent, 2),
                       Fixed(truth_percent, 2), slips, e.slips));
    }
    Line(fmt::format("Cycle slips found: {}, injected: {}", found, injected));
  }

  /// Part of the library's record; an empty object in a report without it.
  Json Library(const char* part) const {
    const Json library = report_.value("library", Json::object());
    return library.value(part, Json::object());
  }

  /// The multipath of the library's record, whose moving mean and cut-off are those of the truth.
  Json LibraryMultipath(const std::string& letter, const std::string& name) const {
    for (const Json& signal : Library("signals")) {
      if (Text(signal.at("letter")) == letter && Text(signal.at("signal")) == name)
        return signal.at("mp_rms_m");
    }
    return nullptr;
  }

  void WriteSignals() {
    Line("\nSIGNALS (multipath RMS of the library record in m, mean SNR in dB-Hz)");
    Line("               Observed         Multipath             SNR        Slips");
    Line("Signal     Report    Truth   Report   Truth   Report   Truth  found injected");
    for (const Json& signal : analysis_.at("signals")) {
      const std::string letter = Text(signal.at("letter")), name = Text(signal.at("signal"));
      const Expectation& e = expectations_.signals[letter + name];
      Line(fmt::format("{:<8}{:>9}{:>9}{:>9}{:>8}{:>9}{:>8}{:>7}{:>9}", letter + " " + name,
                       Text(signal.at("cutoff_observed_epochs")), e.observed,
                       Fixed(LibraryMultipath(letter, name), 3), Fixed(e.multipath.Root(), 3),
                       Fixed(signal.at("strength_mean_dbhz"), 2), Fixed(e.strength.Mean(), 2),
                       SlipsOf(signal), e.slips));
    }
  }

  void WriteFaults() {
    constexpr std::size_t kMaxRows = 40;
    const Json& faults = truth_.at("faults");
    Line("\nFAULTS INJECTED (sizes: slip cycles, jump and offset m, drop dB, clock ms)");
    if (faults.empty()) return Line("none");
    Line("Time                 Kind             Satellite  Signal      Size  Duration s");
    std::size_t rows = 0;
    for (const Json& fault : faults) {
      if (++rows > kMaxRows) continue;
      const bool shows = fault.at("shows_in_the_data").get<bool>();
      const std::string time = Text(fault.at("time_gpst")).substr(0, 19);
      Line(fmt::format("{:<21}{:<17}{:<11}{:<8}{:>8g}{:>12g}{}", time, Text(fault.at("kind")),
                       Text(fault.at("satellite")), Text(fault.at("signal")), fault.at("size").get<double>(),
                       fault.at("duration_s").get<double>(), shows ? "" : " *"));
    }
    if (rows > kMaxRows) Line(fmt::format("and {} more", rows - kMaxRows));
    Line("* does not show in the data: nothing was tracked there at the time");
  }

  void WriteDetectedFaults() {
    std::vector<DetectedFault> faults;
    for (const Json& fault : truth_.at("faults")) {
      const bool slip = fault.at("kind") == "slip";
      if ((!slip && fault.at("kind") != "code_jump") || !fault.at("shows_in_the_data").get<bool>()) continue;
      faults.push_back({Text(fault.at("time_gpst")), NameOrAll(fault.at("satellite")),
                        NameOrAll(fault.at("signal")), slip, fault.at("size").get<double>()});
    }
    ReadReasons(*detail_, faults);
    out_ += DetectedFaultsText(faults);
  }

  void WriteNotes() {
    Line("\nNOTES");
    Line("  Figures of the report are those of its analysis; slips are of every size, from");
    Line("  the cut-off up. Multipath is that of its library record, about the moving mean");
    Line("  of the truth; code jumps are in it, and phase noise, magnified where the");
    Line("  carriers of a pair are close. Strengths are those of all satellites.");
    Line("  Counts change by a few epochs with the position: a satellite at the cut-off");
    Line("  may fall on either side of it. The detail table is the library's.");
  }

  std::string report_name_, truth_name_;
  Json report_, truth_;
  const Json& run_;
  const Json& analysis_;
  const DetailTable* detail_;
  Expectations expectations_;
  std::string out_;
};

}  // namespace

std::string ComparisonText(const NamedText& report, const NamedText& truth, const DetailTable* detail) {
  Comparison comparison(report, truth, detail);
  try {
    return comparison.Write();
  } catch (const Json::exception& error) {
    const std::string what = error.what();
    throw ComparisonError(
        fmt::format("{} and {}: found files of another version ({}), expected those of this program",
                    report.name, truth.name, what.substr(what.find("] ") + 2)));
  }
}

}  // namespace orsolva_host

#include "host/rinex/observation_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/signal_codes.h"
#include "host/rinex/spliced_header.h"
#include "host/rinex/version2_codes.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

constexpr float kStrengthStep_dbhz = 6;
constexpr std::size_t kMaxChanges = 100;
constexpr std::size_t kNoKind = static_cast<std::size_t>(-1);

/// Index of a number in the list; a new number is appended.
int PlaceOf(std::vector<std::uint8_t>& numbers, int number) {
  const auto known = std::find(numbers.begin(), numbers.end(), number);
  if (known != numbers.end()) return static_cast<int>(known - numbers.begin());
  numbers.push_back(static_cast<std::uint8_t>(number));
  return static_cast<int>(numbers.size()) - 1;
}

bool HasValue(const Signal_QC_gbt& signal) {
  return signal.pseudorange != 0 || signal.phase != 0 || signal.doppler != 0 || signal.snr != 0;
}

void Store(char kind, double value, Signal_QC_gbt& signal) {
  switch (kind) {
    case 'C':
      signal.pseudorange = value;
      break;
    case 'L':
      signal.phase = value;
      break;
    case 'D':
      signal.doppler = static_cast<float>(value);
      break;
    case 'S':
      signal.snr = static_cast<float>(value);
      break;
    default:
      break;
  }
}

}  // namespace

ObservationReader::ObservationReader(const std::string& path, Diagnostics& diagnostics,
                                     const ObservationOptions& options)
    : ObservationReader(OpenBytes(path, diagnostics, options.limits), path, diagnostics, options) {}

ObservationReader::ObservationReader(std::unique_ptr<ByteSource> source, std::string name,
                                     Diagnostics& diagnostics, const ObservationOptions& options)
    : name_(std::move(name)),
      diagnostics_(diagnostics),
      options_(options),
      lines_(std::move(source)),
      parser_(name_, diagnostics, header_),
      empty_satellite_(kNoKind) {
  unsupported_.fill(kNoKind);
  parser_.ReadAll(lines_);
  body_ = BodyOf(header_, lines_, name_, diagnostics_);
  PlanTimeScale();
  MakePlans();
}

void ObservationReader::PlanTimeScale() {
  time_shift_s_ = SecondsToGpsTime(header_);
  if (IsInGlonassTime(header_) && !header_.leap_seconds) {
    diagnostics_.Add(name_, 0, "epochs in GLONASS time but no LEAP SECONDS in the header; taken as GPS time",
                     false);
  }
}

void ObservationReader::MakePlans() {
  has_choices_ = false;
  for (int slot = 0; slot < kSystems; ++slot) PlanSystem(slot);
  full_.Plan(header_);
  bool any = false;
  bool any_strength = false;
  for (const SystemPlan& plan : plans_) {
    for (const CellPlan& cell : plan.cells) {
      any = any || cell.signal >= 0;
      any_strength = any_strength || (cell.signal >= 0 && (cell.kind == 'S' || cell.strength_digit));
    }
  }
  has_strength_ = has_strength_ || any_strength;
  if (!any) diagnostics_.Add(name_, 0, "the header lists no supported signal", false);
  if (any && !has_strength_) {
    diagnostics_.Add(
        name_, 0,
        "no signal strength (S types) in the file: no SNR, and no complete observations for the library",
        false);
  }
}

void ObservationReader::PlanSystem(int slot) {
  const SystemRow& system = kSystemTable[slot];
  SystemPlan& plan = plans_[static_cast<std::size_t>(slot)];
  plan = {};
  for (const std::string& type : header_.TypesOf(system.letter)) {
    CellPlan cell = header_.version < 3 ? PlanCell2(slot, type, plan) : PlanCell(slot, type, plan);
    cell.scale = ScaleOf(header_, system.letter, type);
    plan.cells.push_back(cell);
  }
  plan.seen.assign(plan.numbers.size(), 0);
  has_choices_ = has_choices_ || !plan.choices.empty();
  if (options_.snr_from_strength) PlanStrengthDigits(plan);
}

CellPlan ObservationReader::PlanCell(int slot, const std::string& type, SystemPlan& plan) {
  const SystemRow& system = kSystemTable[slot];
  CellPlan cell;
  cell.kind = type.size() == 3 ? type[0] : ' ';
  if (std::strchr("CLDS", cell.kind)) {
    const int number = SignalNumber(system.code, std::string_view(type).substr(1), header_.version);
    if (number != 0) cell.signal = PlaceOf(plan.numbers, number);
  }
  if (cell.signal < 0 && cell.kind != 'X') {
    diagnostics_.Add(name_, 0,
                     fmt::format("observation type {} of {} is not in the library's record", Printable(type),
                                 system.name));
  }
  return cell;
}

CellPlan ObservationReader::PlanCell2(int slot, const std::string& type, SystemPlan& plan) {
  const SystemRow& system = kSystemTable[slot];
  const std::vector<std::string>& types = header_.TypesOf(system.letter);
  const bool lettered = type.size() == 2 && std::any_of(types.begin(), types.end(), [&](const auto& other) {
                          return BandOfLettered(other) == type[1] - '0';
                        });
  const auto listed = [&](std::string_view signal) {
    return std::any_of(types.begin(), types.end(), [&](const std::string& other) {
      const bool range = other[0] == 'C' || other[0] == 'P';
      return range && SignalsOfVersion2(system.letter, other, false).first == signal;
    });
  };
  CellPlan cell;
  Version2Signals signals = SignalsOfVersion2(system.letter, type, lettered);
  if (signals.first.empty()) return cell;
  if (!signals.second.empty() && !listed(signals.first) && listed(signals.second))
    signals.first = signals.second;
  if (!listed(signals.second)) signals.second = {};
  cell.kind = type[0] == 'P' ? 'C' : type[0];
  const auto place = [&](std::string_view signal) {
    return PlaceOf(plan.numbers, SignalNumber(system.code, signal, 3));
  };
  cell.signal = place(signals.first);
  if (!signals.second.empty() && signals.second != signals.first) {
    plan.choices.push_back({plan.cells.size(), cell.signal, place(signals.second)});
  }
  return cell;
}

void ObservationReader::PlanStrengthDigits(SystemPlan& plan) {
  for (CellPlan& cell : plan.cells) {
    const bool has_strength = std::any_of(plan.cells.begin(), plan.cells.end(), [&](const CellPlan& other) {
      return other.kind == 'S' && other.signal == cell.signal;
    });
    cell.strength_digit = cell.kind == 'L' && cell.signal >= 0 && !has_strength;
    if (cell.strength_digit) {
      diagnostics_.Add(name_, 0, "SNR estimated from the signal strength digits of the phases");
    }
  }
}

/// Assigns phases of RINEX 2 to the signal indicated by the pseudoranges seen so far.
void ObservationReader::SettleChoices() {
  for (const SatelliteRow& row : block_.satellites) {
    const int slot = SystemSlot(row.letter);
    if (slot < 0) continue;
    SystemPlan& plan = plans_[static_cast<std::size_t>(slot)];
    for (std::size_t i = 0; i < plan.cells.size() && i < row.cells; ++i) {
      const CellPlan& cell = plan.cells[i];
      const Cell& found = block_.cells[row.first_cell + i];
      if (cell.kind == 'C' && cell.signal >= 0 && found.present && found.value != 0) {
        plan.seen[static_cast<std::size_t>(cell.signal)] = 1;
      }
    }
  }
  for (SystemPlan& plan : plans_) {
    for (const SignalChoice& choice : plan.choices) {
      const bool second = !plan.seen[static_cast<std::size_t>(choice.first)] &&
                          plan.seen[static_cast<std::size_t>(choice.second)];
      plan.cells[choice.cell].signal = second ? choice.second : choice.first;
    }
  }
}

bool ObservationReader::Next(ObsEpoch_QC_gbt& epoch) {
  if (failure_) return false;
  try {
    return Advance(epoch);
  } catch (const FileError& error) {
    if (!last_time_) throw;
    failure_ = error;
    diagnostics_.Add(name_, error.Line() > 0 ? error.Line() : lines_.Line(),
                     "reading stops here: found " + error.Found() + ", expected " + error.Expected() + ". " +
                         error.Advice(),
                     false);
    return false;
  }
}

bool ObservationReader::Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  if (!Next(epoch)) return false;
  AssignChoices();
  full_.Fill(block_, epoch.time, full);
  return true;
}

/// What RINEX 2 leaves open is settled for both views of an epoch at once.
void ObservationReader::AssignChoices() {
  for (int slot = 0; slot < kSystems; ++slot) {
    const SystemPlan& plan = plans_[static_cast<std::size_t>(slot)];
    for (const SignalChoice& choice : plan.choices) {
      const auto place = static_cast<std::size_t>(plan.cells[choice.cell].signal);
      const std::string_view name = SignalName(kSystemTable[slot].code, plan.numbers[place]);
      full_.Assign(kSystemTable[slot].letter, choice.cell, {name[0], name[1]});
    }
  }
}

bool ObservationReader::Advance(ObsEpoch_QC_gbt& epoch) {
  while (blocks_.Next(*body_, header_.types, block_)) {
    if (block_.flag > 1) {
      TakeEvent(block_);
      continue;
    }
    FillEpoch(epoch);
    return true;
  }
  return false;
}

void ObservationReader::NameEvent(const EpochBlock& block) {
  static constexpr const char* kNames[] = {"antenna starts moving", "new site occupation",
                                           "header information",    "external event",
                                           "cycle slip records",    ""};
  if (block.flag != kStrayHeader) {
    return diagnostics_.Add(
        name_, block.line,
        fmt::format("event skipped (flag {}: {})", block.flag, kNames[std::clamp(block.flag, 2, 7) - 2]));
  }
  const bool comments = std::all_of(block.records.begin(), block.records.end(),
                                    [](const std::string& line) { return HeaderLabel(line) == "COMMENT"; });
  diagnostics_.Add(
      name_, block.line,
      comments ? "comments among the observations skipped" : "header lines among the observations applied");
}

// Flags 2 to 5 are followed by header lines (a moving antenna, a new site, header information, an external
// event); flag 6 by cycle slip records, which look like observations but are not.
void ObservationReader::TakeEvent(const EpochBlock& block) {
  constexpr int kSlipRecords = 6;
  NameEvent(block);
  full_.TakeEvent(block.flag);
  if (block.flag == kSlipRecords) return;
  if (ChangesForm(block, header_)) return TakeOtherForm(block);
  parser_.BeginBlock();
  const ObservationTypes types = header_.types;
  const std::size_t scales = header_.scale_factors.size();
  const std::array<std::string, 3> before = {header_.antenna, header_.receiver, header_.marker};
  for (std::size_t i = 0; i < block.records.size(); ++i) {
    const std::string& line = block.records[i];
    const long number = block.first_record_line + static_cast<long>(i);
    const std::string_view label = HeaderLabel(line);
    if (label == "SYS / PHASE SHIFT" || label == "SYS / PHASE SHIFTS") {
      diagnostics_.Add(name_, number,
                       "phase shifts among the observations; phases may step by a fraction of a cycle there");
    }
    parser_.Take(line, number);
  }
  NoteChanges(before);
  if (header_.types == types && header_.scale_factors.size() == scales) return;
  diagnostics_.Add(name_, block.line, "observation types or scale factors change within the file");
  MakePlans();
}

/// What follows a header of another form is read as a file of that form.
void ObservationReader::TakeOtherForm(const EpochBlock& block) {
  const std::array<std::string, 3> before = {header_.antenna, header_.receiver, header_.marker};
  header_ = SplicedHeader(block, header_, name_, diagnostics_);
  diagnostics_.Add(
      name_, block.line,
      fmt::format("continues as {}RINEX {:.2f}", header_.crinex ? "CRINEX of " : "plain ", header_.version));
  body_ = BodyOf(header_, lines_, name_, diagnostics_);
  NoteChanges(before);
  PlanTimeScale();
  MakePlans();
}

/// @param before  antenna, receiver and marker
void ObservationReader::NoteChanges(const std::array<std::string, 3>& before) {
  const std::array<const std::string*, 3> after = {&header_.antenna, &header_.receiver, &header_.marker};
  const std::array<const char*, 3> names = {"antenna", "receiver", "marker"};
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == *after[i] || changes_.size() == kMaxChanges) continue;
    changes_.push_back({names[i], before[i], *after[i]});
  }
}

void ObservationReader::CheckOrder(const Time_gbt& time) {
  if (blocks_.HasWrongTime()) {
    return diagnostics_.Add(name_, block_.line, "time jumps ahead and back again; the epoch is not judged",
                            false);
  }
  if (last_time_) {
    const double step_s = Difference(time, *last_time_);
    if (step_s == 0) {
      diagnostics_.Add(name_, block_.line, "duplicate epochs; the first is used");
    } else if (step_s < 0) {
      diagnostics_.Add(name_, block_.line, "time goes backwards; epochs are skipped until it catches up");
    }
  }
  last_time_ = time;
}

void ObservationReader::FillEpoch(ObsEpoch_QC_gbt& epoch) {
  epoch.time = block_.time;
  epoch.time.time += time_shift_s_;
  CheckOrder(epoch.time);
  if (has_choices_) SettleChoices();
  epoch.sat_num = 0;
  seen_.fill(0);
  for (const SatelliteRow& row : block_.satellites) AddSatellite(row, epoch);
  // Unused satellite records are zeroed for hosts that copy whole epochs.
  std::memset(&epoch.sats[epoch.sat_num], 0, sizeof epoch.sats[0] * (ORSOLVA_MAX_SATELLITES - epoch.sat_num));
}

bool ObservationReader::IsSupported(const SatelliteRow& row, int slot) {
  if (slot < 0) {
    std::size_t& kind = unsupported_[static_cast<std::size_t>(row.letter - 'A')];
    if (kind != kNoKind) {
      diagnostics_.Again(kind);
    } else {
      kind = diagnostics_.AddKind(
          name_, block_.line, fmt::format("satellites of system {} are only in the analysis", row.letter));
    }
    return false;
  }
  if (row.number <= kSystemTable[slot].satellites) return true;
  diagnostics_.Add(
      name_, block_.line,
      fmt::format("satellite {} is not in the library's record", SatelliteName(row.letter, row.number)));
  return false;
}

void ObservationReader::AddSatellite(const SatelliteRow& row, ObsEpoch_QC_gbt& epoch) {
  const int slot = SystemSlot(row.letter);
  if (!IsSupported(row, slot)) return;
  std::uint64_t& seen = seen_[static_cast<std::size_t>(slot)];
  const std::uint64_t bit = std::uint64_t{1} << (row.number - 1);
  if (seen & bit) {
    return diagnostics_.Add(name_, block_.line, "duplicate satellite in an epoch; the first is used", false);
  }
  if (epoch.sat_num >= ORSOLVA_MAX_SATELLITES) {
    return diagnostics_.Add(name_, block_.line,
                            "more than 80 satellites in an epoch; the library's record has the first 80",
                            false);
  }
  Satellite_gbt& satellite = epoch.sats[epoch.sat_num];
  std::memset(&satellite, 0, sizeof satellite);
  satellite.sys = static_cast<std::uint8_t>(kSystemTable[slot].code);
  satellite.prn = row.number;
  FillSignals(plans_[static_cast<std::size_t>(slot)], row, satellite);
  if (satellite.signal_num > 0) {
    ++epoch.sat_num;
    seen |= bit;
  } else if (empty_satellite_ != kNoKind) {
    diagnostics_.Again(empty_satellite_);
  } else {
    empty_satellite_ = diagnostics_.AddKind(name_, block_.line, "satellite listed without observations");
  }
}

void ObservationReader::FillSignals(const SystemPlan& plan, const SatelliteRow& row,
                                    Satellite_gbt& satellite) {
  signals_.assign(plan.numbers.size(), Signal_QC_gbt{});
  const std::size_t cells = std::min(row.cells, plan.cells.size());
  for (std::size_t i = 0; i < cells; ++i) {
    const CellPlan& plan_of = plan.cells[i];
    const Cell& cell = block_.cells[row.first_cell + i];
    if (plan_of.signal < 0 || !cell.present) continue;
    Signal_QC_gbt& signal = signals_[static_cast<std::size_t>(plan_of.signal)];
    Store(plan_of.kind, plan_of.scale == 1 ? cell.value : cell.value / plan_of.scale, signal);
    if (plan_of.strength_digit && cell.strength >= '1' && cell.strength <= '9') {
      signal.snr = kStrengthStep_dbhz * static_cast<float>(cell.strength - '0');
    }
  }
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if (!HasValue(signals_[i])) continue;
    if (satellite.signal_num >= ORSOLVA_MAX_SIGNALS) {
      return diagnostics_.Add(
          name_, block_.line,
          std::string("more than 8 signals of a satellite; the library's record has the first 8"), false);
    }
    signals_[i].code = plan.numbers[i];
    satellite.signals[satellite.signal_num++] = signals_[i];
  }
}

}  // namespace orsolva_host

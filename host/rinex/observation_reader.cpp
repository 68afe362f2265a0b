#include "host/rinex/observation_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/rinex/decimal.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMostSignals = 8;
constexpr std::uint32_t kMostSatellites = 80;
constexpr std::int64_t kBdsTimeBehindGps_s = 14;

/// Place of a number in the list, where it is appended when it is new.
int PlaceOf(std::vector<std::uint8_t>& numbers, int number) {
  const auto known = std::find(numbers.begin(), numbers.end(), number);
  if (known != numbers.end()) return static_cast<int>(known - numbers.begin());
  numbers.push_back(static_cast<std::uint8_t>(number));
  return static_cast<int>(numbers.size()) - 1;
}

double ScaleOf(const ObservationHeader& header, char letter, const std::string& type) {
  double factor = 1;
  for (const ScaleFactor& scale : header.scale_factors) {
    const bool all = scale.types.empty();
    const bool named = std::find(scale.types.begin(), scale.types.end(), type) != scale.types.end();
    if (scale.system == letter && (all || named)) factor = scale.factor;
  }
  return factor;
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

ObservationReader::ObservationReader(const std::string& path, Diagnostics& diagnostics)
    : ObservationReader(OpenBytes(path, diagnostics), path, diagnostics) {}

ObservationReader::ObservationReader(std::unique_ptr<ByteSource> source, std::string name,
                                     Diagnostics& diagnostics)
    : name_(std::move(name)),
      diagnostics_(diagnostics),
      lines_(std::move(source)),
      parser_(name_, diagnostics, header_) {
  parser_.ReadAll(lines_);
  body_ = header_.compact ? CompactBody(lines_, name_, diagnostics_) : PlainBody(lines_, name_, diagnostics_);
  PlanTimeScale();
  MakePlans();
}

void ObservationReader::PlanTimeScale() {
  if (header_.time_system == "BDT" || (header_.time_system.empty() && header_.system == 'C')) {
    time_shift_s_ = kBdsTimeBehindGps_s;
  } else if (header_.time_system == "GLO" || (header_.time_system.empty() && header_.system == 'R')) {
    time_shift_s_ = header_.leap_seconds.value_or(0);
    if (!header_.leap_seconds) {
      diagnostics_.Add(name_, 0, "epochs in GLONASS time without LEAP SECONDS are taken as GPS time", false);
    }
  }
}

void ObservationReader::MakePlans() {
  for (int slot = 0; slot < kSystems; ++slot) PlanSystem(slot);
  bool any = false;
  bool any_strength = false;
  for (const SystemPlan& plan : plans_) {
    for (const CellPlan& cell : plan.cells) {
      any = any || cell.signal >= 0;
      any_strength = any_strength || (cell.signal >= 0 && cell.kind == 'S');
    }
  }
  has_strength_ = has_strength_ || any_strength;
  if (!any) diagnostics_.Add(name_, 0, "the header lists no signal that is judged", false);
  if (any && !has_strength_) {
    diagnostics_.Add(name_, 0,
                     "no signal strength (S types) in the file: no SNR, and no complete observation", false);
  }
}

void ObservationReader::PlanSystem(int slot) {
  const SystemRow& system = kSystemTable[slot];
  SystemPlan& plan = plans_[slot];
  plan = {};
  for (const std::string& type : header_.TypesOf(system.letter)) {
    CellPlan cell;
    cell.kind = type.size() == 3 ? type[0] : ' ';
    if (std::strchr("CLDS", cell.kind)) {
      const int number = SignalNumber(system.code, std::string_view(type).substr(1), header_.version);
      if (number != 0) cell.signal = PlaceOf(plan.numbers, number);
    }
    if (cell.signal < 0 && cell.kind != 'X') {
      diagnostics_.Add(name_, 0, "observation type " + type + " of " + system.name + " is not judged");
    }
    cell.scale = ScaleOf(header_, system.letter, type);
    plan.cells.push_back(cell);
  }
}

bool ObservationReader::Next(ObsEpoch_QC_gbt& epoch) {
  while (body_->Next(header_.types, block_)) {
    if (block_.flag > 1) {
      TakeEvent(block_);
      continue;
    }
    FillEpoch(epoch);
    return true;
  }
  return false;
}

// Flags 2 to 5 bring header lines (a moving antenna, a new site, header information, an external event);
// flag 6 brings cycle slip records, which look like observations and are none.
void ObservationReader::TakeEvent(const EpochBlock& block) {
  constexpr int kSlipRecords = 6;
  diagnostics_.Add(name_, block.line, "event records (flag " + std::to_string(block.flag) + ") passed over");
  if (block.flag == kSlipRecords) return;
  parser_.BeginBlock();
  bool types = false;
  for (std::size_t i = 0; i < block.records.size(); ++i) {
    const std::string& line = block.records[i];
    parser_.Take(line, block.first_record_line + static_cast<long>(i));
    types = types || line.find("SYS / ") != std::string::npos;
  }
  if (!types) return;
  diagnostics_.Add(name_, block.line, "the observation types or scale factors change in the file");
  MakePlans();
}

void ObservationReader::FillEpoch(ObsEpoch_QC_gbt& epoch) {
  epoch.time = block_.time;
  epoch.time.time += time_shift_s_;
  epoch.sat_num = 0;
  for (const SatelliteRow& row : block_.satellites) AddSatellite(row, epoch);
  // The records of unused satellites stay defined for hosts that copy whole epochs.
  std::memset(&epoch.sats[epoch.sat_num], 0, sizeof epoch.sats[0] * (kMostSatellites - epoch.sat_num));
}

void ObservationReader::AddSatellite(const SatelliteRow& row, ObsEpoch_QC_gbt& epoch) {
  const int slot = SystemSlot(row.letter);
  if (slot < 0) {
    return diagnostics_.Add(name_, block_.line,
                            std::string("satellites of system ") + row.letter + " are not judged");
  }
  if (row.number > kSystemTable[slot].satellites) {
    return diagnostics_.Add(name_, block_.line,
                            "satellite " + SatelliteName(row.letter, row.number) + " is not judged");
  }
  if (epoch.sat_num >= kMostSatellites) {
    return diagnostics_.Add(name_, block_.line, "satellites beyond the first 80 of an epoch are left out",
                            false);
  }
  Satellite_gbt& satellite = epoch.sats[epoch.sat_num];
  std::memset(&satellite, 0, sizeof satellite);
  satellite.sys = static_cast<std::uint8_t>(kSystemTable[slot].code);
  satellite.prn = row.number;
  FillSignals(plans_[slot], row, satellite);
  if (satellite.signal_num > 0) ++epoch.sat_num;
}

void ObservationReader::FillSignals(const SystemPlan& plan, const SatelliteRow& row,
                                    Satellite_gbt& satellite) {
  signals_.assign(plan.numbers.size(), Signal_QC_gbt{});
  const std::size_t cells = std::min(row.cells, plan.cells.size());
  for (std::size_t i = 0; i < cells; ++i) {
    const CellPlan& plan_of = plan.cells[i];
    const Cell& cell = block_.cells[row.first_cell + i];
    if (plan_of.signal >= 0 && cell.present) {
      Store(plan_of.kind, cell.value / plan_of.scale, signals_[static_cast<std::size_t>(plan_of.signal)]);
    }
  }
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if (!HasValue(signals_[i])) continue;
    if (satellite.signal_num >= kMostSignals) {
      return diagnostics_.Add(name_, block_.line,
                              std::string("signals beyond the first 8 of a satellite are left out"), false);
    }
    signals_[i].code = plan.numbers[i];
    satellite.signals[satellite.signal_num++] = signals_[i];
  }
}

}  // namespace orsolva_host

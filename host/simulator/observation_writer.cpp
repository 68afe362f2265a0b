#include "host/simulator/observation_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/rinex/civil_time.h"
#include "host/simulator/broadcast.h"
#include "host/simulator/constellation.h"
#include "host/simulator/crinex_lines.h"
#include "host/simulator/fixed_decimal.h"
#include "host/simulator/header_lines.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kBufferSize = 1 << 18;
constexpr std::size_t kCellWidth = 16;
constexpr int kValueWidth = 14;

/// Signals of all groups of a system, in the order of their first mention.
std::vector<std::string> AllSignals(const Scenario& scenario, char letter) {
  std::vector<std::string> all;
  for (const int satellite : {1, 18, 59}) {  // one of each group of BDS
    for (const std::string& name : SignalsOf(scenario, letter, satellite)) {
      if (std::find(all.begin(), all.end(), name) == all.end()) all.push_back(name);
    }
  }
  return all;
}

Time_gbt TimeOf(const ObservationEpoch& epoch) {
  return {epoch.time_ns / kNanosecondsPerSecond, static_cast<double>(epoch.time_ns % kNanosecondsPerSecond) /
                                                     static_cast<double>(kNanosecondsPerSecond)};
}

std::string FirstObs(const Time_gbt& time) {
  const CivilTime c = ToCivil(time);
  return HeaderLine(fmt::format("{:6}{:6}{:6}{:6}{:6}{:13.7f}     GPS", c.year, c.month, c.day, c.hour,
                                c.minute, c.second + c.fraction),
                    "TIME OF FIRST OBS");
}

}  // namespace

ObservationLines::ObservationLines(const Scenario& scenario, SignalOrder order)
    : scenario_(scenario), kinds_(scenario.observables.doppler ? "CLDS" : "CLS") {
  for (std::size_t slot = 0; slot < kSystems; ++slot) {
    const char letter = kSystemTable[slot].letter;
    if (scenario.systems.find(letter) == std::string::npos) continue;
    for (const std::string& name : AllSignals(scenario, letter)) signals_[slot].push_back({name[0], name[1]});
    if (order == SignalOrder::kScenario) continue;
    std::sort(signals_[slot].begin(), signals_[slot].end(), [](SignalCode a, SignalCode b) {
      return a.band != b.band ? a.band < b.band : a.attribute < b.attribute;
    });
  }
}

std::string ObservationLines::TypeLines(char letter) const {
  std::vector<std::string> types;
  for (const SignalCode code : signals_[static_cast<std::size_t>(SystemSlot(letter))]) {
    for (const char kind : kinds_) types.push_back(kind + NameOf(code));
  }
  constexpr std::size_t kTypesOfLine = 13;
  std::string lines;
  for (std::size_t i = 0; i < types.size(); i += kTypesOfLine) {
    std::string line = i == 0 ? fmt::format("{}  {:3}", letter, types.size()) : std::string(6, ' ');
    for (std::size_t j = i; j < std::min(i + kTypesOfLine, types.size()); ++j) line += " " + types[j];
    lines += HeaderLine(line, "SYS / # / OBS TYPES");
  }
  return lines;
}

std::string ObservationLines::GlonassLines() const {
  const std::vector<NominalOrbit> slots = NominalConstellation("R");
  constexpr std::size_t kSlotsOfLine = 8;
  std::string lines;
  for (std::size_t i = 0; i < slots.size(); i += kSlotsOfLine) {
    std::string line = i == 0 ? fmt::format("{:3} ", slots.size()) : std::string(4, ' ');
    for (std::size_t j = i; j < std::min(i + kSlotsOfLine, slots.size()); ++j) {
      line += fmt::format("{} {:2} ", SatelliteName('R', slots[j].number), slots[j].channel);
    }
    lines += HeaderLine(line, "GLONASS SLOT / FRQ #");
  }
  return lines + HeaderLine(" C1C    0.000 C1P    0.000 C2C    0.000 C2P    0.000", "GLONASS COD/PHS/BIS");
}

std::string ObservationLines::Header(const std::array<double, 3>& p, const Time_gbt& first) const {
  std::string h = HeaderBegin("OBSERVATION DATA");
  h += HeaderLine(scenario_.station, "MARKER NAME");
  h += HeaderLine(fmt::format("{:<20}{}", "ORSOLVA", "SIMULATED SKY"), "OBSERVER / AGENCY");
  h += HeaderLine(fmt::format("{:<20}{:<20}{:<20}", "1", kSimulatedReceiver, "1"), "REC # / TYPE / VERS");
  h += HeaderLine(fmt::format("{:<20}{:<20}", "1", kSimulatedAntenna), "ANT # / TYPE");
  h += HeaderLine(fmt::format("{:14.4f}{:14.4f}{:14.4f}", p[0], p[1], p[2]), "APPROX POSITION XYZ");
  h += HeaderLine(fmt::format("{:14.4f}{:14.4f}{:14.4f}", 0.0, 0.0, 0.0), "ANTENNA: DELTA H/E/N");
  for (const SystemRow& system : kSystemTable) {
    if (scenario_.systems.find(system.letter) != std::string::npos) h += TypeLines(system.letter);
  }
  h += HeaderLine("DBHZ", "SIGNAL STRENGTH UNIT");
  h += HeaderLine(fmt::format("{:10.3f}", scenario_.interval_s), "INTERVAL");
  h += FirstObs(first);
  for (const SystemRow& system : kSystemTable) {
    if (scenario_.systems.find(system.letter) == std::string::npos) continue;
    h += HeaderLine(std::string(1, system.letter), "SYS / PHASE SHIFT");
  }
  if (scenario_.systems.find('R') != std::string::npos) h += GlonassLines();
  h += HeaderLine(fmt::format("{:6}", LeapSeconds(scenario_.start.time)), "LEAP SECONDS");
  return h + HeaderLine("", "END OF HEADER");
}

std::string ObservationLines::EpochLine(const ObservationEpoch& epoch) {
  const CivilTime c = ToCivil(TimeOf(epoch));
  const auto fraction = static_cast<int>(c.fraction * 1e7 + 0.5);
  const int flag = (epoch.events & kPowerFailure) != 0 ? 1 : 0;
  return fmt::format("> {:04} {:02} {:02} {:02} {:02} {:02}.{:07}  {}{:3}", c.year, c.month, c.day, c.hour,
                     c.minute, c.second, fraction, flag, epoch.satellites.size());
}

/// The observation of a signal that belongs to a first letter.
ObservationCell ObservationLines::CellOf(const SignalObservation& o, char kind) {
  const double value = kind == 'C'   ? o.pseudorange_m
                       : kind == 'L' ? o.phase_cycles
                       : kind == 'D' ? o.doppler_hz
                                     : o.snr_dbhz;
  ObservationCell cell;
  if (std::isnan(value)) return cell;
  cell.value = Thousandths(value);
  if (kind == 'L' && o.loss_of_lock != 0) cell.loss_of_lock = static_cast<char>('0' + o.loss_of_lock);
  if ((kind == 'L' || kind == 'C') && o.strength_digit != 0) {
    cell.strength = static_cast<char>('0' + o.strength_digit);
  }
  return cell;
}

void ObservationLines::TakeCells(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                                 std::vector<ObservationCell>& cells) const {
  const std::vector<SignalCode>& signals =
      signals_[static_cast<std::size_t>(SystemSlot(satellite.id.system))];
  cells.assign(kinds_.size() * signals.size(), {});
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    const auto place = std::find(signals.begin(), signals.end(), o.code);
    if (place == signals.end()) continue;
    ObservationCell* cell = &cells[kinds_.size() * static_cast<std::size_t>(place - signals.begin())];
    for (const char kind : kinds_) *cell++ = CellOf(o, kind);
  }
}

void ObservationLines::Append(const ObservationEpoch& epoch, std::string& out) {
  out += EpochLine(epoch);
  out += '\n';
  for (const SatelliteObservation& satellite : epoch.satellites) {
    TakeCells(epoch, satellite, cells_);
    while (!cells_.empty() && cells_.back().value == 0) cells_.pop_back();
    const std::size_t begin = out.size();
    out.resize(begin + 3 + cells_.size() * kCellWidth, ' ');
    out[begin] = satellite.id.system;
    out[begin + 1] = static_cast<char>('0' + satellite.id.number / 10 % 10);
    out[begin + 2] = static_cast<char>('0' + satellite.id.number % 10);
    for (std::size_t j = 0; j < cells_.size(); ++j) {
      if (cells_[j].value == 0) continue;
      char* cell = &out[begin + 3 + j * kCellWidth];
      WriteThousandths(cells_[j].value, cell, kValueWidth);
      cell[kValueWidth] = cells_[j].loss_of_lock;
      cell[kValueWidth + 1] = cells_[j].strength;
    }
    out.resize(out.find_last_not_of(' ') + 1);
    out += '\n';
  }
}

ObservationWriter::ObservationWriter(std::unique_ptr<ByteSink> sink, const Scenario& scenario,
                                     const std::array<double, 3>& header_position_m, bool crinex,
                                     SignalOrder order)
    : sink_(std::move(sink)), header_position_m_(header_position_m) {
  if (crinex) {
    lines_ = std::make_unique<CrinexLines>(scenario, order);
    buffer_ = CrinexLines::Preamble();
  } else {
    lines_ = std::make_unique<ObservationLines>(scenario, order);
  }
}

ObservationWriter::~ObservationWriter() = default;

void ObservationWriter::Write(const ObservationEpoch& epoch) {
  if (!begun_) buffer_ += lines_->Header(header_position_m_, TimeOf(epoch));
  begun_ = true;
  lines_->Append(epoch, buffer_);
  if (buffer_.size() >= kBufferSize) Flush();
}

void ObservationWriter::Close() {
  Flush();
  sink_->Close();
}

void ObservationWriter::Flush() {
  sink_->Write(buffer_.data(), buffer_.size());
  buffer_.clear();
}

}  // namespace orsolva_host

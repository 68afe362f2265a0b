#include "tests/truth/simulated_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/observation/carriers.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "results/result_analysis.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {

using orsolva_host::kSystemTable;
using orsolva_host::SystemSlotOfCode;

config_qct TruthConfig(const orsolva_host::Scenario& scenario) {
  config_qct config = OpenConfig();
  config.elevation = kTruthCutoff_deg;
  config.interval = scenario.interval_s;
  config.enable_position = 1;
  std::copy(scenario.receiver.position_m.begin(), scenario.receiver.position_m.end(), config.position);
  return config;
}

bool Initialise(Process& process, const orsolva_host::Simulation& simulation, const config_qct& config) {
  return InitialQc(simulation.Navigation().Body(), &config, process.Handle());
}

orsolva::PostProcessGnssQc& Inside(const Process& process) {
  return *reinterpret_cast<orsolva::PostProcessGnssQc*>(process.Handle());
}

std::unique_ptr<Figures> FiguresOf(const Process& process) {
  const orsolva::PostProcessGnssQc& run = Inside(process);
  const orsolva::ResultSources sources = {run.Config,
                                          run.IonMp,
                                          run.Snr,
                                          run.ObsData.CodeLists,
                                          run.SatUsable,
                                          run.CombinationMask,
                                          run.FirstTime,
                                          run.LastTime,
                                          run.EpochCount,
                                          run.Interval,
                                          {run.Position[0], run.Position[1], run.Position[2]}};
  auto figures = std::make_unique<Figures>();
  orsolva::QcResultAnalysis().Analyse(sources, figures->result, figures->total);
  return figures;
}

std::vector<ObsEpoch_QC_gbt> AllEpochs(orsolva_host::Simulation& simulation) {
  std::vector<ObsEpoch_QC_gbt> epochs;
  ObsEpoch_QC_gbt epoch;
  while (simulation.Next(epoch)) epochs.push_back(epoch);
  return epochs;
}

const code_qc_entry* FindEntry(const total_code_qc_result& record, int system, int prn, int code) {
  const code_qc_block& block = record.sat[SlotOf(system)][prn - 1];
  for (int k = 0; k < block.count; ++k) {
    if (block.entries[k].code == code) return &block.entries[k];
  }
  return nullptr;
}

char LetterOf(int system) { return kSystemTable[SystemSlotOfCode(system)].letter; }
int SystemCodeOf(char letter) { return kSystemTable[orsolva_host::SystemSlot(letter)].code; }
int SlotOf(int system) { return SystemSlotOfCode(system); }
std::string NameOf(int system, int prn) { return orsolva_host::SatelliteName(LetterOf(system), prn); }

std::string CodeName(int system, int code) {
  return fmt::format("{} {}", kSystemTable[SystemSlotOfCode(system)].name,
                     orsolva_host::SignalName(system, code));
}

std::string BandLabel(int system, int code) {
  return fmt::format("{} band {}", kSystemTable[SystemSlotOfCode(system)].name,
                     orsolva_host::SignalName(system, code)[0]);
}

double FrequencyOf(int system, int code, int glonass_channel) {
  return orsolva_host::CarrierFrequency(LetterOf(system), orsolva_host::SignalName(system, code)[0],
                                        glonass_channel);
}

ElevationRule::ElevationRule(const orsolva_host::Sky& sky, const orsolva_host::Scenario& scenario)
    : sky_(&sky), site_(orsolva_host::MakeSite(scenario.receiver.position_m)) {
  for (std::size_t i = 0; i < sky.Satellites().size(); ++i) {
    const orsolva_host::SkySatellite& s = sky.Satellites()[i];
    indices_[{kSystemTable[orsolva_host::SystemSlot(s.system)].code, s.number}] = i;
  }
}

double ElevationRule::At(int system, int prn, double seconds) const {
  constexpr double kTravel_s = 3.0e8 / 299792458.0;
  const std::size_t index = IndexOf(system, prn);
  const double clock = sky_->StateAt(index, seconds - kTravel_s, seconds).clock_s;
  const orsolva_host::SkyState state = sky_->StateAt(index, seconds - kTravel_s - clock, seconds);
  double line[3], square = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    line[i] = state.position_m[i] - site_.position_m[i];
    square += line[i] * line[i];
  }
  return orsolva_host::DirectionOf(site_, line, std::sqrt(square)).elevation_rad;
}

int ElevationRule::Channel(int system, int prn) const {
  return sky_->Satellites()[IndexOf(system, prn)].channel;
}

double SecondsAfter(const Time_gbt& start, const Time_gbt& time) {
  return static_cast<double>(time.time - start.time) + (time.sec - start.sec);
}

std::string Number(double value, int decimals) { return fmt::format("{:.{}f}", value, decimals); }

}  // namespace orsolva_test

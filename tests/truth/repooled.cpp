#include "tests/truth/repooled.h"

#include <algorithm>
#include <cmath>

namespace orsolva_test {
namespace {

using orsolva::QcMpIodResult;
using orsolva::QcResultCore;
using orsolva::QcSnrResult;

constexpr double kRounding = 1e-12;

}  // namespace

bool Close(double a, double b) {
  return std::fabs(a - b) <= kRounding * std::max({1.0, std::fabs(a), std::fabs(b)});
}

void Repooled::AddSatellite(const QcResultCore* combinations, int chosen) {
  const QcResultCore& core = combinations[chosen];
  expected += core.ExpectedEpochs;
  std::uint64_t most = 0;
  for (int k = 0; k < orsolva::kMaxCombinations; ++k) most = std::max(most, combinations[k].ObservedEpochs);
  observed += core.ObservedEpochs > 0 ? core.ObservedEpochs : most;
  slip_epochs += core.SlipEpochs;
  jump_epochs += core.JumpEpochs;
  AddBands(core);
  for (std::size_t b = 0; b < bands.size(); ++b) {
    bands[b].iod = core.Mp[b].IodRms;  // of the last satellite
    const QcSnrResult& snr = core.Snr[b];
    const std::uint64_t n = snr.AboveMaskCount + snr.BelowMaskCount;
    if (n > 1) bands[b].spread_square.sum += snr.StdDev * snr.StdDev * static_cast<double>(n - 1);
    bands[b].spread_square.count += n;
  }
}

void Repooled::AddSystem(const QcResultCore& system) {
  expected += system.ExpectedEpochs;
  observed += system.ObservedEpochs;
  slip_epochs += system.SlipEpochs;
  jump_epochs += system.JumpEpochs;
  AddBands(system);
}

void Repooled::AddBands(const QcResultCore& core) {
  for (std::size_t b = 0; b < bands.size(); ++b) {
    const QcMpIodResult& mp = core.Mp[b];
    const QcSnrResult& snr = core.Snr[b];
    bands[b].multipath_square.Add(mp.MpRms * mp.MpRms, mp.MpCount);
    bands[b].slips += mp.SlipCount;
    bands[b].jumps += mp.JumpCount;
    bands[b].above.Add(snr.AboveMaskMean, snr.AboveMaskCount);
    bands[b].below.Add(snr.BelowMaskMean, snr.BelowMaskCount);
    bands[b].above30.Add(snr.Above30Mean, snr.Above30Count);
    bands[b].below30.Add(snr.Below30Mean, snr.Below30Count);
  }
}

double Repooled::Completeness() const {
  return expected ? static_cast<double>(observed) / static_cast<double>(expected) : 0.0;
}

void Repooled::Compare(const QcResultCore& core, const std::string& name, Proof& proof) const {
  proof.Check(core.ExpectedEpochs == expected && core.ObservedEpochs == observed, name + ": epochs");
  proof.Check(core.SlipEpochs == slip_epochs && core.JumpEpochs == jump_epochs, name + ": events");
  proof.Check(core.Completeness == Completeness(), name + ": completeness");
  for (std::size_t b = 0; b < bands.size(); ++b) {
    const RepooledBand& band = bands[b];
    const QcSnrResult& snr = core.Snr[b];
    const std::string place = name + ", slot " + std::to_string(b + 1);
    proof.Check(core.Mp[b].MpCount == band.multipath_square.count &&
                    Close(core.Mp[b].MpRms, std::sqrt(band.multipath_square.Mean())),
                place + ": multipath");
    proof.Check(core.Mp[b].SlipCount == band.slips && core.Mp[b].JumpCount == band.jumps, place + ": events");
    proof.Check(snr.AboveMaskCount == band.above.count && Close(snr.AboveMaskMean, band.above.Mean()) &&
                    snr.BelowMaskCount == band.below.count && Close(snr.BelowMaskMean, band.below.Mean()),
                place + ": SNR by the cut-off");
    const double n = static_cast<double>(band.above.count + band.below.count);
    proof.Check(Close(snr.Mean, n > 0 ? (band.above.sum + band.below.sum) / n : 0.0), place + ": SNR");
  }
}

void Repooled::CompareRecord(const qc_core_summary& record, bool with_iod, const std::string& name,
                             Proof& proof) const {
  proof.Check(record.expected_epochs == expected && record.observed_epochs == observed, name + ": epochs");
  proof.Check(record.slip_epochs == slip_epochs && record.jump_epochs == jump_epochs, name + ": events");
  proof.Check(record.completeness == std::min(1.0, Completeness()), name + ": completeness");
  const std::uint64_t whole = jump_epochs ? observed / jump_epochs : observed;
  proof.Check(record.obs_per_slip == static_cast<double>(whole), name + ": observations per slip");
  for (std::size_t b = 0; b < bands.size(); ++b) {
    const RepooledBand& band = bands[b];
    const std::string place = name + ", slot " + std::to_string(b + 1);
    proof.Check(Close(record.mp[b], std::sqrt(band.multipath_square.Mean())), place + ": multipath");
    proof.Check(Close(record.snr[b], band.above.Mean()), place + ": SNR");
    proof.Check(Close(record.snr_30[b][0], band.below30.Mean()), place + ": SNR below 30 degrees");
    proof.Check(Close(record.snr_30[b][1], band.above30.Mean()), place + ": SNR above 30 degrees");
    proof.Check(record.iod[b] == (with_iod ? band.iod : 0.0), place + ": ionosphere");
  }
}

}  // namespace orsolva_test

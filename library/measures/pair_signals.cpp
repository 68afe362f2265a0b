#include "measures/pair_signals.h"

#include "toolkit/constants.h"
#include "toolkit/signals.h"

namespace orsolva {

void FillMultipathConstants(PairSignals& signals) {
  const double f_a = gnssqctoolkit::kSpeedOfLight / signals.CodeWavelength;
  const double f_b = gnssqctoolkit::kSpeedOfLight / signals.PartnerWavelength;
  signals.HasMultipath =
      MpCoefficients(f_a, f_a, f_b, signals.CodeBand, signals.PartnerBand, signals.Multipath);
  signals.HasJumpThreshold = MpJumpThreshold(signals.System, signals.CodeBand, signals.JumpThreshold);
}

PairSignals MakePairSignals(const gnssqctoolkit::SatelliteId& satellite, std::uint32_t code,
                            std::uint32_t partner, const std::int32_t* glonass_channels) {
  const int system = satellite.system;
  const int a = static_cast<int>(code);
  const int b = static_cast<int>(partner);
  const bool has_channel = system == gnssqctoolkit::kGlonass && satellite.prn >= 1 && satellite.prn <= 32;
  const int channel = has_channel ? glonass_channels[satellite.prn - 1] : -999;
  PairSignals signals;
  signals.System = system;
  signals.CodeSlot = gnssqctoolkit::SignalFrequency(system, a);
  signals.CodeBand = gnssqctoolkit::SignalBand(system, a);
  signals.PartnerBand = gnssqctoolkit::SignalBand(system, b);
  signals.CodeWavelength = gnssqctoolkit::Wavelength(system, a, channel);
  signals.PartnerWavelength = gnssqctoolkit::Wavelength(system, b, channel);
  FillMultipathConstants(signals);
  return signals;
}

}  // namespace orsolva

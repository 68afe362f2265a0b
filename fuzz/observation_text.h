// Reads an observation file held in memory and checks what every host relies on.
#ifndef ORSOLVA_FUZZ_OBSERVATION_TEXT_H
#define ORSOLVA_FUZZ_OBSERVATION_TEXT_H

#include <string>

#include "fuzz/require.h"
#include "host/rinex/observation_reader.h"

namespace orsolva_fuzz {

inline void CheckEpoch(const ObsEpoch_QC_gbt& epoch) {
  Require(epoch.sat_num <= 80, "at most 80 satellites");
  Require(epoch.time.sec >= 0 && epoch.time.sec < 1, "the fraction of a second lies in [0, 1)");
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    const Satellite_gbt& satellite = epoch.sats[i];
    Require(satellite.prn >= 1 && satellite.prn <= 64, "satellite numbers fit the tables");
    Require(satellite.signal_num >= 1 && satellite.signal_num <= 8, "1 to 8 signals");
    for (std::uint32_t k = 0; k < satellite.signal_num; ++k) {
      Require(satellite.signals[k].code != 0, "every signal has a code number");
    }
  }
}

inline void ReadObservationText(std::string text) {
  const std::size_t size = text.size();
  orsolva_host::Diagnostics notices;
  try {
    orsolva_host::ObservationReader reader(orsolva_host::TextBytes(std::move(text)), "fuzzed", notices);
    ObsEpoch_QC_gbt epoch;
    std::size_t epochs = 0;
    while (reader.Next(epoch)) {
      CheckEpoch(epoch);
      ++epochs;
    }
    Require(epochs <= size, "an epoch takes bytes");
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  Require(notices.Notices().size() <= orsolva_host::Diagnostics::kMaxKinds, "notices are bounded");
}

}  // namespace orsolva_fuzz

#endif  // ORSOLVA_FUZZ_OBSERVATION_TEXT_H

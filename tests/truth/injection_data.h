// Real observation files in memory, and what is done to them before slips are injected.
#ifndef ORSOLVA_TESTS_INJECTION_DATA_H
#define ORSOLVA_TESTS_INJECTION_DATA_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/analysis/slips/slip_detector.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_truth {

struct InjectionData {
  std::string name;
  std::vector<orsolva_host::ObservationEpoch> epochs;
  orsolva_host::BroadcastRecords records;
  orsolva_host::analysis::DetectorOptions options;
};

/// @throws orsolva_host::FileError
InjectionData LoadData(const std::string& name, const std::string& observations,
                       const std::vector<std::string>& navigation);

/// Every step-th epoch, from the first on.
void Decimate(InjectionData& data, std::size_t step);

/// Keeps the first signal of a satellite's highest band, and for two bands one of another: of the bands with
/// phases in at least 80 % of the epochs the one that is "2" or "7" where there is one, else the farthest.
void LimitBands(InjectionData& data, int bands);

/// Adds a storm to phases and codes: a TEC rate with memories of 300 s (2.5 TECU/min, one sigma) and 60 s
/// (0.5), and phase scintillation of 0.12 rad at 1575.42 MHz on each carrier on its own.
/// @return "median a, 95 % b, 99.9 % c TECU/min" of the rates added
std::string AddStorm(InjectionData& data, std::uint64_t seed);

/// Hz; 0 where the GLONASS channel is not known from header or records.
double FrequencyOf(const InjectionData& data, orsolva_host::SatelliteId satellite,
                   orsolva_host::SignalCode code);

}  // namespace orsolva_truth

#endif  // ORSOLVA_TESTS_INJECTION_DATA_H

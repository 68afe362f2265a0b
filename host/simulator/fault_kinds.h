// The kinds of faults: names in scenario files and truth, units, and what they affect.
#ifndef ORSOLVA_SIMULATOR_FAULT_KINDS_H
#define ORSOLVA_SIMULATOR_FAULT_KINDS_H

#include <string>
#include <string_view>
#include <vector>

#include "host/simulator/scenario.h"

namespace orsolva_host {

/// What an occurrence at a random time draws with the time.
enum class FaultReach {
  kEverything,  ///< nothing
  kSatellite,   ///< a satellite
  kSignal,      ///< a signal of a satellite; the fault changes the values of single signals
};

struct FaultRow {
  FaultKind kind;
  const char* name;
  const char* unit;  ///< of the size; nullptr when the fault needs none
  FaultReach reach;
  bool momentary;  ///< without a duration it affects one epoch; others go on to the end of the span
};

const FaultRow& RowOf(FaultKind kind);
/// @return nullptr when no kind has that name
const FaultRow* FindFault(std::string_view name);
std::vector<std::string> FaultNames();

/// Name of a kind in scenario files and truth, such as "slip".
inline const char* FaultName(FaultKind kind) { return RowOf(kind).name; }
/// Whether a fault changes the values of single signals.
inline bool MeetsSignals(FaultKind kind) { return RowOf(kind).reach == FaultReach::kSignal; }

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FAULT_KINDS_H

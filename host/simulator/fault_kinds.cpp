#include "host/simulator/fault_kinds.h"

namespace orsolva_host {
namespace {

constexpr FaultReach kAll = FaultReach::kEverything;
constexpr FaultReach kSat = FaultReach::kSatellite;
constexpr FaultReach kSig = FaultReach::kSignal;

// In the order of FaultKind.
// clang-format off
constexpr FaultRow kFaultTable[] = {
    {FaultKind::kSlip,           "slip",            "cycles",                 kSig, true},
    {FaultKind::kCodeJump,       "code_jump",       "metres",                 kSig, false},
    {FaultKind::kOutage,         "outage",          nullptr,                  kSig, false},
    {FaultKind::kSnrDrop,        "snr_drop",        "dB",                     kSig, false},
    {FaultKind::kMissingEpoch,   "missing_epoch",   nullptr,                  kAll, true},
    {FaultKind::kDuplicate,      "duplicate_epoch", nullptr,                  kAll, true},
    {FaultKind::kLateTag,        "late_epoch",      "seconds",                kAll, true},
    {FaultKind::kLateDelivery,   "late_delivery",   nullptr,                  kAll, true},
    {FaultKind::kIonoStorm,      "iono_storm",      "TECU",                   kAll, false},
    {FaultKind::kUnhealthy,      "unhealthy",       nullptr,                  kAll, false},
    {FaultKind::kClockJump,      "clock_jump",      "milliseconds",           kAll, false},
    {FaultKind::kHeaderOffset,   "header_offset",   "metres",                 kAll, false},
    {FaultKind::kTecRate,        "tec_rate",        "TECU per minute",        kAll, false},
    {FaultKind::kScintillation,  "scintillation",   "radians",                kSig, false},
    {FaultKind::kClockSlew,      "clock_slew",      "nanoseconds per second", kAll, false},
    {FaultKind::kCodeClockJump,  "code_clock_jump", "milliseconds",           kAll, false},
    {FaultKind::kSatelliteClock, "satellite_clock", "metres",                 kSat, false},
    {FaultKind::kPowerOutage,   "power_failure",   nullptr,                  kAll, true},
};
// clang-format on

}  // namespace

const FaultRow& RowOf(FaultKind kind) { return kFaultTable[static_cast<int>(kind)]; }

const FaultRow* FindFault(std::string_view name) {
  for (const FaultRow& row : kFaultTable) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

std::vector<std::string> FaultNames() {
  std::vector<std::string> names;
  for (const FaultRow& row : kFaultTable) names.emplace_back(row.name);
  return names;
}

}  // namespace orsolva_host

#include "host/analysis/figures/transmitted_signals.h"

#include <algorithm>
#include <string_view>

namespace orsolva_host::analysis {
namespace {

bool IsOf(SignalCode code, char band, std::string_view attributes) {
  return code.band == band && attributes.find(code.attribute) != std::string_view::npos;
}

bool HasAny(const std::vector<SignalCode>& seen, char band, std::string_view attributes) {
  return std::any_of(seen.begin(), seen.end(), [&](SignalCode code) { return IsOf(code, band, attributes); });
}

bool MustTransmitGps(const std::vector<SignalCode>& seen, SignalCode code) {
  const bool has_l1c = HasAny(seen, '1', "SLX");
  const bool has_l5 = HasAny(seen, '5', "IQX");
  if (IsOf(code, '1', "CPWY") || IsOf(code, '2', "PWY")) return true;
  if (IsOf(code, '2', "SLX")) return has_l5 || has_l1c;
  return IsOf(code, '5', "IQX") && has_l1c;
}

bool MustTransmitGalileo(const std::vector<SignalCode>& seen, SignalCode code) {
  const bool has_two_bands = std::any_of(seen.begin(), seen.end(),
                                         [&](SignalCode other) { return other.band != seen.front().band; });
  const bool is_open = IsOf(code, '1', "BCX") || IsOf(code, '6', "BCX") || IsOf(code, '5', "IQX") ||
                       IsOf(code, '7', "IQX") || IsOf(code, '8', "IQX");
  return has_two_bands && is_open;
}

bool MustTransmitBds(const std::vector<SignalCode>& seen, SignalCode code) {
  if (IsOf(code, '2', "IQX") || IsOf(code, '6', "IQX")) return true;
  const bool is_third = HasAny(seen, '1', "DPX") || HasAny(seen, '5', "DPX");
  return is_third && (IsOf(code, '1', "DPX") || IsOf(code, '5', "DPX") || IsOf(code, '7', "DPZ"));
}

}  // namespace

bool MustTransmit(char system, const std::vector<SignalCode>& seen, SignalCode code) {
  if (seen.empty()) return false;
  switch (system) {
    case 'G':
      return MustTransmitGps(seen, code);
    case 'E':
      return MustTransmitGalileo(seen, code);
    case 'C':
      return MustTransmitBds(seen, code);
    default:
      return false;
  }
}

}  // namespace orsolva_host::analysis

// The satellites of a scenario: broadcast records over its span, and positions computed from them.
#ifndef ORSOLVA_SIMULATOR_SKY_H
#define ORSOLVA_SIMULATOR_SKY_H

#include <cstdint>
#include <memory>
#include <vector>

#include "host/rinex/navigation_set.h"
#include "host/simulator/scenario.h"
#include "orsolva/records.h"

namespace orsolva_host {

struct SkySatellite {
  char system = 'G';
  int number = 0;
  int channel = 0;      ///< GLONASS frequency channel
  bool healthy = true;  ///< according to at least one of its records
};

struct SkyState {
  double position_m[3] = {};  ///< Earth-fixed at the time of transmission
  double clock_s = 0;         ///< with the relativistic term
};

/// Records are rounded to the digits of a RINEX file, and positions are computed from the rounded records by
/// the rules of the interface documents, so that a reader of the records gets the same positions. Consecutive
/// records of a satellite describe one orbit and one clock.
class Sky {
 public:
  explicit Sky(const Scenario& scenario);
  ~Sky();
  Sky(Sky&&) noexcept;
  Sky& operator=(Sky&&) noexcept;

  const NavigationSet& Navigation() const;
  /// In the order in which a receiver lists them: by system as in "GREJC", then by number.
  const std::vector<SkySatellite>& Satellites() const;

  /// State of Satellites()[index] at a transmission time, from the record whose reference time is nearest
  /// to the reception time; the later one of two equally near.
  /// @param transmit_s  GPS time in seconds after the start of the scenario's span
  /// @param receive_s   likewise
  SkyState StateAt(std::size_t index, double transmit_s, double receive_s) const;

 private:
  class Stores;
  std::unique_ptr<Stores> stores_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SKY_H

// The frequency channel of a GLONASS satellite from its own observations.
#ifndef ORSOLVA_ANALYSIS_SLIPS_GLONASS_CHANNEL_H
#define ORSOLVA_ANALYSIS_SLIPS_GLONASS_CHANNEL_H

#include <optional>

namespace orsolva_host::analysis {

/// Code and phase change alike but for the wavelength: dP / dL is the wavelength, and its frequency the
/// channel. A range change of some 200 km resolves it but in a storm; a break of the phase (code and phase no
/// longer agree on any channel from one epoch to the next) begins again.
class GlonassChannel {
 public:
  explicit GlonassChannel(double enough_range_m = 2e5) : enough_range_m_(enough_range_m) {}

  /// Takes an epoch of a G1 signal, pseudorange in metres and phase in cycles.
  void Add(double pseudorange_m, double phase_cycles);
  /// -7 to 6, once it is certain.
  std::optional<int> Known() const { return channel_; }

 private:
  double enough_range_m_;
  bool started_ = false;
  double first_range_m_ = 0, first_phase_ = 0;
  double last_range_m_ = 0, last_phase_ = 0;
  std::optional<int> channel_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_GLONASS_CHANNEL_H

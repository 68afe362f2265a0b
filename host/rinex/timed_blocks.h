// The epochs and events of a file one by one, with a look at the next epoch where the time jumps ahead:
// whether one of the two times is wrong shows in the next one only.
#ifndef ORSOLVA_RINEX_TIMED_BLOCKS_H
#define ORSOLVA_RINEX_TIMED_BLOCKS_H

#include <exception>
#include <optional>

#include "host/rinex/observation_body.h"

namespace orsolva_host {

/// An epoch's time is wrong where the next epoch goes back to where the one before went on: between the two,
/// and at least five times as far from the wrong one as from the one before. The first epoch of a file is
/// wrong where the next lies more than an hour before it.
class TimedBlocks {
 public:
  /// As ObservationBody::Next. @param body  may be another one after an event
  bool Next(ObservationBody& body, const ObservationTypes& types, EpochBlock& block);
  /// Of the epoch that Next gave last.
  bool HasWrongTime() const { return wrong_; }

 private:
  bool Take(ObservationBody& body, const ObservationTypes& types, EpochBlock& block);
  bool LooksAhead(ObservationBody& body, const ObservationTypes& types);
  bool IsWrong(const EpochBlock& block) const;

  EpochBlock ahead_;
  bool has_ahead_ = false;
  std::exception_ptr failure_;  ///< of reading ahead
  std::optional<Time_gbt> last_;
  double step_s_ = 0;  ///< 0: none yet
  bool wrong_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_TIMED_BLOCKS_H

// Which epochs and signals of a source are judged. Plain data; selection_texts.h reads it from texts.
#ifndef ORSOLVA_JUDGING_EPOCH_SELECTION_H
#define ORSOLVA_JUDGING_EPOCH_SELECTION_H

#include <cstdint>
#include <optional>
#include <vector>

#include "host/observation/signal_code.h"

namespace orsolva_host {

/// A time as in ObservationEpoch::time_ns, or a time of day on the day of the first epoch.
struct TimeLimit {
  std::int64_t time_ns = 0;
  bool of_first_day = false;
};

/// A signal of a system, or all signals of a band.
struct ChosenSignal {
  char system = ' ';  ///< ' ': every system
  SignalCode code;    ///< attribute ' ': the whole band

  /// Whether the choice is about the system at all.
  bool Names(char letter) const { return system == ' ' || system == letter; }
  bool Has(char letter, SignalCode other) const {
    return Names(letter) && code.band == other.band &&
           (code.attribute == ' ' || code.attribute == other.attribute);
  }
};

/// Of a system that some choice is about, the signals chosen; of any other system, all. Empty: all signals.
using ChosenSignals = std::vector<ChosenSignal>;

bool IsChosen(const ChosenSignals& choices, char system, SignalCode code);

/// A satellite, or with number 0 a whole system.
struct ChosenSatellite {
  char system = 'G';
  int number = 0;
};

/// What a table of details is to hold. Empty lists: everything.
struct DetailSelection {
  std::vector<ChosenSatellite> satellites;
  ChosenSignals signals;

  bool IsEverything() const { return satellites.empty() && signals.empty(); }
  bool Has(char system, int number, SignalCode code) const;
};

struct EpochSelection {
  std::optional<TimeLimit> start;    ///< the first time taken
  std::optional<TimeLimit> end;      ///< the first time no longer taken: spans that follow share no epoch
  std::optional<double> sampling_s;  ///< epochs at multiples of this GPS time; see SelectedEpochs
  ChosenSignals signals;

  bool IsEverything() const { return !start && !end && !sampling_s && signals.empty(); }
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_EPOCH_SELECTION_H

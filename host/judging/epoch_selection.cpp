#include "host/judging/epoch_selection.h"

namespace orsolva_host {

bool IsChosen(const ChosenSignals& choices, char system, SignalCode code) {
  bool named = false;
  for (const ChosenSignal& choice : choices) {
    if (choice.Has(system, code)) return true;
    named = named || choice.Names(system);
  }
  return !named;
}

bool DetailSelection::Has(char system, int number, SignalCode code) const {
  bool listed = satellites.empty();
  for (const ChosenSatellite& s : satellites)
    listed = listed || (s.system == system && (s.number == 0 || s.number == number));
  return listed && IsChosen(signals, system, code);
}

}  // namespace orsolva_host

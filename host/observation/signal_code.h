// Signals as RINEX 3 and later name them: a band digit and a tracking attribute.
#ifndef ORSOLVA_OBSERVATION_SIGNAL_CODE_H
#define ORSOLVA_OBSERVATION_SIGNAL_CODE_H

#include <string>

namespace orsolva_host {

/// "1C" has the band '1' and the attribute 'C' (RINEX 4.01, tables 10 to 16). BDS B1I is always "2I", also in
/// files of RINEX 3.02, which call it "1I".
struct SignalCode {
  char band = ' ';
  char attribute = ' ';

  friend bool operator==(SignalCode a, SignalCode b) {
    return a.band == b.band && a.attribute == b.attribute;
  }
  friend bool operator!=(SignalCode a, SignalCode b) { return !(a == b); }
};

/// "1C"
inline std::string NameOf(SignalCode code) { return {code.band, code.attribute}; }

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_SIGNAL_CODE_H

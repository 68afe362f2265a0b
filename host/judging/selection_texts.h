// Selections as people write them.
#ifndef ORSOLVA_JUDGING_SELECTION_TEXTS_H
#define ORSOLVA_JUDGING_SELECTION_TEXTS_H

#include <optional>
#include <string>
#include <vector>

#include "host/judging/epoch_selection.h"

namespace orsolva_host {

// Each of the parsers returns an empty text, or what is wrong with the text given; empty texts mean no limit.

/// GPS time: "2026-01-01", "2026-01-01T06:00" or "2026-01-01 06:00:30.5", with the day of the year
/// "2026-001T06:00"; or a time of day, "06:00" or "06:00:30", on the day of the first epoch.
std::string ParseTimeLimit(const std::string& text, std::optional<TimeLimit>& limit);
/// Seconds from 0.01 to 86,400.
std::string ParseSampling(const std::string& text, std::optional<double>& sampling_s);
/// "G:1C,2W,E:1C,5Q": a letter holds for the codes that follow; codes without one are of every system. A
/// digit alone is a whole band. BDS B1I may be written 1I, as RINEX 3.02 does.
std::string ParseSignals(const std::string& text, ChosenSignals& signals);

/// "G05,R12", or letters of whole systems.
std::string ParseSatellites(const std::string& text, std::vector<ChosenSatellite>& satellites);
/// A length of time from a minute to a year: "15m", "1h", "1d"; a number alone is seconds. 0 for none.
std::string ParseWindow(const std::string& text, double& window_s);

/// "G:1C,2W,E:5Q"
std::string TextOf(const ChosenSignals& signals);

/// Why no epoch can meet a selection; empty when some may.
std::string Contradiction(const EpochSelection& selection);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SELECTION_TEXTS_H

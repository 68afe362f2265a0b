// Words and numbers as findings write them.
#ifndef ORSOLVA_REPORT_FINDING_TEXTS_H
#define ORSOLVA_REPORT_FINDING_TEXTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// "1 slip", "3 slips"
std::string Many(Count count, std::string_view one);

/// "C01, G05 and 3 more"
std::string Listed(const std::vector<std::string>& names);

/// A name and how often something happened to it.
using Tally = std::pair<std::string, Count>;

/// Those with any, the most frequent first, equal ones in their order.
std::vector<Tally> MostFirst(std::vector<Tally> tallies);
std::vector<std::string> NamesOf(const std::vector<Tally>& tallies);
/// "G05 (3), E12 (1)"
std::string Counted(const std::vector<Tally>& tallies);

std::string Metres(double value);
/// In metres, or from 10 km on in kilometres, without decimals.
std::string Distance(double metres);
std::string Percent(double ratio);
/// "30 s", "0.1 s"
std::string Seconds(double seconds);
/// "2020-06-25 00:01:30"
std::string MomentText(std::int64_t time_ns);
/// "GPS"
std::string SystemText(char letter);
/// "G 1C"
std::string NameOf(const analysis::SignalFigures& signal);

/// Adds a finding. @return it, to add figures and names to
Finding& AddFinding(std::vector<Finding>& findings, const char* id, const char* severity, std::string title,
                    std::string text);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FINDING_TEXTS_H

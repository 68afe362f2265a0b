// Named sets of limits, and how a report is held against one.
#ifndef ORSOLVA_REPORT_PROFILE_H
#define ORSOLVA_REPORT_PROFILE_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/figure_list.h"
#include "host/report/report.h"

namespace orsolva_host {

/// Limits of one figure. With `at_least` a value above the good limit is good, one from the fair limit on is
/// fair, one below it fails; else the other way round. When both limits are equal, a value at the limit is
/// good.
struct Criterion {
  std::string name;
  std::string figure;  ///< key of figures.h
  FigureScope scope = FigureScope::kSystem;
  std::string systems;               ///< letters of those it is about; empty: all
  std::vector<std::string> signals;  ///< codes or bands it is about; empty: all
  bool at_least = true;
  double good = 0;
  double fair = 0;
  std::string source;  ///< where the numbers come from
};

struct Profile {
  std::string name;
  std::string title;
  std::vector<Criterion> criteria;
};

/// A profile that cannot be used: file, line and what is wrong.
class ProfileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A profile that comes with the program.
struct BuiltInProfile {
  const char* name;
  const char* text;
};
extern const BuiltInProfile kBuiltInProfiles[];
extern const int kBuiltInProfileCount;

/// Reads the text of a profile (TOML; docs/user/report-formats.md has its keys). @param origin  for messages
/// @throws ProfileError
Profile ParseProfile(std::string_view text, const std::string& origin);

/// The built-in profile of a name, or the one in a file of that name.
/// @throws ProfileError
Profile LoadProfile(const std::string& name_or_file);

/// Holds every figure that the criteria are about against their limits. A criterion that finds no figure has
/// one outcome "no data", and so has one about systems for each that was observed and has no orbits. Outcomes
/// "no data" fail the verdict only when nothing at all could be judged, or less than half of the satellites.
ProfileVerdict Judge(const Report& report, const Profile& profile);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_PROFILE_H

// Writes broadcast records as a RINEX 3.05 navigation file.
#ifndef ORSOLVA_SIMULATOR_NAVIGATION_WRITER_H
#define ORSOLVA_SIMULATOR_NAVIGATION_WRITER_H

#include <string>

#include "host/rinex/navigation_set.h"

namespace orsolva_host {

/// The whole text of the file.
std::string NavigationText(const NavigationSet& set, int leap_seconds);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_NAVIGATION_WRITER_H

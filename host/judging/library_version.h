// The version of the library as reports name it.
#ifndef ORSOLVA_JUDGING_LIBRARY_VERSION_H
#define ORSOLVA_JUDGING_LIBRARY_VERSION_H

#include "orsolva/version.h"

namespace orsolva_host {

/// The library is linked into the program: the version of its headers is its own.
inline constexpr char kLibraryVersion[] = "V" ORSOLVA_VERSION_STRING;

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_LIBRARY_VERSION_H

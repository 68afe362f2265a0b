#include "interface/version_banner.h"

#include <cstring>

#include "orsolva/version.h"

namespace orsolva {

namespace {

void Append(char* text, const char* label, const char* value) {
  std::strcat(text, label);
  std::strcat(text, value);
}

}  // namespace

// Date and time come from the build system (SOURCE_DATE_EPOCH, the commit or the release), never from the
// clock: two builds of one source have the same bytes.
QCVersion::QCVersion() {
  std::strcpy(LibName, "libOrsolva_cbb");
  std::strcpy(LibVersion, "V" ORSOLVA_VERSION_STRING);
  std::strcpy(SourceRevision, "4664");
  std::strcpy(BuildDate, ORSOLVA_BUILD_DATE);
  std::strcpy(BuildTime, ORSOLVA_BUILD_TIME);
  Append(Text, "library    name: ", LibName);
  Append(Text, "\nlibrary version: ", LibVersion);
  Append(Text, "\nSVN     version: ", SourceRevision);
  Append(Text, "\nbuild      date: ", BuildDate);
  Append(Text, " ", BuildTime);
}

}  // namespace orsolva

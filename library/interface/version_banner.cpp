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

// The compiler's date and time honour SOURCE_DATE_EPOCH, so that builds can be made reproducible.
QCVersion::QCVersion() {
  std::strcpy(LibName, "libOrsolva_cbb");
  std::strcpy(LibVersion, "V" ORSOLVA_VERSION_STRING);
  std::strcpy(SourceRevision, "4664");
  std::strcpy(BuildDate, __DATE__);
  std::strcpy(BuildTime, __TIME__);
  Append(Text, "library    name: ", LibName);
  Append(Text, "\nlibrary version: ", LibVersion);
  Append(Text, "\nSVN     version: ", SourceRevision);
  Append(Text, "\nbuild      date: ", BuildDate);
  Append(Text, " ", BuildTime);
}

}  // namespace orsolva

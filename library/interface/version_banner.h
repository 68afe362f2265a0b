// The identification text of the library.
#ifndef ORSOLVA_INTERFACE_VERSION_BANNER_H
#define ORSOLVA_INTERFACE_VERSION_BANNER_H

namespace orsolva {

class QCVersion {
 public:
  QCVersion();
  virtual ~QCVersion() = default;

  char LibName[32] = {};
  char LibVersion[32] = {};
  char SourceRevision[32] = {};
  char BuildDate[32] = {};  ///< "Jun  6 2024"
  char BuildTime[32] = {};  ///< "11:19:23"
  char Text[256] = {};      ///< the banner, without a line feed at its end
};

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_VERSION_BANNER_H

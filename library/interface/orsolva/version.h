/* The version of these headers. The build takes the version of the project from here; what a loaded library
 * is says GetGNSSQCLibVersion (gnssqc.h) or orsolva_version (orsolva_c.h). For C and C++. */
#ifndef ORSOLVA_INTERFACE_VERSION_H
#define ORSOLVA_INTERFACE_VERSION_H

#define ORSOLVA_VERSION_MAJOR 1
#define ORSOLVA_VERSION_MINOR 2
#define ORSOLVA_VERSION_PATCH 9

/** Grows with the version: 10209 for 1.2.9. */
#define ORSOLVA_VERSION_NUMBER \
  (ORSOLVA_VERSION_MAJOR * 10000 + ORSOLVA_VERSION_MINOR * 100 + ORSOLVA_VERSION_PATCH)

#define ORSOLVA_QUOTE_(x) #x
#define ORSOLVA_QUOTE(x) ORSOLVA_QUOTE_(x)
/** "1.2.9" */
#define ORSOLVA_VERSION_STRING         \
  ORSOLVA_QUOTE(ORSOLVA_VERSION_MAJOR) \
  "." ORSOLVA_QUOTE(ORSOLVA_VERSION_MINOR) "." ORSOLVA_QUOTE(ORSOLVA_VERSION_PATCH)

#endif /* ORSOLVA_INTERFACE_VERSION_H */

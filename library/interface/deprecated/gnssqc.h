// Deprecated: the name of <orsolva/gnssqc.h> before it got a folder of its own. Goes with the next minor
// version.
#ifndef ORSOLVA_INTERFACE_DEPRECATED_GNSSQC_H
#define ORSOLVA_INTERFACE_DEPRECATED_GNSSQC_H

#pragma message("<gnssqc.h> is deprecated: include <orsolva/gnssqc.h>")
#include <orsolva/gnssqc.h>

#endif  // ORSOLVA_INTERFACE_DEPRECATED_GNSSQC_H

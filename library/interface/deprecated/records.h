// Deprecated: the name of <orsolva/records.h> before it got a folder of its own. Goes with the next minor
// version.
#ifndef ORSOLVA_INTERFACE_DEPRECATED_RECORDS_H
#define ORSOLVA_INTERFACE_DEPRECATED_RECORDS_H

#pragma message("<records.h> is deprecated: include <orsolva/records.h>")
#include <orsolva/records.h>

#endif  // ORSOLVA_INTERFACE_DEPRECATED_RECORDS_H

// Figures of the library, and what the broadcast records cover, as tables.
#ifndef ORSOLVA_PYTHON_LIBRARY_TABLES_H
#define ORSOLVA_PYTHON_LIBRARY_TABLES_H

#include <vector>

#include "python/src/report_tables.h"

namespace orsolva_python {

std::vector<ReportTable> LibraryTables();

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_LIBRARY_TABLES_H

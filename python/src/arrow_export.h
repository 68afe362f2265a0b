// A table as an Arrow stream.
#ifndef ORSOLVA_PYTHON_ARROW_EXPORT_H
#define ORSOLVA_PYTHON_ARROW_EXPORT_H

#include <memory>

#include "python/src/arrow_interface.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// The table as a stream of one batch. Nothing is copied but flags of a bit each; the batch keeps the columns
/// that it needs alive. @param out  is released by its consumer
void ExportStream(std::shared_ptr<const Table> table, ArrowArrayStream& out);

/// Only the types. @param out  is released by its consumer
void ExportSchema(const Table& table, ArrowSchema& out);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_ARROW_EXPORT_H

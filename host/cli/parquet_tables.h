// The tables of reports as Parquet files, which the Python package writes: it has the tables, and pyarrow the
// format.
#ifndef ORSOLVA_CLI_PARQUET_TABLES_H
#define ORSOLVA_CLI_PARQUET_TABLES_H

#include <string>

#include "host/cli/request.h"
#include "host/judging/inputs.h"

namespace orsolva_host {

/// What python/orsolva/_parquet.py reads from its standard input: inputs, the options as they were given, and
/// where the tables go. @throws RunError for a name that is no UTF-8
std::string ParquetTask(const QcRequest& request, const RunInputs& inputs);

/// Judges the inputs once more, in Python, and writes the tables of each into a folder of its own below
/// request.parquet. Python is that in the folder of the program, as in a virtual environment; else that of
/// the path; or what the environment variable ORSOLVA_PYTHON names.
/// @return the exit code of the run
/// @throws RunError that says what to install where a package is missing
int WriteParquet(const QcRequest& request, const RunInputs& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_PARQUET_TABLES_H

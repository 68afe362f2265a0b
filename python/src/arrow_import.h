// Columns of an Arrow stream that somebody else made, copied into vectors.
#ifndef ORSOLVA_PYTHON_ARROW_IMPORT_H
#define ORSOLVA_PYTHON_ARROW_IMPORT_H

#include <nanobind/nanobind.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "python/src/arrow_interface.h"
#include "python/src/pushed_epochs.h"

namespace orsolva_python {

/// A batch of rows. What is null is NaN, or for flags 0; a null time or name is an error.
class ArrowBatch {
 public:
  ArrowBatch(const ArrowSchema& schema, ArrowArray array);
  ArrowBatch(ArrowBatch&& other) noexcept;
  ArrowBatch& operator=(ArrowBatch&&) = delete;
  ~ArrowBatch();

  // Each throws ArgumentError when the column is of another type; of the last two an absent column is empty.

  std::vector<std::int64_t> Times(const std::string& name) const;
  NamesOfRows Names(const std::string& name) const;
  std::vector<double> Reals(const std::string& name) const;
  std::vector<std::uint8_t> Flags(const std::string& name) const;

 private:
  struct Found {
    const ArrowSchema* schema;
    const ArrowArray* array;
    std::int64_t offset;  ///< of the first row, that of the batch included
  };
  std::optional<Found> Find(const std::string& name) const;
  Found Required(const std::string& name) const;

  const ArrowSchema& schema_;
  ArrowArray array_;
};

class ArrowReader {
 public:
  /// @param stream  a capsule "arrow_array_stream", which is emptied
  /// @throws ArgumentError when it is none, or its rows have no named columns
  explicit ArrowReader(const nanobind::object& stream);
  ~ArrowReader();
  ArrowReader(const ArrowReader&) = delete;
  ArrowReader& operator=(const ArrowReader&) = delete;

  /// The next batch; it must not outlive the reader. @throws RunError when the stream fails
  std::optional<ArrowBatch> Next();

 private:
  nanobind::object capsule_;
  ArrowArrayStream* stream_;
  ArrowSchema schema_ = {};
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_ARROW_IMPORT_H

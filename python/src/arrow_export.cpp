#include "python/src/arrow_export.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace orsolva_python {
namespace {

/// What a schema owns. Children and dictionary are released by it unless a consumer has moved them out.
struct SchemaParts {
  std::string format, name, metadata;
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;
  ArrowSchema dictionary = {};
};

struct ArrayParts {
  std::shared_ptr<const Column> column;
  std::vector<std::uint8_t> bits;  // of kYesNo
  std::array<const void*, 3> buffers = {};
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> pointers;
  ArrowArray dictionary = {};
};

template <typename Structure>
void ReleaseIfOwned(Structure& structure) {
  if (structure.release != nullptr) structure.release(&structure);
}

template <typename Structure, typename Parts>
void Release(Structure* structure) {
  std::unique_ptr<Parts> parts(static_cast<Parts*>(structure->private_data));
  for (Structure& child : parts->children) ReleaseIfOwned(child);
  ReleaseIfOwned(parts->dictionary);
  structure->release = nullptr;
}

const char* FormatOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kReal:
      return "g";
    case ColumnKind::kWhole:
      return "l";
    case ColumnKind::kFlags:
      return "C";
    case ColumnKind::kYesNo:
      return "b";
    case ColumnKind::kTime:
      return "tsn:";
    case ColumnKind::kText:
      return "u";
    case ColumnKind::kName:
      return "i";
    case ColumnKind::kTexts:
    case ColumnKind::kReals:
      return "+l";
  }
  return "n";
}

void AppendNumber(std::string& text, std::size_t value) {
  const auto number = static_cast<std::int32_t>(value);
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  text.append(bytes, sizeof number);
}

/// One key and its value in the layout of the specification.
std::string Metadata(const std::string& key, const std::string& value) {
  std::string text;
  AppendNumber(text, 1);
  AppendNumber(text, key.size());
  text += key;
  AppendNumber(text, value.size());
  return text + value;
}

void FillSchema(ArrowSchema& out, std::unique_ptr<SchemaParts> parts, bool has_dictionary) {
  for (ArrowSchema& child : parts->children) parts->pointers.push_back(&child);
  SchemaParts* const raw = parts.release();
  out = {raw->format.c_str(),
         raw->name.c_str(),
         raw->metadata.empty() ? nullptr : raw->metadata.data(),
         kArrowNullable,
         static_cast<std::int64_t>(raw->children.size()),
         raw->pointers.empty() ? nullptr : raw->pointers.data(),
         has_dictionary ? &raw->dictionary : nullptr,
         Release<ArrowSchema, SchemaParts>,
         raw};
}

void ExportColumnSchema(const Column& column, ArrowSchema& out) {
  auto parts = std::make_unique<SchemaParts>();
  parts->format = FormatOf(column.Kind());
  parts->name = column.Name();
  if (column.Kind() == ColumnKind::kTime) parts->metadata = Metadata("time_scale", "GPST");
  const bool is_name = column.Kind() == ColumnKind::kName;
  if (is_name) {
    ExportColumnSchema(*column.Child(), parts->dictionary);
  } else if (column.Child()) {
    parts->children.resize(1);
    ExportColumnSchema(*column.Child(), parts->children.front());
  }
  FillSchema(out, std::move(parts), is_name);
}

std::vector<std::uint8_t> Bits(const std::vector<std::uint8_t>& bytes) {
  std::vector<std::uint8_t> bits(bytes.size() / 8 + 1);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != 0) bits[i / 8] = static_cast<std::uint8_t>(bits[i / 8] | 1U << (i % 8));
  }
  return bits;
}

/// Buffers after that of the nulls. @return how many
std::int64_t SetBuffers(const Column& column, ArrayParts& parts) {
  switch (column.Kind()) {
    case ColumnKind::kReal:
      parts.buffers[1] = column.Reals().data();
      return 1;
    case ColumnKind::kWhole:
    case ColumnKind::kTime:
      parts.buffers[1] = column.Wholes().data();
      return 1;
    case ColumnKind::kFlags:
      parts.buffers[1] = column.Bytes().data();
      return 1;
    case ColumnKind::kYesNo:
      parts.bits = Bits(column.Bytes());
      parts.buffers[1] = parts.bits.data();
      return 1;
    case ColumnKind::kName:
      parts.buffers[1] = column.Places().data();
      return 1;
    case ColumnKind::kText:
      parts.buffers[1] = column.Offsets().data();
      parts.buffers[2] = column.Text().data();
      return 2;
    case ColumnKind::kTexts:
    case ColumnKind::kReals:
      parts.buffers[1] = column.Offsets().data();
      return 1;
  }
  return 0;
}

void FillArray(ArrowArray& out, std::unique_ptr<ArrayParts> parts, std::size_t rows, std::size_t nulls,
               std::int64_t buffers, bool has_dictionary) {
  for (ArrowArray& child : parts->children) parts->pointers.push_back(&child);
  ArrayParts* const raw = parts.release();
  out = {static_cast<std::int64_t>(rows),
         static_cast<std::int64_t>(nulls),
         0,
         buffers,
         static_cast<std::int64_t>(raw->children.size()),
         raw->buffers.data(),
         raw->pointers.empty() ? nullptr : raw->pointers.data(),
         has_dictionary ? &raw->dictionary : nullptr,
         Release<ArrowArray, ArrayParts>,
         raw};
}

void ExportColumn(const std::shared_ptr<const Column>& column, ArrowArray& out) {
  auto parts = std::make_unique<ArrayParts>();
  parts->column = column;
  parts->buffers[0] = column->Nulls() > 0 ? column->ValidBits().data() : nullptr;
  const std::int64_t buffers = 1 + SetBuffers(*column, *parts);
  const bool is_name = column->Kind() == ColumnKind::kName;
  if (is_name) {
    ExportColumn(column->Child(), parts->dictionary);
  } else if (column->Child()) {
    parts->children.resize(1);
    ExportColumn(column->Child(), parts->children.front());
  }
  FillArray(out, std::move(parts), column->Rows(), column->Nulls(), buffers, is_name);
}

struct StreamParts {
  std::shared_ptr<const Table> table;
  bool done = false;
};

void ExportBatch(const Table& table, ArrowArray& out) {
  auto parts = std::make_unique<ArrayParts>();
  parts->children.resize(table.columns.size());
  for (std::size_t i = 0; i < table.columns.size(); ++i) ExportColumn(table.columns[i], parts->children[i]);
  FillArray(out, std::move(parts), table.Rows(), 0, 1, false);
}

int GetSchema(ArrowArrayStream* stream, ArrowSchema* out) {
  try {
    ExportSchema(*static_cast<StreamParts*>(stream->private_data)->table, *out);
    return 0;
  } catch (...) {
    return ENOMEM;
  }
}

int GetNext(ArrowArrayStream* stream, ArrowArray* out) {
  auto* const parts = static_cast<StreamParts*>(stream->private_data);
  *out = {};
  if (std::exchange(parts->done, true)) return 0;
  try {
    ExportBatch(*parts->table, *out);
    return 0;
  } catch (...) {
    return ENOMEM;
  }
}

const char* GetLastError(ArrowArrayStream*) { return nullptr; }

void ReleaseStream(ArrowArrayStream* stream) {
  delete static_cast<StreamParts*>(stream->private_data);
  stream->release = nullptr;
}

}  // namespace

void ExportSchema(const Table& table, ArrowSchema& out) {
  auto parts = std::make_unique<SchemaParts>();
  parts->format = "+s";
  parts->children.resize(table.columns.size());
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    ExportColumnSchema(*table.columns[i], parts->children[i]);
  FillSchema(out, std::move(parts), false);
}

void ExportStream(std::shared_ptr<const Table> table, ArrowArrayStream& out) {
  out = {GetSchema, GetNext, GetLastError, ReleaseStream, new StreamParts{std::move(table), false}};
}

}  // namespace orsolva_python

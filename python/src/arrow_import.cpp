#include "python/src/arrow_import.h"

#include <fmt/format.h>

#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "host/judging/run_error.h"
#include "python/src/errors.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool IsValid(const ArrowArray& array, std::int64_t row) {
  if (array.null_count == 0 || array.n_buffers < 1 || array.buffers[0] == nullptr) return true;
  const auto* bits = static_cast<const std::uint8_t*>(array.buffers[0]);
  return (bits[row / 8] >> (row % 8) & 1) != 0;
}

template <typename Number>
double As(const void* data, std::int64_t row) {
  return static_cast<double>(static_cast<const Number*>(data)[row]);
}

using Getter = double (*)(const void* data, std::int64_t row);

/// How a number of a format is read; null when the format is none of a number.
Getter NumberGetter(std::string_view format) {
  if (format.size() != 1) return nullptr;
  switch (format[0]) {
    case 'c':
      return As<std::int8_t>;
    case 'C':
      return As<std::uint8_t>;
    case 's':
      return As<std::int16_t>;
    case 'S':
      return As<std::uint16_t>;
    case 'i':
      return As<std::int32_t>;
    case 'I':
      return As<std::uint32_t>;
    case 'l':
      return As<std::int64_t>;
    case 'L':
      return As<std::uint64_t>;
    case 'f':
      return As<float>;
    case 'g':
      return As<double>;
    default:
      return nullptr;
  }
}

/// Nanoseconds of the unit of a timestamp; 0 when the format is none, or one with a time zone: those are in
/// UTC, which leap seconds part from GPS time.
std::int64_t UnitOf(std::string_view format) {
  if (format.size() != 4 || format.substr(0, 2) != "ts" || format[3] != ':') return 0;
  switch (format[2]) {
    case 's':
      return 1'000'000'000;
    case 'm':
      return 1'000'000;
    case 'u':
      return 1'000;
    case 'n':
      return 1;
    default:
      return 0;
  }
}

template <typename Offset>
std::string_view TextBetween(const ArrowArray& array, std::int64_t row) {
  const auto* offsets = static_cast<const Offset*>(array.buffers[1]);
  const auto* text = static_cast<const char*>(array.buffers[2]);
  if (offsets[row + 1] < offsets[row] || offsets[row] < 0)
    throw ArgumentError("an Arrow column has wrong offsets");
  return {text + offsets[row], static_cast<std::size_t>(offsets[row + 1] - offsets[row])};
}

/// A text of the layout "view": its length, then up to 12 bytes, or a prefix, a buffer and an offset.
std::string_view TextOfView(const ArrowArray& array, std::int64_t row) {
  constexpr std::size_t kViewSize = 16;
  constexpr std::int32_t kInline = 12;
  const auto* view = static_cast<const char*>(array.buffers[1]) + static_cast<std::size_t>(row) * kViewSize;
  std::int32_t numbers[4];
  std::memcpy(numbers, view, sizeof numbers);
  const auto size = static_cast<std::size_t>(numbers[0]);
  if (numbers[0] <= kInline) return {view + sizeof(std::int32_t), size};
  // Buffers: nulls, views, the texts, and last their sizes.
  const auto* sizes = static_cast<const std::int64_t*>(array.buffers[array.n_buffers - 1]);
  const std::int64_t texts = array.n_buffers - 3;
  const bool inside = numbers[2] >= 0 && numbers[2] < texts && numbers[3] >= 0 &&
                      numbers[3] + numbers[0] <= sizes[numbers[2]];
  if (!inside) throw ArgumentError("an Arrow column has wrong offsets");
  return {static_cast<const char*>(array.buffers[2 + numbers[2]]) + numbers[3], size};
}

using TextGetter = std::string_view (*)(const ArrowArray& array, std::int64_t row);

TextGetter TextGetterOf(std::string_view format) {
  if (format == "u") return TextBetween<std::int32_t>;
  if (format == "U") return TextBetween<std::int64_t>;
  return format == "vu" ? TextOfView : nullptr;
}

[[noreturn]] void Refuse(const std::string& name, const char* format, const char* expected) {
  throw ArgumentError(
      fmt::format("{}: found an Arrow column of format '{}', expected {}", name, format, expected));
}

/// Words of a column as they come, each once.
class Words {
 public:
  std::int32_t PlaceOf(std::string_view word) {
    const auto [entry, is_new] =
        places_.try_emplace(std::string(word), static_cast<std::int32_t>(names.words.size()));
    if (is_new) names.words.push_back(entry->first);
    return entry->second;
  }
  NamesOfRows names;

 private:
  std::unordered_map<std::string, std::int32_t> places_;
};

}  // namespace

ArrowBatch::ArrowBatch(const ArrowSchema& schema, ArrowArray array) : schema_(schema), array_(array) {}

ArrowBatch::ArrowBatch(ArrowBatch&& other) noexcept
    : schema_(other.schema_), array_(std::exchange(other.array_, ArrowArray{})) {}

ArrowBatch::~ArrowBatch() {
  if (array_.release != nullptr) array_.release(&array_);
}

std::optional<ArrowBatch::Found> ArrowBatch::Find(const std::string& name) const {
  for (std::int64_t i = 0; i < schema_.n_children; ++i) {
    const ArrowSchema& child = *schema_.children[i];
    if (child.name == nullptr || name != child.name) continue;
    const ArrowArray& array = *array_.children[i];
    if (array.length < array_.offset + array_.length)
      throw ArgumentError(name + ": the Arrow column is too short");
    return Found{&child, &array, array.offset + array_.offset};
  }
  return std::nullopt;
}

ArrowBatch::Found ArrowBatch::Required(const std::string& name) const {
  if (const std::optional<Found> found = Find(name)) return *found;
  throw ArgumentError("the table has no column '" + name + "'");
}

std::vector<std::int64_t> ArrowBatch::Times(const std::string& name) const {
  const Found found = Required(name);
  const std::int64_t unit = UnitOf(found.schema->format);
  if (unit == 0) Refuse(name, found.schema->format, "a timestamp on the GPS time scale, without a time zone");
  constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
  const auto* data = static_cast<const std::int64_t*>(found.array->buffers[1]);
  std::vector<std::int64_t> times;
  times.reserve(static_cast<std::size_t>(array_.length));
  for (std::int64_t row = found.offset; row < found.offset + array_.length; ++row) {
    if (!IsValid(*found.array, row))
      throw ArgumentError(fmt::format("{}: row {} is null", name, row - found.offset));
    if (data[row] > kLargest / unit || data[row] < -(kLargest / unit))
      throw ArgumentError(
          fmt::format("{}: row {} is not within the years 1678 to 2261", name, row - found.offset));
    times.push_back(data[row] * unit);
  }
  return times;
}

NamesOfRows ArrowBatch::Names(const std::string& name) const {
  const Found found = Required(name);
  const bool encoded = found.schema->dictionary != nullptr;
  const ArrowArray& texts = encoded ? *found.array->dictionary : *found.array;
  const char* const format = encoded ? found.schema->dictionary->format : found.schema->format;
  const TextGetter text = TextGetterOf(format);
  const Getter index = NumberGetter(found.schema->format);
  if (text == nullptr || (encoded && index == nullptr)) Refuse(name, format, "texts");
  Words words;
  for (std::int64_t row = found.offset; row < found.offset + array_.length; ++row) {
    if (!IsValid(*found.array, row))
      throw ArgumentError(fmt::format("{}: row {} is null", name, row - found.offset));
    std::int64_t place = row;
    if (encoded) {
      const double at = index(found.array->buffers[1], row);
      if (!(at >= 0 && at < static_cast<double>(texts.length)))
        throw ArgumentError(name + ": an index is outside of its dictionary");
      place = texts.offset + static_cast<std::int64_t>(at);
    }
    words.names.places.push_back(words.PlaceOf(text(texts, place)));
  }
  return std::move(words.names);
}

std::vector<double> ArrowBatch::Reals(const std::string& name) const {
  const std::optional<Found> found = Find(name);
  if (!found) return {};
  const Getter number = found->schema->dictionary == nullptr ? NumberGetter(found->schema->format) : nullptr;
  if (number == nullptr) Refuse(name, found->schema->format, "numbers");
  std::vector<double> reals;
  reals.reserve(static_cast<std::size_t>(array_.length));
  for (std::int64_t row = found->offset; row < found->offset + array_.length; ++row)
    reals.push_back(IsValid(*found->array, row) ? number(found->array->buffers[1], row) : kNaN);
  return reals;
}

std::vector<std::uint8_t> ArrowBatch::Flags(const std::string& name) const {
  constexpr double kMaxFlags = 255;
  std::vector<std::uint8_t> flags;
  for (const double value : Reals(name)) {
    if (value < 0 || value > kMaxFlags) throw ArgumentError(name + ": expected flags from 0 to 255");
    flags.push_back(value == value ? static_cast<std::uint8_t>(value) : std::uint8_t{0});
  }
  return flags;
}

ArrowReader::ArrowReader(const nb::object& stream)
    : capsule_(stream),
      stream_(static_cast<ArrowArrayStream*>(PyCapsule_GetPointer(stream.ptr(), "arrow_array_stream"))) {
  if (stream_ == nullptr) {
    PyErr_Clear();
    throw ArgumentError("the table gives no Arrow stream");
  }
  if (stream_->release == nullptr) throw ArgumentError("the Arrow stream was used before");
  if (stream_->get_schema(stream_, &schema_) != 0)
    throw orsolva_host::RunError("the Arrow stream has no schema.");
  if (std::string_view(schema_.format) == "+s") return;
  schema_.release(&schema_);
  throw ArgumentError("the Arrow stream has no named columns");
}

ArrowReader::~ArrowReader() {
  if (schema_.release != nullptr) schema_.release(&schema_);
}

std::optional<ArrowBatch> ArrowReader::Next() {
  ArrowArray array = {};
  if (stream_->get_next(stream_, &array) != 0) {
    const char* const why = stream_->get_last_error(stream_);
    throw orsolva_host::RunError(std::string("the Arrow stream failed: ") +
                                 (why != nullptr ? why : "no reason given"));
  }
  if (array.release == nullptr) return std::nullopt;
  return ArrowBatch(schema_, array);
}

}  // namespace orsolva_python

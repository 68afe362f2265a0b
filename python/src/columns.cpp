#include "python/src/columns.h"

#include <limits>
#include <stdexcept>

namespace orsolva_python {
namespace {

/// Offsets of the layout are 32 bits wide.
std::int32_t Offset(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw std::length_error("a column of texts or lists has more than 2 GB");
  }
  return static_cast<std::int32_t>(size);
}

}  // namespace

Column::Column(std::string name, ColumnKind kind) : name_(std::move(name)), kind_(kind) {
  if (kind == ColumnKind::kText || kind == ColumnKind::kTexts || kind == ColumnKind::kReals) {
    offsets_.push_back(0);
  }
  if (kind == ColumnKind::kName || kind == ColumnKind::kTexts) {
    child_ = std::make_shared<Column>("item", ColumnKind::kText);
  }
  if (kind == ColumnKind::kReals) child_ = std::make_shared<Column>("item", ColumnKind::kReal);
}

void Column::AddWhole(std::optional<double> value) {
  wholes_.push_back(value ? static_cast<std::int64_t>(*value) : 0);
  AddValid(value.has_value());
}

void Column::AddYesNo(std::optional<bool> value) {
  bytes_.push_back(value.value_or(false) ? 1 : 0);
  AddValid(value.has_value());
}

void Column::AddTime(std::optional<std::int64_t> time_ns) {
  // What NumPy calls NaT.
  wholes_.push_back(time_ns.value_or(std::numeric_limits<std::int64_t>::min()));
  AddValid(time_ns.has_value());
}

void Column::AddText(const std::string* value) {
  if (kind_ == ColumnKind::kName) {
    places_.push_back(value != nullptr ? WordPlace(*value) : 0);
  } else {
    if (value != nullptr) text_ += *value;
    offsets_.push_back(Offset(text_.size()));
  }
  AddValid(value != nullptr);
}

void Column::AddTexts(const std::vector<std::string>& values) {
  for (const std::string& value : values) child_->AddText(value);
  offsets_.push_back(Offset(child_->Rows()));
  AddValid(true);
}

void Column::AddReals(const std::vector<double>& values) {
  for (const double value : values) child_->AddReal(value);
  offsets_.push_back(Offset(child_->Rows()));
  AddValid(true);
}

std::int32_t Column::WordPlace(const std::string& word) {
  const auto [entry, is_new] = places_of_words_.try_emplace(word, Offset(child_->Rows()));
  if (is_new) child_->AddText(word);
  return entry->second;
}

void Column::Reserve(std::size_t rows) {
  valid_.reserve(rows / 8 + 1);
  if (kind_ == ColumnKind::kReal) reals_.reserve(rows);
  if (kind_ == ColumnKind::kWhole || kind_ == ColumnKind::kTime) wholes_.reserve(rows);
  if (kind_ == ColumnKind::kFlags || kind_ == ColumnKind::kYesNo) bytes_.reserve(rows);
  if (kind_ == ColumnKind::kName) places_.reserve(rows);
}

std::string_view Column::TextAt(std::size_t row) const {
  if (kind_ == ColumnKind::kName) return child_->TextAt(static_cast<std::size_t>(places_[row]));
  const auto begin = static_cast<std::size_t>(offsets_[row]);
  return std::string_view(text_).substr(begin, static_cast<std::size_t>(offsets_[row + 1]) - begin);
}

}  // namespace orsolva_python

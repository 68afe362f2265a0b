// Columns of a table in the layout of the Arrow columnar format, so that other libraries take them as they
// are.
#ifndef ORSOLVA_PYTHON_COLUMNS_H
#define ORSOLVA_PYTHON_COLUMNS_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orsolva_python {

enum class ColumnKind {
  kReal,   ///< double; NaN is null
  kWhole,  ///< 64-bit integer
  kFlags,  ///< 8-bit unsigned integer
  kYesNo,
  kTime,  ///< nanoseconds since 1970-01-01 on the GPS time scale
  kText,
  kName,   ///< a text out of few: dictionary with 32-bit indices
  kTexts,  ///< list of texts
  kReals,  ///< list of doubles
};

/// One column. Which vectors are in use depends on the kind.
class Column {
 public:
  Column(std::string name, ColumnKind kind);

  const std::string& Name() const { return name_; }
  ColumnKind Kind() const { return kind_; }
  std::size_t Rows() const { return rows_; }
  std::size_t Nulls() const { return nulls_; }

  void AddReal(double value) {
    reals_.push_back(value);
    AddValid(!std::isnan(value));
  }
  void AddWhole(std::int64_t value) {
    wholes_.push_back(value);
    AddValid(true);
  }
  void AddWhole(std::optional<double> value);
  void AddFlags(std::uint8_t value) {
    bytes_.push_back(value);
    AddValid(true);
  }
  void AddYesNo(std::optional<bool> value);
  void AddTime(std::optional<std::int64_t> time_ns);
  /// Of kText and kName. @param value  null when absent
  void AddText(const std::string* value);
  void AddText(const std::string& value) { AddText(&value); }
  /// An empty text is absent.
  void AddTextOrNull(const std::string& value) { AddText(value.empty() ? nullptr : &value); }
  void AddTexts(const std::vector<std::string>& values);
  void AddReals(const std::vector<double>& values);
  /// Of kName: a word by the place that WordPlace gave it.
  void AddWord(std::int32_t place) {
    places_.push_back(place);
    AddValid(true);
  }
  std::int32_t WordPlace(const std::string& word);
  void Reserve(std::size_t rows);

  const std::vector<double>& Reals() const { return reals_; }
  const std::vector<std::int64_t>& Wholes() const { return wholes_; }
  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }
  const std::vector<std::int32_t>& Places() const { return places_; }
  const std::vector<std::int32_t>& Offsets() const { return offsets_; }
  const std::string& Text() const { return text_; }
  /// The words of kName, the texts of the lists of kTexts, the values of those of kReals.
  const std::shared_ptr<Column>& Child() const { return child_; }
  /// A bit per row, lowest first; meaningful where Nulls() is not 0.
  const std::vector<std::uint8_t>& ValidBits() const { return valid_; }

  std::string_view TextAt(std::size_t row) const;
  bool IsValid(std::size_t row) const { return (valid_[row / 8] >> (row % 8) & 1) != 0; }

 private:
  void AddValid(bool valid) {
    if (rows_ % 8 == 0) valid_.push_back(0);
    if (valid) {
      valid_.back() = static_cast<std::uint8_t>(valid_.back() | 1U << (rows_ % 8));
    } else {
      ++nulls_;
    }
    ++rows_;
  }

  std::string name_;
  ColumnKind kind_;
  std::vector<double> reals_;
  std::vector<std::int64_t> wholes_;
  std::vector<std::uint8_t> bytes_;
  std::vector<std::int32_t> places_;
  std::vector<std::int32_t> offsets_;
  std::string text_;
  std::shared_ptr<Column> child_;
  std::unordered_map<std::string, std::int32_t> places_of_words_;
  std::vector<std::uint8_t> valid_;
  std::size_t rows_ = 0;
  std::size_t nulls_ = 0;
};

/// Columns of equal length. A table that has been handed out does not change any more.
struct Table {
  std::vector<std::shared_ptr<Column>> columns;

  Column& Add(std::string name, ColumnKind kind) {
    columns.push_back(std::make_shared<Column>(std::move(name), kind));
    return *columns.back();
  }
  std::size_t Rows() const { return columns.empty() ? 0 : columns.front()->Rows(); }
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_COLUMNS_H

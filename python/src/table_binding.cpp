#include "python/src/table_binding.h"

#include <nanobind/ndarray.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrow_export.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;

using Owner = std::shared_ptr<const Column>;

/// A read-only view of numbers that keeps their column alive.
template <typename Number>
nb::object View(const std::vector<Number>& numbers, const Owner& owner) {
  static const Number kNone{};
  auto kept = std::make_unique<Owner>(owner);
  const nb::capsule keeper(kept.get(), [](void* pointer) noexcept { delete static_cast<Owner*>(pointer); });
  kept.release();
  const Number* const data = numbers.empty() ? &kNone : numbers.data();
  return nb::cast(nb::ndarray<nb::numpy, const Number, nb::ndim<1>>(data, {numbers.size()}, keeper),
                  nb::rv_policy::automatic);
}

const char* NameOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kReal:
      return "real";
    case ColumnKind::kWhole:
      return "whole";
    case ColumnKind::kFlags:
      return "flags";
    case ColumnKind::kYesNo:
      return "bool";
    case ColumnKind::kTime:
      return "time";
    case ColumnKind::kText:
      return "text";
    case ColumnKind::kName:
      return "name";
    case ColumnKind::kTexts:
      return "texts";
    case ColumnKind::kReals:
      return "reals";
  }
  return "";
}

/// Bytes that are no UTF-8 are replaced, as in JSON.
nb::object TextOf(std::string_view text) {
  return nb::steal(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

nb::object ElementOf(const Column& column, std::size_t row) {
  if (column.Nulls() > 0 && !column.IsValid(row)) return nb::none();
  if (column.Kind() == ColumnKind::kReal) return nb::float_(column.Reals()[row]);
  return TextOf(column.TextAt(row));
}

nb::object ListAt(const Column& column, std::size_t row) {
  nb::list list;
  const auto end = static_cast<std::size_t>(column.Offsets()[row + 1]);
  for (auto i = static_cast<std::size_t>(column.Offsets()[row]); i < end; ++i)
    list.append(ElementOf(*column.Child(), i));
  return list;
}

/// Texts and lists as Python's own objects.
nb::list Objects(const Column& column) {
  nb::list list;
  const bool lists = column.Kind() == ColumnKind::kTexts || column.Kind() == ColumnKind::kReals;
  for (std::size_t row = 0; row < column.Rows(); ++row)
    list.append(lists ? ListAt(column, row) : ElementOf(column, row));
  return list;
}

/// (kind, data, bits of what is valid or None, words or None)
nb::tuple Parts(const Owner& column) {
  nb::object data, words = nb::none(), valid = nb::none();
  switch (column->Kind()) {
    case ColumnKind::kReal:
      data = View(column->Reals(), column);
      break;
    case ColumnKind::kWhole:
    case ColumnKind::kTime:
      data = View(column->Wholes(), column);
      break;
    case ColumnKind::kFlags:
    case ColumnKind::kYesNo:
      data = View(column->Bytes(), column);
      break;
    case ColumnKind::kName:
      data = View(column->Places(), column);
      words = Objects(*column->Child());
      break;
    default:
      data = Objects(*column);
  }
  if (column->Nulls() > 0) valid = View(column->ValidBits(), column);
  return nb::make_tuple(NameOf(column->Kind()), data, valid, words);
}

template <typename Structure>
void ReleaseCapsule(PyObject* capsule) {
  auto* const structure = static_cast<Structure*>(PyCapsule_GetPointer(capsule, PyCapsule_GetName(capsule)));
  if (structure == nullptr) return PyErr_Clear();
  if (structure->release != nullptr) structure->release(structure);
  delete structure;
}

nb::object StreamOf(const TablePtr& table) {
  auto stream = std::make_unique<ArrowArrayStream>();
  ExportStream(table, *stream);
  return nb::steal(PyCapsule_New(stream.release(), "arrow_array_stream", ReleaseCapsule<ArrowArrayStream>));
}

nb::object SchemaOf(const TablePtr& table) {
  auto schema = std::make_unique<ArrowSchema>();
  ExportSchema(*table, *schema);
  return nb::steal(PyCapsule_New(schema.release(), "arrow_schema", ReleaseCapsule<ArrowSchema>));
}

}  // namespace

void BindTables(nb::module_& module) {
  nb::class_<Table>(module, "TableData", "Columns in the layout of Arrow; orsolva.Table is the way to them.")
      .def("__len__", &Table::Rows)
      .def("column_names",
           [](const Table& table) {
             std::vector<std::string> names;
             for (const auto& column : table.columns) names.push_back(column->Name());
             return names;
           })
      .def(
          "parts", [](const Table& table, std::size_t column) { return Parts(table.columns.at(column)); },
          nb::arg("column"), "(kind, data, bits of what is valid or None, words or None)")
      .def("arrow_stream", [](const std::shared_ptr<Table>& table) { return StreamOf(table); })
      .def("arrow_schema", [](const std::shared_ptr<Table>& table) { return SchemaOf(table); });
}

}  // namespace orsolva_python

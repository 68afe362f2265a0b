#include "tests/support/json_reader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace orsolva_test {

/// Between our values and those of the JSON library.
struct JsonTree {
  static Json From(const nlohmann::json& value) {
    switch (value.type()) {
      case nlohmann::json::value_t::null:
        return {};
      case nlohmann::json::value_t::boolean:
        return value.get<bool>();
      case nlohmann::json::value_t::string:
        return value.get<std::string>();
      case nlohmann::json::value_t::number_float:
        return value.get<double>();
      case nlohmann::json::value_t::array:
      case nlohmann::json::value_t::object:
        return FromStructure(value);
      default:
        return value.get<std::int64_t>();
    }
  }

  static nlohmann::json To(const Json& value) {
    nlohmann::json tree;
    switch (value.kind_) {
      case Json::kNull:
        return tree;
      case Json::kBoolean:
        return value.integer_ != 0;
      case Json::kInteger:
        return value.integer_;
      case Json::kReal:
        return value.real_;
      case Json::kString:
        return value.text_;
      case Json::kArray:
        tree = nlohmann::json::array();
        for (const Json& item : value) tree.push_back(To(item));
        return tree;
      default:
        tree = nlohmann::json::object();
        for (const auto& [key, item] : value.items()) tree[key] = To(item);
        return tree;
    }
  }

 private:
  static Json FromStructure(const nlohmann::json& value) {
    Json result;
    result.kind_ = value.is_array() ? Json::kArray : Json::kObject;
    for (const auto& [key, item] : value.items()) result.children_.push_back({key, From(item)});
    return result;
  }
};

namespace {

bool IsMember(const Json& item) { return item.is_array() && item.size() == 2 && item[0].is_string(); }

}  // namespace

Json::Json(std::initializer_list<Json> items) : kind_(kArray) {
  if (items.size() > 0 && std::all_of(items.begin(), items.end(), IsMember)) {
    kind_ = kObject;
    for (const Json& item : items) (*this)[item[0].text_] = item[1];
  } else {
    for (const Json& item : items) push_back(item);
  }
}

Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json::~Json() = default;

Json& Json::operator=(Json other) noexcept {
  std::swap(kind_, other.kind_);
  std::swap(real_, other.real_);
  std::swap(integer_, other.integer_);
  text_.swap(other.text_);
  children_.swap(other.children_);
  return *this;
}

Json Json::parse(const std::string& text) {
  const nlohmann::json tree = nlohmann::json::parse(text, nullptr, false);
  if (tree.is_discarded()) throw std::runtime_error("not JSON: " + text.substr(0, 200));
  return JsonTree::From(tree);
}

bool Json::accept(const std::string& text) { return nlohmann::json::accept(text); }

Json Json::array(std::initializer_list<Json> items) {
  Json result;
  result.kind_ = kArray;
  for (const Json& item : items) result.push_back(item);
  return result;
}

std::string Json::dump() const { return JsonTree::To(*this).dump(); }

std::size_t Json::size() const { return kind_ == kNull ? 0 : is_structured() ? children_.size() : 1; }

bool Json::contains(const std::string& key) const { return is_object() && Find(key) != nullptr; }

const Json::Member* Json::Find(const std::string& key) const {
  const auto found =
      std::find_if(children_.begin(), children_.end(), [&](const Member& m) { return m.key == key; });
  return found == children_.end() ? nullptr : &*found;
}

const Json& Json::at(const std::string& key) const {
  const Member* member = Expect(is_object(), "an object").Find(key);
  if (member == nullptr) throw std::runtime_error("no member \"" + key + "\" in " + dump().substr(0, 200));
  return member->value;
}

const Json& Json::at(std::size_t index) const {
  if (index >= Expect(is_array(), "an array").children_.size())
    throw std::runtime_error("no element " + std::to_string(index) + " in " + dump().substr(0, 200));
  return children_[index].value;
}

Json& Json::operator[](const std::string& key) {
  if (is_null()) kind_ = kObject;
  if (!contains(key)) {
    Expect(is_object(), "an object");
    const auto place = std::find_if(children_.begin(), children_.end(),
                                    [&](const Member& member) { return member.key > key; });
    children_.insert(place, Member{key, Json()});
  }
  return const_cast<Json&>(std::as_const(*this).at(key));
}

Json& Json::operator[](std::size_t index) { return const_cast<Json&>(std::as_const(*this).at(index)); }

void Json::push_back(Json value) {
  if (is_null()) kind_ = kArray;
  Expect(is_array(), "an array");
  children_.push_back({std::to_string(children_.size()), std::move(value)});
}

void Json::erase(const std::string& key) {
  std::erase_if(children_, [&](const Member& member) { return member.key == key; });
}

const Json& Json::Expect(bool holds, const char* what) const {
  if (!holds) throw std::runtime_error("found " + dump().substr(0, 200) + ", expected " + what);
  return *this;
}

bool operator==(const Json& a, const Json& b) {
  if (a.is_number() && b.is_number()) {
    return a.kind_ == Json::kInteger && b.kind_ == Json::kInteger ? a.integer_ == b.integer_
                                                                  : a.real_ == b.real_;
  }
  return a.kind_ == b.kind_ && a.integer_ == b.integer_ && a.text_ == b.text_ &&
         std::equal(a.children_.begin(), a.children_.end(), b.children_.begin(), b.children_.end(),
                    [](const auto& left, const auto& right) {
                      return left.key == right.key && left.value == right.value;
                    });
}

std::ostream& operator<<(std::ostream& out, const Json& value) { return out << value.dump(); }

}  // namespace orsolva_test

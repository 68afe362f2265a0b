// A JSON value for tests: parsed once in json_reader.cpp, so that no test compiles a JSON library.
#ifndef ORSOLVA_TESTS_SUPPORT_JSON_READER_H
#define ORSOLVA_TESTS_SUPPORT_JSON_READER_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orsolva_test {

/// Null, boolean, number, string, array or object. Members of an object are sorted by key.
class Json {
 public:
  struct Member;
  class Iterator;

  Json();                ///< null
  Json(std::nullptr_t);  ///< null
  Json(const char* text);
  Json(std::string text);
  template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
  Json(T value);
  /// An object when every item is a pair of a string and a value, an array otherwise.
  Json(std::initializer_list<Json> items);
  Json(const Json& other);
  Json(Json&& other) noexcept;
  Json& operator=(Json other) noexcept;
  ~Json();

  /// @throws std::runtime_error  when the text is not JSON
  static Json parse(const std::string& text);
  static bool accept(const std::string& text);  ///< whether the text is JSON
  static Json array(std::initializer_list<Json> items);
  std::string dump() const;

  bool is_null() const { return kind_ == kNull; }
  bool is_number() const { return kind_ == kInteger || kind_ == kReal; }
  bool is_string() const { return kind_ == kString; }
  bool is_array() const { return kind_ == kArray; }
  bool is_object() const { return kind_ == kObject; }
  bool is_structured() const { return is_array() || is_object(); }

  /// The value as a number, a boolean or a std::string.
  /// @throws std::runtime_error  when it is of another kind
  template <class T>
  T get() const {
    if constexpr (std::is_same_v<T, bool>) {
      return Expect(kind_ == kBoolean, "a boolean").integer_ != 0;
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(Expect(is_number(), "a number").real_);
    } else if constexpr (std::is_integral_v<T>) {
      const Json& number = Expect(is_number(), "a number");
      return kind_ == kReal ? static_cast<T>(number.real_) : static_cast<T>(number.integer_);
    } else {
      return Expect(kind_ == kString, "a string").text_;
    }
  }

  std::size_t size() const;
  bool empty() const { return size() == 0; }
  bool contains(const std::string& key) const;

  /// @throws std::runtime_error  without such a member or element
  const Json& at(const std::string& key) const;
  const Json& at(std::size_t index) const;
  const Json& operator[](const std::string& key) const { return at(key); }
  const Json& operator[](std::size_t index) const { return at(index); }
  Json& operator[](const std::string& key);  ///< adds a null member without one
  Json& operator[](std::size_t index);
  void push_back(Json value);
  void erase(const std::string& key);

  const std::vector<Member>& items() const { return children_; }  ///< keys of an array are its indices
  Iterator begin() const;
  Iterator end() const;

  friend bool operator==(const Json& a, const Json& b);
  friend std::ostream& operator<<(std::ostream& out, const Json& value);

 private:
  friend struct JsonTree;
  enum Kind { kNull, kBoolean, kInteger, kReal, kString, kArray, kObject };

  const Json& Expect(bool holds, const char* what) const;
  const Member* Find(const std::string& key) const;

  Kind kind_ = kNull;
  double real_ = 0.0;
  std::int64_t integer_ = 0;
  std::string text_;
  std::vector<Member> children_;
};

struct Json::Member {
  std::string key;
  Json value;
};

class Json::Iterator {
 public:
  explicit Iterator(const Member* at) : at_(at) {}
  const Json& operator*() const { return at_->value; }
  Iterator& operator++() { return ++at_, *this; }
  bool operator!=(const Iterator& other) const { return at_ != other.at_; }

 private:
  const Member* at_;
};

// The constructors need the whole of Member, which holds a value itself.
inline Json::Json() = default;
inline Json::Json(std::nullptr_t) {}
inline Json::Json(const char* text) : kind_(kString), text_(text) {}
inline Json::Json(std::string text) : kind_(kString), text_(std::move(text)) {}

template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int>>
Json::Json(T value)
    : kind_(std::is_same_v<T, bool>       ? kBoolean
            : std::is_floating_point_v<T> ? kReal
                                          : kInteger),
      real_(static_cast<double>(value)),
      integer_(std::is_floating_point_v<T> ? 0 : static_cast<std::int64_t>(value)) {}

inline Json::Iterator Json::begin() const { return Iterator(children_.data()); }
inline Json::Iterator Json::end() const { return Iterator(children_.data() + children_.size()); }

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_JSON_READER_H

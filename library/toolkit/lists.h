// Growable lists of 32-bit integers and doubles.
//
// The reported capacity grows in steps of 20; the memory behind it grows geometrically, so that n appends cost
// O(n) overall. An allocation that fails leaves the list as it was and is reported, never thrown.
#ifndef ORSOLVA_TOOLKIT_LISTS_H
#define ORSOLVA_TOOLKIT_LISTS_H

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace gnssqctoolkit {

template <class T>
class GrowableList {
 public:
  GrowableList() = default;
  GrowableList(const GrowableList& other) { CopyFrom(other); }
  GrowableList(GrowableList&& other) noexcept { Swap(other); }
  GrowableList& operator=(const GrowableList& other) {
    if (this != &other) CopyFrom(other);
    return *this;
  }
  GrowableList& operator=(GrowableList&& other) noexcept {
    Swap(other);
    return *this;
  }
  virtual ~GrowableList() { Release(); }

  int Count() const { return count_; }
  int Capacity() const { return capacity_; }
  T* Data() { return data_; }
  const T* Data() const { return data_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + count_; }

  /// @return 1, or 0 with the list unchanged when there is no memory
  int Append(T value);
  /// Element i; outside the list the filler, reset to 0, so that a write there changes nothing.
  T& Element(int i) {
    if (i >= 0 && i < count_) return data_[i];
    filler_ = T{};
    return filler_;
  }
  /// Value at i, 0 outside the list.
  T At(int i) const { return i >= 0 && i < count_ ? data_[i] : T{}; }
  /// Shifts the later elements down and writes the filler into the freed slot. @return 1, or 0 out of range
  int RemoveAt(int i);
  /// Count 0; the array is kept and zeroed.
  void Clear();
  /// Frees the array.
  void Release();

 private:
  static constexpr int kGrowthStep = 20;

  void CopyFrom(const GrowableList& other);
  void Swap(GrowableList& other) noexcept;
  bool Reserve(int slots);

  int count_ = 0;
  int capacity_ = 0;   // reported, a multiple of the growth step
  int allocated_ = 0;  // slots really owned
  T* data_ = nullptr;
  T filler_{};
};

using IList = GrowableList<std::int32_t>;
using DList = GrowableList<double>;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_LISTS_H

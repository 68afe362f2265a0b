// Growable lists of 32-bit integers and doubles.
//
// The reported capacity grows in steps of 20; the memory behind it grows geometrically, so that n appends
// cost O(n) overall. An append that finds no memory leaves the list as it was and reports it; a push or a
// copy throws std::bad_alloc.
#ifndef ORSOLVA_TOOLKIT_LISTS_H
#define ORSOLVA_TOOLKIT_LISTS_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

#include "toolkit/growth_buffer.h"

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
  virtual ~GrowableList() = default;

  int Count() const { return count_; }
  int Capacity() const { return capacity_; }
  T* Data() { return buffer_.Data(); }
  const T* Data() const { return buffer_.Data(); }
  const T* begin() const { return buffer_.Data(); }
  const T* end() const { return buffer_.Data() + count_; }

  /// @return 1, or 0 with the list unchanged when there is no memory
  int Append(T value) {
    if (count_ >= capacity_ && !Grow()) return 0;
    buffer_.Data()[count_++] = value;
    return 1;
  }
  /// Append for callers that cannot go on without the value. @throws std::bad_alloc when there is no memory
  void Push(T value) {
    if (Append(value) == 0) throw std::bad_alloc();
  }
  /// Element i; outside the list the filler, reset to 0, so that a write there changes nothing.
  T& Element(int i) {
    if (i >= 0 && i < count_) return buffer_.Data()[i];
    filler_ = T{};
    return filler_;
  }
  /// Value at i, 0 outside the list.
  T At(int i) const { return i >= 0 && i < count_ ? buffer_.Data()[i] : T{}; }
  /// Shifts the later elements down and writes the filler into the freed slot. @return 1, or 0 out of range
  int RemoveAt(int i) {
    if (i < 0 || i >= count_) return 0;
    T* data = buffer_.Data();
    std::move(data + i + 1, data + count_, data + i);
    data[--count_] = filler_;
    return 1;
  }
  bool Contains(T value) const { return std::find(begin(), end(), value) != end(); }
  /// Count 0; the array is kept and zeroed.
  void Clear() {
    std::fill_n(buffer_.Data(), capacity_, T{});
    count_ = 0;
  }
  /// Frees the array.
  void Release() {
    buffer_.Release();
    count_ = 0;
    capacity_ = 0;
  }

 private:
  static constexpr int kGrowthStep = 20;

  /// One step more of reported capacity, its slots set to the filler.
  bool Grow() {
    if (capacity_ > std::numeric_limits<int>::max() - kGrowthStep) return false;
    if (!buffer_.Reserve(capacity_ + kGrowthStep, count_)) return false;
    std::fill_n(buffer_.Data() + capacity_, kGrowthStep, filler_);
    capacity_ += kGrowthStep;
    return true;
  }
  void CopyFrom(const GrowableList& other) {
    Clear();
    for (T value : other) Push(value);
    filler_ = other.filler_;
  }
  void Swap(GrowableList& other) noexcept {
    buffer_.Swap(other.buffer_);
    std::swap(count_, other.count_);
    std::swap(capacity_, other.capacity_);
    std::swap(filler_, other.filler_);
  }

  GrowthBuffer<T> buffer_;
  int count_ = 0;
  int capacity_ = 0;  // reported, a multiple of the growth step
  T filler_{};
};

using IList = GrowableList<std::int32_t>;
using DList = GrowableList<double>;

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_LISTS_H

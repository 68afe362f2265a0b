// The memory behind the growable lists: at least doubles when it grows, never throws.
//
// Lists report a capacity that grows in small fixed steps; the buffer may own more, so that n appends move
// O(n) elements in all.
#ifndef ORSOLVA_TOOLKIT_GROWTH_BUFFER_H
#define ORSOLVA_TOOLKIT_GROWTH_BUFFER_H

#include <cstddef>
#include <limits>
#include <new>
#include <utility>

namespace gnssqctoolkit {

template <class T>
class GrowthBuffer {
 public:
  GrowthBuffer() = default;
  GrowthBuffer(const GrowthBuffer&) = delete;
  GrowthBuffer& operator=(const GrowthBuffer&) = delete;
  virtual ~GrowthBuffer() { Release(); }

  T* Data() { return data_; }
  const T* Data() const { return data_; }
  int Slots() const { return slots_; }

  /// Makes room for `slots` elements; slots that are new are left as T{}.
  /// @param used  elements from the front that are kept
  /// @return false, with nothing changed, when there is no memory
  bool Reserve(int slots, int used) noexcept {
    if (slots <= slots_) return true;
    const int half_of_all = std::numeric_limits<int>::max() / 2;
    const int doubled = slots_ <= half_of_all ? slots_ * 2 : slots;
    return Reallocate(doubled > slots ? doubled : slots, used) ||
           (doubled > slots && Reallocate(slots, used));
  }

  void Release() noexcept {
    delete[] data_;
    data_ = nullptr;
    slots_ = 0;
  }

  void Swap(GrowthBuffer& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(slots_, other.slots_);
  }

 private:
  bool Reallocate(int slots, int used) noexcept {
    T* grown = new (std::nothrow) T[static_cast<std::size_t>(slots)]();
    if (grown == nullptr) return false;
    for (int i = 0; i < used; ++i) grown[i] = std::move(data_[i]);
    delete[] data_;
    data_ = grown;
    slots_ = slots;
    return true;
  }

  T* data_ = nullptr;
  int slots_ = 0;
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_GROWTH_BUFFER_H

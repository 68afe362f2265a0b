#include "tests/property/failing_memory.h"

#include <cstdlib>
#include <new>

namespace orsolva_test {

void* FailingMemory::Take(std::size_t size) noexcept {
  ++calls;
  if (calls >= first_bad && calls <= last_bad) return nullptr;
  void* block = std::malloc(size > 0 ? size : 1);
  bytes += size;
  if (block != nullptr) ++live;
  return block;
}

void FailingMemory::Give(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

}  // namespace orsolva_test

// The array forms of the standard library end up here too.
void* operator new(std::size_t size) {
  void* block = orsolva_test::FailingMemory::Take(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return orsolva_test::FailingMemory::Take(size);
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { orsolva_test::FailingMemory::Give(block); }
void operator delete(void* block, std::size_t) noexcept { orsolva_test::FailingMemory::Give(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept {
  orsolva_test::FailingMemory::Give(block);
}
void operator delete[](void* block) noexcept { orsolva_test::FailingMemory::Give(block); }
void operator delete[](void* block, std::size_t) noexcept { orsolva_test::FailingMemory::Give(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  orsolva_test::FailingMemory::Give(block);
}

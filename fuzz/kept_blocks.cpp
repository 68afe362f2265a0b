// Keeps large blocks of memory from one input to the next. Under the address sanitizer each would be mapped
// and unmapped again, which takes longer than the run that it is for. A block that is not in use is poisoned.
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#endif
#endif
#ifndef ASAN_POISON_MEMORY_REGION
#define ASAN_POISON_MEMORY_REGION(start, size) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(start, size) static_cast<void>(0)
#endif

namespace {

constexpr std::size_t kLarge = std::size_t{1} << 16;

struct Block {
  void* start = nullptr;
  std::size_t size = 0;
  bool in_use = false;
};

Block blocks[32];

/// A block of this size that is not in use, or a place to note one; null when all places are taken.
Block* Find(std::size_t size) {
  Block* place = nullptr;
  for (Block& block : blocks) {
    if (block.start != nullptr && block.size == size && !block.in_use) return &block;
    if (block.start == nullptr) place = &block;
  }
  return place;
}

void* Allocate(std::size_t size) noexcept {
  Block* block = size >= kLarge ? Find(size) : nullptr;
  if (block == nullptr) return std::malloc(size > 0 ? size : 1);
  if (block->start == nullptr) *block = {std::malloc(size), size, false};
  block->in_use = block->start != nullptr;
  if (block->in_use) ASAN_UNPOISON_MEMORY_REGION(block->start, size);
  return block->start;
}

void Release(void* start) noexcept {
  for (Block& block : blocks) {
    if (start == nullptr || block.start != start) continue;
    block.in_use = false;
    ASAN_POISON_MEMORY_REGION(start, block.size);
    return;
  }
  std::free(start);
}

}  // namespace

void* operator new(std::size_t size) {
  void* start = Allocate(size);
  if (start == nullptr) throw std::bad_alloc();
  return start;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* start) noexcept { Release(start); }
void operator delete(void* start, std::size_t) noexcept { Release(start); }
void operator delete(void* start, const std::nothrow_t&) noexcept { Release(start); }

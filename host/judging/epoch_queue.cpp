#include "host/judging/epoch_queue.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

constexpr std::align_val_t kAlignment{kHugePageBytes};

/// What precedes the satellites and signals of an epoch.
struct Head {
  std::int64_t time_ns;
  double receiver_clock_offset_s;
  std::uint64_t satellites, signals;
  std::uint32_t events;
};
static_assert(std::is_trivially_copyable_v<SatelliteObservation> &&
              std::is_trivially_copyable_v<SignalObservation>);

std::size_t SizeOf(const ObservationEpoch& epoch) {
  return sizeof(Head) + epoch.satellites.size() * sizeof(SatelliteObservation) +
         epoch.signals.size() * sizeof(SignalObservation);
}

/// @return where the list ends
template <typename Value>
std::byte* Write(const std::vector<Value>& list, std::byte* to) {
  static_assert(sizeof(Value) % alignof(std::int64_t) == 0 && alignof(Value) <= alignof(std::int64_t));
  if (!list.empty()) std::memcpy(to, list.data(), list.size() * sizeof(Value));
  return to + list.size() * sizeof(Value);
}

template <typename Value>
const std::byte* Read(const std::byte* from, std::size_t count, std::vector<Value>& list) {
  const auto* const values = reinterpret_cast<const Value*>(from);
  list.assign(values, values + count);
  return from + count * sizeof(Value);
}

}  // namespace

void EpochQueue::FreeBytes::operator()(std::byte* bytes) const noexcept {
  ::operator delete(bytes, kAlignment);
}

EpochQueue::Block EpochQueue::MakeBlock(std::size_t size) {
  Block block;
  block.size = std::max(size, kHugePageBytes);
  block.bytes.reset(static_cast<std::byte*>(::operator new(block.size, kAlignment)));
  PreferHugePages(block.bytes.get(), block.size / kHugePageBytes * kHugePageBytes);
  return block;
}

/// Gives the last block room for so many bytes. @return false when the queue is abandoned
bool EpochQueue::MakeRoom(std::size_t size) {
  if (written_ != nullptr && written_->size - written_->filled >= size) return true;
  std::unique_lock<std::mutex> lock(mutex_);
  room_.wait(lock, [this] { return blocks_.size() < most_blocks_ || abandoned_; });
  if (abandoned_) return false;
  if (size > kHugePageBytes || spare_.empty()) {
    blocks_.push_back(MakeBlock(size));
  } else {
    blocks_.push_back(std::move(spare_.back()));
    spare_.pop_back();
  }
  written_ = &blocks_.back();
  return true;
}

bool EpochQueue::Put(const ObservationEpoch& epoch) {
  const std::size_t size = SizeOf(epoch);
  if (!MakeRoom(size)) return false;
  // Nobody reads here before the block is said to be filled so far.
  std::byte* const to = written_->bytes.get() + written_->filled;
  const Head head = {epoch.time_ns, epoch.receiver_clock_offset_s, epoch.satellites.size(),
                     epoch.signals.size(), epoch.events};
  std::memcpy(to, &head, sizeof head);
  Write(epoch.signals, Write(epoch.satellites, to + sizeof head));
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (abandoned_) return false;
    written_->filled += size;
    ++waiting_;
  }
  epoch_.notify_one();
  return true;
}

bool EpochQueue::WaitForRoom(std::chrono::milliseconds longest) {
  std::unique_lock<std::mutex> lock(mutex_);
  return room_.wait_for(lock, longest, [this] { return blocks_.size() < most_blocks_ || abandoned_; });
}

void EpochQueue::Limit(std::size_t most_blocks) {
  const std::lock_guard<std::mutex> lock(mutex_);
  most_blocks_ = most_blocks;
  spare_.resize(std::min(spare_.size(), most_blocks_ - std::min(most_blocks_, blocks_.size())));
}

void EpochQueue::Close() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
  }
  epoch_.notify_one();
}

bool EpochQueue::Take(ObservationEpoch& epoch) {
  const std::byte* from = nullptr;
  bool emptied = false;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    epoch_.wait(lock, [this] { return waiting_ > 0 || closed_ || abandoned_; });
    if (waiting_ == 0 || abandoned_) return false;
    --waiting_;
    emptied = read_ == blocks_.front().filled;
    if (emptied) {
      Block block = std::move(blocks_.front());
      blocks_.pop_front();
      read_ = block.filled = 0;
      const bool wanted = blocks_.size() + spare_.size() < most_blocks_;
      if (block.size == kHugePageBytes && wanted) spare_.push_back(std::move(block));
    }
    from = blocks_.front().bytes.get() + read_;
  }
  if (emptied) room_.notify_one();
  Head head;
  std::memcpy(&head, from, sizeof head);
  epoch.time_ns = head.time_ns;
  epoch.events = head.events;
  epoch.receiver_clock_offset_s = head.receiver_clock_offset_s;
  const std::byte* const signals = Read(from + sizeof head, head.satellites, epoch.satellites);
  const std::byte* const end = Read(signals, head.signals, epoch.signals);
  read_ += static_cast<std::size_t>(end - from);
  return true;
}

void EpochQueue::Abandon() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    abandoned_ = true;
  }
  room_.notify_one();
  epoch_.notify_one();
}

bool EpochQueue::Abandoned() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return abandoned_;
}

}  // namespace orsolva_host

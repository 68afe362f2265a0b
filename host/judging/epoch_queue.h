// Epochs on their way from one thread to another, in their order and in bounded memory.
#ifndef ORSOLVA_JUDGING_EPOCH_QUEUE_H
#define ORSOLVA_JUDGING_EPOCH_QUEUE_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

/// For one thread that puts and one that takes. Epochs lie one after the other in blocks of a huge page,
/// which are used again: a block costs one page fault, lists of their own for each epoch cost several.
class EpochQueue {
 public:
  /// @param most_blocks  of 2 MB, at least 2; an epoch that is larger has a larger block
  explicit EpochQueue(std::size_t most_blocks) : most_blocks_(most_blocks) {}

  /// Copies an epoch into the queue, as soon as there is room.
  /// @return false when the queue is abandoned
  bool Put(const ObservationEpoch& epoch);
  /// Waits until Put of an epoch of up to 2 MB would not wait, at most the time given. @return whether that
  /// is so
  bool WaitForRoom(std::chrono::milliseconds longest);
  /// Fewer blocks from now on, as soon as those that wait are read. By the thread that puts.
  /// @param most_blocks  at least 2
  void Limit(std::size_t most_blocks);
  /// No further epoch is put.
  void Close();
  /// Waits for the next epoch. @param epoch  keeps its memory
  /// @return false when there is none: all are taken and the queue is closed, or it is abandoned
  bool Take(ObservationEpoch& epoch);
  /// Makes every call return false, now and later. By either thread.
  void Abandon();
  bool Abandoned();

 private:
  struct FreeBytes {
    void operator()(std::byte* bytes) const noexcept;
  };
  struct Block {
    std::unique_ptr<std::byte[], FreeBytes> bytes;
    std::size_t size = 0;
    std::size_t filled = 0;
  };

  static Block MakeBlock(std::size_t size);
  bool MakeRoom(std::size_t size);

  std::size_t most_blocks_;
  std::mutex mutex_;
  std::condition_variable room_;   ///< or abandoned
  std::condition_variable epoch_;  ///< or closed, or abandoned
  std::deque<Block> blocks_;       ///< the first is being read, the last being written
  std::vector<Block> spare_;       ///< of the usual size
  std::size_t waiting_ = 0;        ///< epochs
  bool closed_ = false;
  bool abandoned_ = false;
  std::size_t read_ = 0;      ///< bytes of the first block; of the thread that takes
  Block* written_ = nullptr;  ///< the last block; of the thread that puts
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_EPOCH_QUEUE_H

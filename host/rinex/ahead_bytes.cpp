// Compressed data, decompressed on a thread of its own ahead of the reader.
#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "host/rinex/byte_source.h"

namespace orsolva_host {
namespace {

class Ahead : public ByteSource {
 public:
  Ahead(std::unique_ptr<ByteSource> compressed, const std::string& name, Diagnostics& diagnostics,
        const InputLimits& limits)
      : diagnostics_(diagnostics),
        source_(DecompressedBytes(std::move(compressed), name, own_diagnostics_, limits)) {
    try {
      thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
      // Read does the work.
    }
  }
  ~Ahead() override {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      abandoned_ = true;
    }
    room_.notify_one();
    if (thread_.joinable()) thread_.join();
  }
  Ahead(const Ahead&) = delete;
  Ahead& operator=(const Ahead&) = delete;

  std::size_t Read(char* out, std::size_t size) override {
    if (read_ == held_ && !NextChunk()) return 0;
    const std::size_t count = std::min(size, held_ - read_);
    std::memcpy(out, chunks_[taken_ % kChunks].bytes.data() + read_, count);
    read_ += count;
    return count;
  }

 private:
  // Together they fit the caches of a core.
  static constexpr std::size_t kChunks = 4;
  static constexpr std::size_t kChunkSize = 1U << 16;

  struct Chunk {
    std::vector<char> bytes = std::vector<char>(kChunkSize);
    std::size_t size = 0;
  };

  /// Gives back the chunk that has been read and waits for the next one. @return false at the end of the data
  /// @throws what reading threw
  bool NextChunk() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (held_ > 0) ++taken_;
    read_ = held_ = 0;
    room_.notify_one();
    if (!thread_.joinable()) Fill(lock);
    filled_chunk_.wait(lock, [this] { return filled_ > taken_ || ended_; });
    if (filled_ > taken_) {
      held_ = chunks_[taken_ % kChunks].size;
      return true;
    }
    diagnostics_.Append(std::exchange(own_diagnostics_, Diagnostics()));
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
    return false;
  }

  void Work() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!ended_) {
      room_.wait(lock, [this] { return filled_ < taken_ + kChunks || abandoned_; });
      if (abandoned_) return;
      Fill(lock);
      filled_chunk_.notify_one();
    }
  }

  /// Fills the next chunk, which the other thread does not look at, without the lock.
  void Fill(std::unique_lock<std::mutex>& lock) {
    if (ended_) return;
    Chunk& chunk = chunks_[filled_ % kChunks];
    lock.unlock();
    try {
      chunk.size = source_->Read(chunk.bytes.data(), chunk.bytes.size());
    } catch (...) {
      chunk.size = 0;
      thrown_ = std::current_exception();
    }
    lock.lock();
    if (chunk.size > 0) {
      ++filled_;
    } else {
      ended_ = true;
    }
  }

  Diagnostics& diagnostics_;
  // Of the thread until the data end.
  Diagnostics own_diagnostics_;
  std::unique_ptr<ByteSource> source_;
  std::exception_ptr thrown_;
  std::array<Chunk, kChunks> chunks_;  ///< a ring
  std::mutex mutex_;
  std::condition_variable room_;          ///< or abandoned
  std::condition_variable filled_chunk_;  ///< or ended
  std::size_t filled_ = 0;                ///< chunks so far
  std::size_t taken_ = 0;                 ///< chunks that are read
  bool ended_ = false;
  bool abandoned_ = false;
  std::size_t held_ = 0;  ///< bytes of the chunk being read
  std::size_t read_ = 0;  ///< of these
  std::thread thread_;    ///< last: it uses what is above
};

}  // namespace

std::unique_ptr<ByteSource> DecompressedAhead(std::unique_ptr<ByteSource> compressed, const std::string& name,
                                              Diagnostics& diagnostics, const InputLimits& limits) {
  return std::make_unique<Ahead>(std::move(compressed), name, diagnostics, limits);
}

}  // namespace orsolva_host

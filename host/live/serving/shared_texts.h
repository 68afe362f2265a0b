// Texts that are made for one client and given to all that ask within the same time.
#ifndef ORSOLVA_LIVE_SERVING_SHARED_TEXTS_H
#define ORSOLVA_LIVE_SERVING_SHARED_TEXTS_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace orsolva_host::live {

using SharedText = std::shared_ptr<const std::string>;

/// Keeps the last few texts for a short while, so that neither processor time nor memory grows with clients.
/// May be used from any thread; texts are made one at a time.
class SharedTexts {
 public:
  SharedTexts(std::size_t kept, std::chrono::milliseconds fresh) : kept_(kept), fresh_(fresh) {}

  /// The text of that key, made now unless a fresh one is there.
  SharedText Get(const std::string& key, const std::function<std::string()>& make);

 private:
  using Clock = std::chrono::steady_clock;
  struct Entry {
    std::string key;
    Clock::time_point made;
    SharedText text;
  };

  const std::size_t kept_;
  const std::chrono::milliseconds fresh_;
  std::mutex mutex_;
  std::deque<Entry> entries_;  ///< the oldest first
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_SHARED_TEXTS_H

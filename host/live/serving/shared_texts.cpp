#include "host/live/serving/shared_texts.h"

#include <utility>

namespace orsolva_host::live {

SharedText SharedTexts::Get(const std::string& key, const std::function<std::string()>& make) {
  const std::lock_guard<std::mutex> lock(mutex_);
  while (!entries_.empty() && Clock::now() - entries_.front().made >= fresh_) entries_.pop_front();
  for (const Entry& entry : entries_) {
    if (entry.key == key) return entry.text;
  }
  if (entries_.size() >= kept_) entries_.pop_front();
  Entry entry;
  entry.key = key;
  entry.text = std::make_shared<const std::string>(make());
  entry.made = Clock::now();
  entries_.push_back(std::move(entry));
  return entries_.back().text;
}

}  // namespace orsolva_host::live

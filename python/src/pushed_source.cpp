#include "python/src/pushed_source.h"

#include "host/judging/library_epoch.h"

namespace orsolva_python {

bool PushedSource::Next(ObsEpoch_QC_gbt& epoch, orsolva_host::ObservationEpoch& full) {
  if (!queue_.Take(full)) return false;
  TakeRecords();
  orsolva_host::FillLibraryEpoch(full, name_, diagnostics_, epoch);
  return true;
}

void PushedSource::AddNavigation(std::uint64_t epoch,
                                 std::shared_ptr<const orsolva_host::ReadNavigation> records) {
  const std::lock_guard<std::mutex> lock(mutex_);
  waiting_.push_back({epoch, std::move(records)});
}

/// What counts from the epoch on that has just been taken.
void PushedSource::TakeRecords() {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (; !waiting_.empty() && waiting_.front().epoch <= taken_; waiting_.pop_front()) {
    fresh_.push_back(std::move(waiting_.front().records));
  }
  ++taken_;
}

}  // namespace orsolva_python

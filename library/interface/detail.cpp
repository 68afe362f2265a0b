#include "orsolva/detail.h"

#include "qc/process.h"

namespace orsolva {

void SetDetailObserver(unsigned long long* handle, QcDetailObserver* observer) {
  if (handle != nullptr) reinterpret_cast<PostProcessGnssQc*>(handle)->SetDetailObserver(observer);
}

}  // namespace orsolva

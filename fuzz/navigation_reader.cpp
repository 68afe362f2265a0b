// Any bytes as a navigation file.
#include "host/rinex/navigation_reader.h"

#include <cstdint>
#include <string>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orsolva_fuzz::Require;

template <class Records>
void CheckNumbers(const Records& records) {
  for (const auto& record : records) Require(record.prn >= 1 && record.prn <= 64, "numbers fit the tables");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_host::Diagnostics notices;
  orsolva_host::NavigationReader reader(notices);
  try {
    reader.Read(orsolva_host::TextBytes(std::string(data, data + size)), "fuzzed");
  } catch (const orsolva_host::FileError& error) {
    Require(*error.what() != '\0', "an error says something");
  }
  const orsolva_host::NavigationSet set = reader.Take();
  CheckNumbers(set.gps);
  CheckNumbers(set.glonass);
  CheckNumbers(set.bds);
  CheckNumbers(set.galileo);
  CheckNumbers(set.qzss);
  Require(set.Size() <= size / 20, "a record takes bytes");
  Require(notices.Notices().size() <= orsolva_host::Diagnostics::kMaxKinds, "notices are bounded");
  return 0;
}

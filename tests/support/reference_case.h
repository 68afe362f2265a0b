// A reference case: inputs as boundary records, the calls to make and the figures expected of them.
#ifndef ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H
#define ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "orsolva/records.h"
#include "tests/support/gzip_file.h"
#include "tests/support/navigation_set.h"

namespace orsolva_test {

/// A file that holds one record.
template <class Record>
Record UnpackRecord(const std::filesystem::path& path) {
  const std::vector<unsigned char> bytes = Unpack(path);
  if (bytes.size() != sizeof(Record)) throw std::runtime_error("unexpected size of " + path.string());
  Record record;
  std::memcpy(&record, bytes.data(), sizeof record);
  return record;
}

inline NavigationSet UnpackNavigation(const std::filesystem::path& path) {
  const std::vector<unsigned char> bytes = Unpack(path);
  std::int32_t counts[5];
  if (bytes.size() < sizeof counts) throw std::runtime_error("unexpected size of " + path.string());
  std::memcpy(counts, bytes.data(), sizeof counts);
  std::size_t at = sizeof counts;
  NavigationSet set;
  const auto take = [&](auto& records, std::int32_t count) {
    records.resize(static_cast<std::size_t>(count));
    const std::size_t size = records.size() * sizeof records[0];
    if (at + size > bytes.size()) throw std::runtime_error("truncated " + path.string());
    if (size > 0) std::memcpy(records.data(), bytes.data() + at, size);
    at += size;
  };
  take(set.Gps, counts[0]);
  take(set.Glonass, counts[1]);
  take(set.Bds, counts[2]);
  take(set.Galileo, counts[3]);
  take(set.Qzss, counts[4]);
  return set;
}

struct ReferenceCase {
  std::filesystem::path Folder;
  nlohmann::json Text;
  config_qct Config{};
  NavigationSet Navigation;
  std::vector<ObsEpoch_QC_gbt> Epochs;

  explicit ReferenceCase(const std::filesystem::path& folder) : Folder(folder) {
    std::ifstream(folder / "case.json") >> Text;
    Config = UnpackRecord<config_qct>(folder / "config.bin.gz");
    Navigation = UnpackNavigation(folder / "nav.bin.gz");
    const std::vector<unsigned char> bytes = Unpack(folder / "epochs.bin.gz");
    Epochs.resize(bytes.size() / sizeof(ObsEpoch_QC_gbt));
    if (!Epochs.empty()) std::memcpy(Epochs.data(), bytes.data(), Epochs.size() * sizeof(ObsEpoch_QC_gbt));
  }

  /// The batch of a call: `count` epochs from `first`, or a null pointer when `first` is -1.
  ObsBodyData_QC_gbt Batch(const nlohmann::json& call) const {
    const int first = call.at("first");
    return {call.at("count"), first < 0 ? nullptr : Epochs.data() + first};
  }
};

/// Names of the cases of a folder, in order.
inline std::vector<std::string> ReferenceCaseNames(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (std::filesystem::exists(entry.path() / "case.json"))
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H

// A reference case: inputs as boundary records, the calls to make and the figures expected of them.
#ifndef ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H
#define ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "orsolva/records.h"
#include "tests/support/gzip_file.h"
#include "tests/support/json_reader.h"
#include "tests/support/navigation_set.h"
#include "tests/support/text_file.h"

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
  Json Text;
  config_qct Config{};
  NavigationSet Navigation;
  std::vector<ObsEpoch_QC_gbt> Epochs;

  explicit ReferenceCase(const std::filesystem::path& folder) : Folder(folder) {
    Text = Json::parse(ReadText((folder / "case.json").string()));
    Config = UnpackRecord<config_qct>(folder / "config.bin.gz");
    Navigation = UnpackNavigation(folder / "nav.bin.gz");
    const std::vector<unsigned char> bytes = Unpack(folder / "epochs.bin.gz");
    Epochs.resize(bytes.size() / sizeof(ObsEpoch_QC_gbt));
    if (!Epochs.empty()) std::memcpy(Epochs.data(), bytes.data(), Epochs.size() * sizeof(ObsEpoch_QC_gbt));
  }

  /// The batch of a call: `count` epochs from `first`, or a null pointer when `first` is -1.
  ObsBodyData_QC_gbt Batch(const Json& call) const {
    const int first = call.at("first").get<int>();
    return {call.at("count").get<int>(), first < 0 ? nullptr : Epochs.data() + first};
  }
};

/// The cases listed in tests/reference/cases.txt; none without the folder. Others in the folder are left
/// alone.
inline std::vector<std::string> ReferenceCaseNames(const std::filesystem::path& folder) {
  if (!std::filesystem::exists(folder)) return {};
  std::ifstream list(std::filesystem::path(ORSOLVA_SOURCE_DIR) / "tests/reference/cases.txt");
  return {std::istream_iterator<std::string>(list), {}};
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_REFERENCE_CASE_H

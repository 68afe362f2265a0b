// Observation files written by tests, and what a reader makes of them.
#ifndef ORSOLVA_TESTS_HOST_OBSERVATION_TEXT_H
#define ORSOLVA_TESTS_HOST_OBSERVATION_TEXT_H

#include <cstdio>
#include <string>
#include <vector>

#include "host/rinex/observation_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_test {

/// A header with one system and its types; `more` is put before its end.
inline std::string Header(const std::string& types, const std::string& version = "3.04",
                          const std::string& more = "") {
  return HeaderLine("     " + version + "           OBSERVATION DATA    M", "RINEX VERSION / TYPE") +
         HeaderLine(types, "SYS / # / OBS TYPES") + more + HeaderLine("", "END OF HEADER");
}

inline std::string Epoch(const std::string& second, int count, int flag = 0) {
  char line[64];
  std::snprintf(line, sizeof line, "> 2021 12 21 00 00 %s000000  %d%3d\n", second.c_str(), flag, count);
  return line;
}

/// Values in 16 columns each.
inline std::string Satellite(const std::string& name, const std::vector<std::string>& values) {
  std::string line = name;
  for (const std::string& value : values) line += std::string(14 - value.size(), ' ') + value + "  ";
  return line + "\n";
}

struct ReadFile {
  orsolva_host::Diagnostics notices;
  std::vector<ObsEpoch_QC_gbt> epochs;
  orsolva_host::ObservationHeader header;
  bool strength = false;

  explicit ReadFile(const std::string& text, const orsolva_host::ObservationOptions& options = {}) {
    orsolva_host::ObservationReader reader(orsolva_host::TextBytes(text), "test.rnx", notices, options);
    Take(reader);
  }
  explicit ReadFile(const char* path) {
    orsolva_host::ObservationReader reader(std::string(path), notices);
    Take(reader);
  }

  bool Said(const std::string& part) const {
    for (const orsolva_host::Notice& n : notices.Notices()) {
      if (n.text.find(part) != std::string::npos) return true;
    }
    return false;
  }
  long CountOf(const std::string& part) const {
    for (const orsolva_host::Notice& n : notices.Notices()) {
      if (n.text.find(part) != std::string::npos) return n.count;
    }
    return 0;
  }
  long LineOf(const std::string& part) const {
    for (const orsolva_host::Notice& n : notices.Notices()) {
      if (n.text.find(part) != std::string::npos) return n.line;
    }
    return -1;
  }

 private:
  void Take(orsolva_host::ObservationReader& reader) {
    ObsEpoch_QC_gbt epoch;
    while (reader.Next(epoch)) epochs.push_back(epoch);
    header = reader.Header();
    strength = reader.HasSignalStrength();
  }
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_OBSERVATION_TEXT_H

// The tables over all inputs of a run, in the files that are asked for.
#ifndef ORSOLVA_JUDGING_NETWORK_OUTPUTS_H
#define ORSOLVA_JUDGING_NETWORK_OUTPUTS_H

#include <string>
#include <utility>
#include <vector>

#include "host/judging/output_settings.h"
#include "host/report/network.h"

namespace orsolva_host {

class NetworkOutputs {
 public:
  /// @param settings  must outlive the outputs
  /// @param many   whether the run has several inputs; only then the folder gets tables
  /// @param pages  whether every input has a page in the folder
  NetworkOutputs(const OutputSettings& settings, bool many, bool pages)
      : settings_(settings), many_(many), pages_(pages) {}

  void Add(NetworkRow row) { rows_.push_back(std::move(row)); }
  /// Writes the tables, worst rows first. @throws WriteError
  void Write();
  /// The table as text for standard output.
  std::string Text() const { return NetworkText(rows_, settings_.style); }

 private:
  std::string Index(const std::string& path) const;
  std::string TableFor(const std::string& path) const;

  const OutputSettings& settings_;
  bool many_;
  bool pages_;
  std::vector<NetworkRow> rows_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_NETWORK_OUTPUTS_H

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
  /// @param index  of the pages of all inputs; empty: none
  NetworkOutputs(const OutputSettings& settings, bool many, std::string index)
      : settings_(settings), many_(many), index_(std::move(index)) {}

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
  std::string index_;
  std::vector<NetworkRow> rows_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_NETWORK_OUTPUTS_H

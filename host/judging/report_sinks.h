// Everything that a run over one or many files writes: streams, files per input, and the tables over all
// inputs.
#ifndef ORSOLVA_JUDGING_REPORT_SINKS_H
#define ORSOLVA_JUDGING_REPORT_SINKS_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/judging/judging_pool.h"
#include "host/judging/network_outputs.h"
#include "host/judging/output_settings.h"
#include "host/judging/report_stream.h"

namespace orsolva_host {

class ReportSinks {
 public:
  /// Makes the folder and opens the streams: text on standard output when nothing is asked for.
  /// @param settings  must outlive the sinks
  /// @throws WriteError
  ReportSinks(const OutputSettings& settings, std::vector<std::string> inputs);

  /// What a run of this input has to do for the files that are its own. May be called from several threads.
  std::unique_ptr<FileHooks> HooksOf(std::size_t input) const;
  /// Takes the outcome of the next input, in their order; one that was stopped leaves no trace. @throws
  /// WriteError
  void Add(std::size_t input, const FileOutcome& outcome);
  /// Ends the streams and writes the tables over all inputs. @throws WriteError
  void Finish();

 private:
  const OutputSettings& settings_;
  std::vector<std::string> inputs_;
  OutputNames names_;
  NetworkOutputs network_;
  std::vector<std::unique_ptr<ReportStream>> streams_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_REPORT_SINKS_H

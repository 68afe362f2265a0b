// Runs that keep what a report needs afterwards.
#ifndef ORSOLVA_PYTHON_JUDGING_CALLS_H
#define ORSOLVA_PYTHON_JUDGING_CALLS_H

#include <functional>
#include <memory>
#include <string>

#include "host/judging/epoch_source.h"
#include "host/judging/judge_file.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "python/src/report_binding.h"

namespace orsolva_python {

/// What is kept besides the figures.
struct Keep {
  bool page = true;     ///< what the page and the table of arcs need
  bool detail = false;  ///< a row per epoch, satellite and signal
};

/// @throws as orsolva_host::JudgeFile
std::shared_ptr<FinishedReport> JudgedFile(const std::string& path,
                                           const orsolva_host::JudgingSettings& settings,
                                           orsolva_host::SharedNavigation& navigation, Keep keep,
                                           orsolva_host::RunMonitor& monitor);

/// @param diagnostics  those of the source
/// @throws as orsolva_host::JudgeEpochs
std::shared_ptr<FinishedReport> JudgedEpochs(orsolva_host::EpochSource& source,
                                             const orsolva_host::JudgingSettings& settings,
                                             orsolva_host::SharedNavigation& navigation,
                                             orsolva_host::Diagnostics& diagnostics, Keep keep,
                                             orsolva_host::RunMonitor& monitor);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_JUDGING_CALLS_H

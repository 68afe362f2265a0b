// What orsolva qc is asked to do.
#ifndef ORSOLVA_CLI_REQUEST_H
#define ORSOLVA_CLI_REQUEST_H

#include <map>
#include <string>
#include <vector>

#include "host/judging/output_settings.h"
#include "host/judging/settings.h"

namespace orsolva_host {

struct QcRequest {
  std::vector<std::string> paths;       ///< observations, navigation, folders, patterns
  std::vector<std::string> navigation;  ///< further navigation files and folders
  std::string join = "none";            ///< or "day", "all": which files of a station are one span
  JudgingSettings settings;
  OutputSettings outputs;
  std::string parquet;  ///< folder of Parquet tables; empty: none
  /// The texts of the options of the analysis, by name, as they were given last.
  std::map<std::string, std::string> given;
  std::string profile;         ///< name, file or "history:FOLDER"; empty: none
  std::string compare;         ///< an earlier report; empty: none
  std::string color = "auto";  ///< or "always", "never"
  unsigned width = 0;          ///< columns; 0: the terminal's, at most 80
  unsigned jobs = 0;           ///< files at the same time; 0: one per core
  bool verbose = false;
  std::string config;  ///< configuration file; empty: that of the user
  bool no_config = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_REQUEST_H

// What a run over one or many files writes, and where.
#ifndef ORSOLVA_JUDGING_OUTPUT_SETTINGS_H
#define ORSOLVA_JUDGING_OUTPUT_SETTINGS_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "host/judging/epoch_selection.h"
#include "host/judging/output_formats.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

struct OutputSettings {
  /// By format: a file, "-" for standard output, or empty. Of many input files the HTML file is the index of
  /// their pages.
  std::array<std::string, kFormatCount> files;
  std::string folder;           ///< gets files of every input; empty: none
  std::vector<Format> formats;  ///< of the files in that folder
  DetailSelection detail;       ///< rows of the detail tables
  std::string network;          ///< file of the table over all inputs, "-" or empty
  bool quiet = false;           ///< nothing on standard output but what is asked for
  TextStyle style;              ///< of text on standard output
  std::string profile_title;    ///< for the index of the pages; empty without a profile

  const std::string& File(Format format) const { return files[static_cast<std::size_t>(format)]; }
  std::string& File(Format format) { return files[static_cast<std::size_t>(format)]; }
  bool InFolder(Format format) const;
};

/// The names of the files that the outputs of each input get.
class OutputNames {
 public:
  /// @param settings  must outlive the names
  OutputNames(const OutputSettings& settings, const std::vector<std::string>& inputs);

  bool Many() const { return stems_.size() > 1; }
  /// The file of an input below the folder.
  std::string InFolder(std::size_t input, Format format) const;
  /// The files that hold the page of an input.
  std::vector<std::string> PagesOf(std::size_t input) const;
  /// The index of the pages in the folder; empty for one input, or without pages there.
  std::string Index() const;
  /// The files that hold the table of an input. @param table  Format::kDetail, kEvents or kSeries
  std::vector<std::string> TablesOf(std::size_t input, Format table) const;
  /// All files that are named one by one or made per input, without the tables over all inputs in the folder.
  std::vector<std::string> All() const;

 private:
  const OutputSettings& settings_;
  std::vector<std::string> stems_;
  bool pages_in_folder_;  ///< of every input: it is one of the formats there, or an index is asked for
};

/// The names below a folder that the inputs' outputs get, without ending: the input's name without the ending
/// of its compression and without ".rnx" or ".crx"; of equal names the later ones get "-2" and so on. Of
/// several inputs none is called "network" or "index", which are the names of the tables over all of them.
std::vector<std::string> OutputStems(const std::vector<std::string>& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_OUTPUT_SETTINGS_H

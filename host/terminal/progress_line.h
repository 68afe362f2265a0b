// Progress of a run over files as one line of text.
#ifndef ORSOLVA_TERMINAL_PROGRESS_LINE_H
#define ORSOLVA_TERMINAL_PROGRESS_LINE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace orsolva_host {

struct ProgressState {
  std::size_t files = 1;
  std::size_t files_done = 0;
  std::uint64_t epochs = 0;
  std::uint64_t bytes = 0;
  std::uint64_t bytes_of = 0;  ///< 0 when it is not known
  double seconds = 0;          ///< since the beginning
};

/// "[#####-----]  50 %  3/8 files  12345 epochs  4115 epochs/s  0:03 left".
std::string ProgressLine(const ProgressState& state);

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_PROGRESS_LINE_H

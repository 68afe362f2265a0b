// How far a run is, on standard error when that is a terminal and nowhere otherwise.
#ifndef ORSOLVA_TERMINAL_PROGRESS_H
#define ORSOLVA_TERMINAL_PROGRESS_H

#include <cstdint>

namespace orsolva_host {

class Progress {
 public:
  Progress();
  /// Wipes the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Epochs(std::uint64_t count);
  void Epochs(std::uint64_t count, std::uint64_t of);

 private:
  bool shown_ = false;
  bool terminal_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_PROGRESS_H

// A bar on standard error with rate and time left.
#ifndef ORSOLVA_TERMINAL_PROGRESS_BAR_H
#define ORSOLVA_TERMINAL_PROGRESS_BAR_H

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

/// The bar as one line of at most `width` columns:
/// "[#####-----]  50 %  3/8 files  12345 epochs  4115 epochs/s  0:03 left".
std::string ProgressLine(const ProgressState& state, std::size_t width);

/// Shows the bar on a terminal, nothing elsewhere.
class ProgressBar {
 public:
  /// @param wanted  false: never shown
  explicit ProgressBar(bool wanted);
  ~ProgressBar() { Clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  bool Visible() const { return visible_; }
  void Show(const ProgressState& state);
  /// Wipes the line, so that other lines can be written.
  void Clear();

 private:
  bool visible_;
  bool shown_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_PROGRESS_BAR_H

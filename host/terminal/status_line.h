// One line on a terminal's standard error that is written over and over; nothing elsewhere.
#ifndef ORSOLVA_TERMINAL_STATUS_LINE_H
#define ORSOLVA_TERMINAL_STATUS_LINE_H

#include <string>

namespace orsolva_host {

class StatusLine {
 public:
  /// @param wanted  false: never shown
  explicit StatusLine(bool wanted);
  ~StatusLine() { Clear(); }
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  bool Visible() const { return visible_; }
  /// @param text  cut at the width of the terminal
  void Show(const std::string& text);
  /// Wipes the line, so that other lines can be written.
  void Clear();

 private:
  bool visible_;
  bool shown_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_STATUS_LINE_H

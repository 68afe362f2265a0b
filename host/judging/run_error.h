// Why a run came to no result.
#ifndef ORSOLVA_JUDGING_RUN_ERROR_H
#define ORSOLVA_JUDGING_RUN_ERROR_H

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace orsolva_host {

/// A run that came to no result: what happened and what the user can do.
class RunError : public std::runtime_error {
 public:
  /// @param notice  text of the notice that says the same; empty for none
  explicit RunError(const std::string& what, std::string notice = {})
      : std::runtime_error(what), notice_(std::move(notice)) {}

  const std::string& Notice() const { return notice_; }

 private:
  std::string notice_;
};

/// Any error as a sentence for people, also those of the standard library.
std::string ErrorText(const std::exception& error);

/// "file:12: what it says (3 times)", without a line that is not known and without a count of one.
std::string NoticeText(const std::string& file, long line, const std::string& text, long count);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_RUN_ERROR_H

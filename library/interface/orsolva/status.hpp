// What a call of session.hpp comes back with: a code and a text. C++17.
#ifndef ORSOLVA_INTERFACE_STATUS_HPP
#define ORSOLVA_INTERFACE_STATUS_HPP

#include <cstdint>

#include "records.h"

namespace orsolva {

/// Why a call succeeded or failed. The first five are what GNSSQCPlus returns.
enum class StatusCode : std::int32_t {
  kOk = GNSSQC_OK,                         ///< the call did what it says
  kNoData = GNSSQC_NO_DATA,                ///< no usable epoch in the batch, or no batch taken so far
  kNoNavigation = GNSSQC_NO_NAV,           ///< the navigation set holds no record
  kNoPosition = GNSSQC_NO_POSITION,        ///< no position is given and none could be computed
  kInternalError = GNSSQC_INTERNAL_ERROR,  ///< an error inside the library, for example no memory
  kNotStarted = -100,                      ///< Start has not succeeded on this session
  kAlreadyStarted = -101,                  ///< Start has succeeded before: another run needs another session
  kBadConfig = -102,                       ///< a value of the configuration is out of its range
  kBadArgument = -103,                     ///< a null pointer, or more records than a batch can count
  kNoMemory = -104,                        ///< no memory for the run or its result
  kImplausible = -105,  ///< more epochs than the interval allows, or a completeness outside 0 to 1
};

/// @return one sentence without a full stop; never null
constexpr const char* StatusText(StatusCode code) {
  switch (code) {
    case StatusCode::kOk:
      return "success";
    case StatusCode::kNoData:
      return "there is no usable epoch";
    case StatusCode::kNoNavigation:
      return "the navigation set holds no record";
    case StatusCode::kNoPosition:
      return "no position is given and none could be computed";
    case StatusCode::kInternalError:
      return "internal error of the library";
    case StatusCode::kNotStarted:
      return "the session has not been started";
    case StatusCode::kAlreadyStarted:
      return "the session has been started before";
    case StatusCode::kBadConfig:
      return "a value of the configuration is out of its range";
    case StatusCode::kBadArgument:
      return "an argument is null or too large";
    case StatusCode::kNoMemory:
      return "there is not enough memory";
    case StatusCode::kImplausible:
      return "the result is not plausible: check the interval and look for duplicate epochs";
  }
  return "unknown status";
}

/// The outcome of a call: a code and what it means in this place.
class [[nodiscard]] Status {
 public:
  constexpr Status() = default;
  constexpr Status(StatusCode code) : code_(code), text_(StatusText(code)) {}  // NOLINT: a code is a status
  /// @param code  the outcome
  /// @param text  what it means here; outlives the status: a literal
  constexpr Status(StatusCode code, const char* text) : code_(code), text_(text) {}

  constexpr StatusCode Code() const { return code_; }
  /// One sentence without a full stop; never null.
  constexpr const char* Text() const { return text_; }
  constexpr bool Ok() const { return code_ == StatusCode::kOk; }
  constexpr explicit operator bool() const { return Ok(); }

 private:
  StatusCode code_ = StatusCode::kOk;
  const char* text_ = StatusText(StatusCode::kOk);
};

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_STATUS_HPP

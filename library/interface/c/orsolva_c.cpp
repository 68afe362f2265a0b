// The C interface over session.hpp: checks what C cannot express, and lets no exception out.
#include "orsolva/orsolva_c.h"

#include <array>
#include <new>

#include "orsolva/session.hpp"

struct orsolva_session {
  orsolva::Session Run;
};

namespace {

using orsolva::Outcome;
using orsolva::Status;
using orsolva::StatusCode;

constexpr orsolva_status Value(StatusCode code) { return static_cast<orsolva_status>(code); }
orsolva_status Value(const Status& status) { return Value(status.Code()); }

static_assert(ORSOLVA_OK == Value(StatusCode::kOk));
static_assert(ORSOLVA_NO_DATA == Value(StatusCode::kNoData));
static_assert(ORSOLVA_NO_NAVIGATION == Value(StatusCode::kNoNavigation));
static_assert(ORSOLVA_NO_POSITION == Value(StatusCode::kNoPosition));
static_assert(ORSOLVA_INTERNAL_ERROR == Value(StatusCode::kInternalError));
static_assert(ORSOLVA_NOT_STARTED == Value(StatusCode::kNotStarted));
static_assert(ORSOLVA_ALREADY_STARTED == Value(StatusCode::kAlreadyStarted));
static_assert(ORSOLVA_BAD_ARGUMENT == Value(StatusCode::kBadArgument));
static_assert(ORSOLVA_NO_MEMORY == Value(StatusCode::kNoMemory));
static_assert(ORSOLVA_IMPLAUSIBLE == Value(StatusCode::kImplausible));

/// Runs an operation; the only thing that can be thrown here is the lack of memory.
template <class Operation>
orsolva_status Guarded(Operation&& operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return ORSOLVA_NO_MEMORY;
  }
}

/// Whether a pointer of the host can be used as a record of the library.
template <class Record>
orsolva_status Check(const Record* record, std::size_t size) {
  if (record == nullptr) return ORSOLVA_BAD_ARGUMENT;
  return size == sizeof(Record) ? ORSOLVA_OK : ORSOLVA_BAD_SIZE;
}

template <class Record>
orsolva_status Give(const Outcome<Record>& outcome, Record* to) {
  if (outcome.record != nullptr) *to = *outcome.record;
  return Value(outcome.status);
}

}  // namespace

int32_t orsolva_abi_version(void) { return ORSOLVA_C_ABI; }

const char* orsolva_version(void) {
  // Without memory for the text the version stays empty.
  static const std::array<char, 32> version = [] {
    std::array<char, 32> text = {};
    Guarded([&] {
      orsolva::LibraryVersion().copy(text.data(), text.size() - 1);
      return ORSOLVA_OK;
    });
    return text;
  }();
  return version.data();
}

const char* orsolva_status_text(orsolva_status status) {
  if (status == ORSOLVA_BAD_SIZE) return "a record has another size than the library's";
  return orsolva::StatusText(static_cast<StatusCode>(status));
}

orsolva_status orsolva_config_init(config_qct* config, size_t config_size) {
  const orsolva_status fits = Check(config, config_size);
  if (fits != ORSOLVA_OK) return fits;
  return Guarded([&] { return Value(orsolva::Config().ToRecord(*config)); });
}

orsolva_session* orsolva_create(void) { return new (std::nothrow) orsolva_session; }

void orsolva_destroy(orsolva_session* session) { delete session; }

orsolva_status orsolva_start(orsolva_session* session, const config_qct* config, size_t config_size,
                             const NavBodyData_QC_gbt* navigation, size_t navigation_size) {
  if (session == nullptr) return ORSOLVA_BAD_ARGUMENT;
  const orsolva_status config_fits = Check(config, config_size);
  if (config_fits != ORSOLVA_OK) return config_fits;
  const orsolva_status navigation_fits = Check(navigation, navigation_size);
  if (navigation_fits != ORSOLVA_OK) return navigation_fits;
  return Guarded([&] { return Value(session->Run.Start(*config, *navigation)); });
}

orsolva_status orsolva_feed(orsolva_session* session, const ObsEpoch_QC_gbt* epochs, size_t count,
                            size_t epoch_size) {
  if (session == nullptr) return ORSOLVA_BAD_ARGUMENT;
  if (epoch_size != sizeof(ObsEpoch_QC_gbt)) return ORSOLVA_BAD_SIZE;
  return Guarded([&] { return Value(session->Run.Feed({epochs, count})); });
}

orsolva_status orsolva_result(const orsolva_session* session, result_qct* result, size_t result_size) {
  const orsolva_status fits = Check(result, result_size);
  if (session == nullptr || fits != ORSOLVA_OK) return session == nullptr ? ORSOLVA_BAD_ARGUMENT : fits;
  return Guarded([&] { return Give(session->Run.Result(), result); });
}

orsolva_status orsolva_code_result(const orsolva_session* session, total_code_qc_result* result,
                                   size_t result_size) {
  const orsolva_status fits = Check(result, result_size);
  if (session == nullptr || fits != ORSOLVA_OK) return session == nullptr ? ORSOLVA_BAD_ARGUMENT : fits;
  return Guarded([&] { return Give(session->Run.CodeResult(), result); });
}

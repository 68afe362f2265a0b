// One run of the library as an object: RAII over the eight exported functions (gnssqc.h), header-only, C++17.
//
//   orsolva::Session session;
//   orsolva::Status status = session.Start(config, navigation);
//   if (status) status = session.Feed(epochs);                // as often as there are batches, in time order
//   const auto result = session.Result();
//   if (result) Use(result->total.completeness); else Complain(result.status.Text());
//
// Nothing here throws but the containers a host fills itself. Wrong use (a batch before Start and the like)
// gives a Status and changes nothing. A session belongs to one thread at a time; different sessions share
// nothing and may run at once on several threads.
#ifndef ORSOLVA_INTERFACE_SESSION_HPP
#define ORSOLVA_INTERFACE_SESSION_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "config.hpp"
#include "gnssqc.h"
#include "records.h"
#include "signals.h"
#include "status.hpp"
#include "version.h"

namespace orsolva {

/// A view of consecutive records that somebody else owns; made from a vector, an array, or pointer and count.
template <class Record>
class Span {
 public:
  constexpr Span() = default;
  constexpr Span(const Record* data, std::size_t size) : data_(data), size_(size) {}
  template <class Container,
            class = decltype(static_cast<const Record*>(std::declval<const Container&>().data()))>
  constexpr Span(const Container& records)
      : data_(records.data()), size_(records.size()) {}  // NOLINT: a view
  template <std::size_t N>
  constexpr Span(const Record (&records)[N]) : data_(records), size_(N) {}  // NOLINT: a view

  constexpr const Record* data() const { return data_; }
  constexpr std::size_t size() const { return size_; }
  constexpr bool empty() const { return size_ == 0; }

 private:
  const Record* data_ = nullptr;
  std::size_t size_ = 0;
};

/// Broadcast records of a run, as views: Start copies what it needs.
struct Navigation {
  Span<GpsEph_gbt> gps;
  Span<GloEph_gbt> glonass;
  Span<BdsEph_gbt> bds;
  Span<GalEph_gbt> galileo;
  Span<GpsEph_gbt> qzss;
};

/// A record and whether it was obtained. The record is null after every failure but kImplausible.
template <class Record>
struct Outcome {
  Status status;
  std::unique_ptr<Record> record;  ///< owned: the result records take 115 and 320 KiB

  explicit operator bool() const { return status.Ok(); }
  const Record& operator*() const { return *record; }
  const Record* operator->() const { return record.get(); }
};

/// One run, from Start to its results. Moved, never copied; a session that was moved from can be started.
class Session {
 public:
  /// Takes configuration and navigation set; both may go away afterwards.
  /// @return kAlreadyStarted, kBadConfig, kBadArgument, kNoNavigation, kNoMemory or kInternalError; the
  /// session
  ///         is as before then
  Status Start(const Config& config, const Navigation& navigation);
  Status Start(const Config& config, const NavBodyData_QC_gbt& navigation);
  /// The same from the records of the library, which are taken as they are.
  Status Start(const config_qct& config, const NavBodyData_QC_gbt& navigation);

  /// Takes one batch, its epochs in time order and later than those before. The first batch that is accepted
  /// decides which signals are judged.
  /// @return kNoData or kNoPosition: the batch is not measured and others may follow; kInternalError: the
  /// figures of
  ///         the run stay incomplete, start another session; kNotStarted or kBadArgument: nothing happened
  Status Feed(Span<ObsEpoch_QC_gbt> epochs);

  /// The result of all batches so far; may be requested at any time and changes nothing.
  /// @return kNotStarted, kNoData before the first accepted batch, kNoMemory, kInternalError, or kImplausible
  /// with
  ///         the record filled
  Outcome<result_qct> Result() const;
  /// The result per signal code of all batches so far; the same rules. An error inside the library leaves a
  /// record without codes.
  Outcome<total_code_qc_result> CodeResult() const;

  bool Started() const { return handle_ != nullptr; }
  /// For the functions of gnssqc.h and detail.h; null before Start. The session keeps ownership.
  unsigned long long* Handle() const { return handle_.get(); }

 private:
  struct Dispose {
    void operator()(unsigned long long* handle) const { DiposeProcess(handle); }
  };

  template <class Record>
  Outcome<Record> NewRecord() const;

  std::unique_ptr<unsigned long long, Dispose> handle_;
  bool has_data_ = false;
};

/// The identification text of the loaded library: name, version, date of build, in four lines.
inline std::string LibraryBanner() {
  char buffer[256] = {};
  GetGNSSQCLibVersion(buffer);
  return buffer;
}

/// The version of the loaded library, such as "1.2.9"; that of the headers is ORSOLVA_VERSION_STRING.
inline std::string LibraryVersion() {
  constexpr char kKey[] = "library version: V";
  const std::string banner = LibraryBanner();
  const std::size_t key = banner.find(kKey);
  if (key == std::string::npos) return {};
  const std::size_t begin = key + sizeof kKey - 1;
  return banner.substr(begin, banner.find('\n', begin) - begin);
}

// What follows is not for hosts to read.

namespace session_internal {

template <class Record>
inline bool Count(Span<Record> records, std::int32_t& count, const Record*& first) {
  if (records.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) return false;
  if (records.data() == nullptr && !records.empty()) return false;
  count = static_cast<std::int32_t>(records.size());
  first = records.data();
  return true;
}

/// Whether every list of a navigation set has its records.
inline bool IsWhole(const NavBodyData_QC_gbt& body) {
  const auto whole = [](std::int32_t count, const void* first) {
    return count == 0 || (count > 0 && first != nullptr);
  };
  return whole(body.gps_num, body.gps_eph) && whole(body.glo_num, body.glo_eph) &&
         whole(body.bds_num, body.bds_eph) && whole(body.gal_num, body.gal_eph) &&
         whole(body.qzs_num, body.qzs_eph);
}

inline bool IsEmpty(const NavBodyData_QC_gbt& body) {
  return body.gps_num == 0 && body.glo_num == 0 && body.bds_num == 0 && body.gal_num == 0 &&
         body.qzs_num == 0;
}

/// The rule of GetAllPeriodResult: what is refused in spite of it was not filled.
inline bool IsPlausible(const result_qct& result) {
  return result.lost_epochs >= 0 && result.total.completeness >= 0.0 && result.total.completeness <= 1.0;
}

inline bool Body(const Navigation& from, NavBodyData_QC_gbt& to) {
  return Count(from.gps, to.gps_num, to.gps_eph) && Count(from.glonass, to.glo_num, to.glo_eph) &&
         Count(from.bds, to.bds_num, to.bds_eph) && Count(from.galileo, to.gal_num, to.gal_eph) &&
         Count(from.qzss, to.qzs_num, to.qzs_eph);
}

}  // namespace session_internal

inline Status Session::Start(const Config& config, const Navigation& navigation) {
  NavBodyData_QC_gbt body = {};
  if (!session_internal::Body(navigation, body)) return StatusCode::kBadArgument;
  return Start(config, body);
}

inline Status Session::Start(const Config& config, const NavBodyData_QC_gbt& navigation) {
  config_qct record = {};
  const Status status = config.ToRecord(record);
  return status ? Start(record, navigation) : status;
}

inline Status Session::Start(const config_qct& config, const NavBodyData_QC_gbt& navigation) {
  if (handle_ != nullptr) return StatusCode::kAlreadyStarted;
  if (!session_internal::IsWhole(navigation)) return StatusCode::kBadArgument;
  if (session_internal::IsEmpty(navigation)) return StatusCode::kNoNavigation;
  std::unique_ptr<unsigned long long, Dispose> handle(CreatQcProcess());
  if (handle == nullptr) return StatusCode::kNoMemory;
  if (!InitialQc(navigation, &config, handle.get())) return StatusCode::kInternalError;
  handle_ = std::move(handle);
  has_data_ = false;
  return {};
}

inline Status Session::Feed(Span<ObsEpoch_QC_gbt> epochs) {
  if (handle_ == nullptr) return StatusCode::kNotStarted;
  ObsBodyData_QC_gbt body = {};
  if (!session_internal::Count(epochs, body.epoch_num, body.epochs)) return StatusCode::kBadArgument;
  const GNSSQC_STATE state = GNSSQCPlus(body, handle_.get());
  has_data_ = has_data_ || state == GNSSQC_OK;
  return static_cast<StatusCode>(state);
}

template <class Record>
Outcome<Record> Session::NewRecord() const {
  if (handle_ == nullptr) return {StatusCode::kNotStarted, nullptr};
  if (!has_data_) return {{StatusCode::kNoData, "no batch has been taken"}, nullptr};
  std::unique_ptr<Record> record(new (std::nothrow) Record());
  const StatusCode code = record == nullptr ? StatusCode::kNoMemory : StatusCode::kOk;
  return {code, std::move(record)};
}

inline Outcome<result_qct> Session::Result() const {
  Outcome<result_qct> outcome = NewRecord<result_qct>();
  if (!outcome || GetAllPeriodResult(handle_.get(), outcome.record.get())) return outcome;
  if (!session_internal::IsPlausible(*outcome)) {
    outcome.status = StatusCode::kImplausible;
    return outcome;
  }
  return {StatusCode::kInternalError, nullptr};
}

inline Outcome<total_code_qc_result> Session::CodeResult() const {
  Outcome<total_code_qc_result> outcome = NewRecord<total_code_qc_result>();
  if (outcome) GetEachCodeResult(handle_.get(), *outcome.record);
  return outcome;
}

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_SESSION_HPP

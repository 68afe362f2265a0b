// One request to an NTRIP caster, by libcurl.
//
// NTRIP 1 replies "ICY 200 OK" and sends the stream, or "SOURCETABLE 200 OK" and the table where the mount
// point is unknown or none is named; NTRIP 2 is HTTP 1.1 with chunks (RTCM 10410.1 as the caster operators'
// public guides describe it: software.rtcm-ntrip.org, gssc.esa.int/navipedia, "NTRIP"). libcurl takes such
// status lines for those of HTTP 1.0 where it is given them.
#ifndef ORSOLVA_LIVE_SOURCES_CASTER_REQUEST_H
#define ORSOLVA_LIVE_SOURCES_CASTER_REQUEST_H

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "host/live/sources/byte_stream.h"

namespace orsolva_host::live {

class CasterRequest {
 public:
  /// For a mount point, with user and password, or with an empty one for the table, without them.
  CasterRequest(const SourceSpec& spec, const std::string& mount, const ConnectionOptions& options);
  ~CasterRequest();
  CasterRequest(const CasterRequest&) = delete;
  CasterRequest& operator=(const CasterRequest&) = delete;

  /// GGA in the header of the request, where NTRIP 2 has it.
  void AddPosition(const std::array<double, 3>& llh);
  /// GGA lines on the open connection as well: when the caster has replied, and every ten seconds. To be
  /// called before the request is handed to libcurl. Both versions take them, NTRIP 1 nothing else.
  void SendPositions(const std::array<double, 3>& llh);
  /// Sends a line that is due; to be called now and then, at least twice a second.
  void SendDueLine();

  CURL* Handle() const { return easy_; }
  const std::string& Bytes() const { return bytes_; }
  std::string TakeBytes() { return std::exchange(bytes_, {}); }
  /// Of the response; 0 before it.
  long Status() const;
  bool IsTable() const { return is_table_; }
  /// Whether a connection, with TLS where it is asked for, was established.
  bool WasConnected() const;
  std::chrono::steady_clock::time_point LastByte() const { return last_; }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kLineEvery{10};

  static std::size_t OnBytes(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnSend(char* bytes, std::size_t size, std::size_t count, void* self);
  void SetOptions(const SourceSpec& spec, const std::string& mount, const ConnectionOptions& options);
  void AddHeader(const std::string& line) { headers_ = curl_slist_append(headers_, line.c_str()); }
  template <typename Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(easy_, option, value);
  }

  CURL* easy_;
  curl_slist* headers_ = nullptr;
  curl_slist* status_lines_ = nullptr;
  std::string bytes_;
  bool is_table_ = false;
  bool replied_ = false;
  std::optional<std::array<double, 3>> llh_;  ///< of GGA lines
  std::string line_;                          ///< the rest of one that is being sent
  Clock::time_point next_line_;
  Clock::time_point last_ = Clock::now();
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_CASTER_REQUEST_H

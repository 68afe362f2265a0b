#include "host/live/sources/caster_request.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <utility>

#include "host/live/sources/gga_line.h"

namespace orsolva_host::live {
namespace {

constexpr long kConnectTime_s = 15;
constexpr std::size_t kMaxBuffered = std::size_t{1} << 20;

/// Once for all threads.
void InitialiseCurl() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string UrlOf(const SourceSpec& spec, const std::string& mount) {
  const bool six = spec.host.find(':') != std::string::npos;
  return std::string(spec.tls ? "https://" : "http://") + (six ? "[" + spec.host + "]" : spec.host) + ":" +
         std::to_string(spec.port) + "/" + mount;
}

std::string LineNow(const std::array<double, 3>& llh) { return GgaLine(llh, std::time(nullptr)); }

}  // namespace

CasterRequest::CasterRequest(const SourceSpec& spec, const std::string& mount,
                             const ConnectionOptions& options) {
  InitialiseCurl();
  easy_ = curl_easy_init();
  SetOptions(spec, mount, options);
}

CasterRequest::~CasterRequest() {
  curl_easy_cleanup(easy_);
  curl_slist_free_all(headers_);
  curl_slist_free_all(status_lines_);
}

void CasterRequest::SetOptions(const SourceSpec& spec, const std::string& mount,
                               const ConnectionOptions& options) {
  Set(CURLOPT_URL, UrlOf(spec, mount).c_str());
  Set(CURLOPT_PROTOCOLS_STR, "http,https");
  Set(CURLOPT_FOLLOWLOCATION, 0L);
  Set(CURLOPT_USERAGENT, "NTRIP Orsolva");
  Set(CURLOPT_HTTP09_ALLOWED, 0L);
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_CONNECTTIMEOUT, kConnectTime_s);
  Set(CURLOPT_TCP_KEEPALIVE, 1L);
  // A password goes to this host and nowhere else, and no file of the user adds one.
  Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  if (!spec.user.empty() && !mount.empty()) {
    Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    Set(CURLOPT_USERNAME, spec.user.c_str());
    Set(CURLOPT_PASSWORD, spec.password.c_str());
  }
  if (!options.certificates.empty()) Set(CURLOPT_CAINFO, options.certificates.c_str());
  AddHeader("Ntrip-Version: Ntrip/2.0");
  AddHeader("Connection: close");
  Set(CURLOPT_HTTPHEADER, headers_);
  // Those of NTRIP 1; without them libcurl takes such an answer for no HTTP at all.
  status_lines_ = curl_slist_append(status_lines_, "ICY 200 OK");
  status_lines_ = curl_slist_append(status_lines_, "SOURCETABLE 200 OK");
  Set(CURLOPT_HTTP200ALIASES, status_lines_);
  Set(CURLOPT_WRITEFUNCTION, &CasterRequest::OnBytes);
  Set(CURLOPT_WRITEDATA, static_cast<void*>(this));
  Set(CURLOPT_HEADERFUNCTION, &CasterRequest::OnHeader);
  Set(CURLOPT_HEADERDATA, static_cast<void*>(this));
}

void CasterRequest::AddPosition(const std::array<double, 3>& llh) {
  AddHeader("Ntrip-GGA: " + LineNow(llh));
  Set(CURLOPT_HTTPHEADER, headers_);
}

/// To libcurl the lines are the body of the request, of unknown length. Without "Transfer-Encoding: chunked",
/// which it adds unless the header is taken away, they go out as they are.
void CasterRequest::SendPositions(const std::array<double, 3>& llh) {
  llh_ = llh;
  Set(CURLOPT_UPLOAD, 1L);
  Set(CURLOPT_CUSTOMREQUEST, "GET");
  AddHeader("Transfer-Encoding:");
  AddHeader("Expect:");
  Set(CURLOPT_HTTPHEADER, headers_);
  Set(CURLOPT_READFUNCTION, &CasterRequest::OnSend);
  Set(CURLOPT_READDATA, static_cast<void*>(this));
}

void CasterRequest::SendDueLine() {
  // Also where no line is due: libcurl finds a transfer whose sending pauses unended when the caster closes.
  if (llh_ && replied_) curl_easy_pause(easy_, CURLPAUSE_CONT);
}

std::size_t CasterRequest::OnSend(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& request = *static_cast<CasterRequest*>(self);
  const auto now = Clock::now();
  if (request.line_.empty() && request.replied_ && now >= request.next_line_) {
    request.line_ = LineNow(*request.llh_) + "\r\n";
    request.next_line_ = now + kLineEvery;
  }
  if (request.line_.empty()) return CURL_READFUNC_PAUSE;
  const std::size_t sent = request.line_.copy(bytes, size * count);
  request.line_.erase(0, sent);
  return sent;
}

std::size_t CasterRequest::OnBytes(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& request = *static_cast<CasterRequest*>(self);
  if (request.bytes_.size() > kMaxBuffered) return 0;
  request.bytes_.append(bytes, size * count);
  request.last_ = Clock::now();
  return size * count;
}

std::size_t CasterRequest::OnHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
  const std::string line(bytes, size * count);
  auto& request = *static_cast<CasterRequest*>(self);
  request.replied_ = true;
  if (line.rfind("SOURCETABLE", 0) == 0 || line.find("gnss/sourcetable") != std::string::npos)
    request.is_table_ = true;
  return size * count;
}

long CasterRequest::Status() const {
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

bool CasterRequest::WasConnected() const {
  curl_off_t us = 0;
  curl_easy_getinfo(easy_, CURLINFO_PRETRANSFER_TIME_T, &us);
  return us > 0;
}

}  // namespace orsolva_host::live

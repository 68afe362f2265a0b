// A mount point of an NTRIP caster, by libcurl.
//
// NTRIP 1 replies "ICY 200 OK" and sends the stream, or "SOURCETABLE 200 OK" where the mount point is
// unknown; NTRIP 2 is HTTP 1.1 with chunks (RTCM 10410.1 as the caster operators' public guides describe it:
// software.rtcm-ntrip.org, gssc.esa.int/navipedia, "NTRIP"). libcurl takes such status lines for those of
// HTTP 1.0 where it is given them.
#include <curl/curl.h>

#include <chrono>
#include <ctime>
#include <mutex>
#include <utility>

#include "host/live/sources/byte_stream.h"
#include "host/live/sources/gga_line.h"

namespace orsolva_host::live {
namespace {

using std::chrono::steady_clock;

constexpr long kConnectTime_s = 15;
constexpr std::size_t kMaxBuffered = std::size_t{1} << 20;
constexpr long kUnauthorized = 401, kForbidden = 403, kNotFound = 404;

/// Once for all threads.
void InitialiseCurl() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string UrlOf(const SourceSpec& spec) {
  const bool six = spec.host.find(':') != std::string::npos;
  return std::string(spec.tls ? "https://" : "http://") + (six ? "[" + spec.host + "]" : spec.host) + ":" +
         std::to_string(spec.port) + "/" + spec.mount;
}

class CasterStream : public ByteStream {
 public:
  CasterStream(const SourceSpec& spec, const StreamOptions& options);
  ~CasterStream() override;
  CasterStream(const CasterStream&) = delete;
  CasterStream& operator=(const CasterStream&) = delete;
  ReadOutcome Read(std::chrono::milliseconds longest) override;

 private:
  static std::size_t OnBytes(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  ReadOutcome Ended(CURLcode code) const;
  ReadOutcome Refusal(long status) const;
  void SetOptions(const SourceSpec& spec, const StreamOptions& options);

  CURL* easy_;
  CURLM* multi_;
  curl_slist* headers_ = nullptr;
  curl_slist* status_lines_ = nullptr;
  std::string buffer_;
  bool is_table_ = false;  ///< a source table came instead of a stream
  std::chrono::seconds silence_;
  steady_clock::time_point last_ = steady_clock::now();
};

CasterStream::CasterStream(const SourceSpec& spec, const StreamOptions& options) : silence_(options.silence) {
  InitialiseCurl();
  easy_ = curl_easy_init();
  multi_ = curl_multi_init();
  SetOptions(spec, options);
  curl_multi_add_handle(multi_, easy_);
}

CasterStream::~CasterStream() {
  curl_multi_remove_handle(multi_, easy_);
  curl_multi_cleanup(multi_);
  curl_easy_cleanup(easy_);
  curl_slist_free_all(headers_);
  curl_slist_free_all(status_lines_);
}

void CasterStream::SetOptions(const SourceSpec& spec, const StreamOptions& options) {
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_, option, value); };
  set(CURLOPT_URL, UrlOf(spec).c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_USERAGENT, "NTRIP Orsolva");
  set(CURLOPT_HTTP09_ALLOWED, 0L);
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_CONNECTTIMEOUT, kConnectTime_s);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  // A password goes to this host and nowhere else, and no file of the user adds one.
  set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  if (!spec.user.empty()) {
    set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    set(CURLOPT_USERNAME, spec.user.c_str());
    set(CURLOPT_PASSWORD, spec.password.c_str());
  }
  if (!options.certificates.empty()) set(CURLOPT_CAINFO, options.certificates.c_str());
  headers_ = curl_slist_append(headers_, "Ntrip-Version: Ntrip/2.0");
  headers_ = curl_slist_append(headers_, "Connection: close");
  // NTRIP 2 takes the position of a rover as a header of the request; a caster that asks for none ignores it.
  if (options.llh) {
    const std::string line = "Ntrip-GGA: " + GgaLine(*options.llh, std::time(nullptr));
    headers_ = curl_slist_append(headers_, line.c_str());
  }
  set(CURLOPT_HTTPHEADER, headers_);
  // Those of NTRIP 1; without them libcurl takes such an answer for no HTTP at all.
  status_lines_ = curl_slist_append(status_lines_, "ICY 200 OK");
  status_lines_ = curl_slist_append(status_lines_, "SOURCETABLE 200 OK");
  set(CURLOPT_HTTP200ALIASES, status_lines_);
  set(CURLOPT_WRITEFUNCTION, &CasterStream::OnBytes);
  set(CURLOPT_WRITEDATA, static_cast<void*>(this));
  set(CURLOPT_HEADERFUNCTION, &CasterStream::OnHeader);
  set(CURLOPT_HEADERDATA, static_cast<void*>(this));
}

std::size_t CasterStream::OnBytes(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& stream = *static_cast<CasterStream*>(self);
  if (stream.buffer_.size() > kMaxBuffered) return 0;
  stream.buffer_.append(bytes, size * count);
  stream.last_ = steady_clock::now();
  return size * count;
}

std::size_t CasterStream::OnHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
  const std::string line(bytes, size * count);
  auto& stream = *static_cast<CasterStream*>(self);
  if (line.rfind("SOURCETABLE", 0) == 0 || line.find("gnss/sourcetable") != std::string::npos)
    stream.is_table_ = true;
  return size * count;
}

ReadOutcome CasterStream::Refusal(long status) const {
  const auto refused = [](std::string problem) {
    return ReadOutcome{ReadOutcome::State::kRefused, "", std::move(problem)};
  };
  if (is_table_ || status == kNotFound) return refused("the caster does not know the mount point");
  if (status == kUnauthorized || status == kForbidden)
    return refused("the caster refuses user or password (" + std::to_string(status) + ")");
  return {ReadOutcome::State::kEnd, "", "the caster replied with status " + std::to_string(status)};
}

ReadOutcome CasterStream::Ended(CURLcode code) const {
  long status = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
  if (is_table_ || status >= 300) return Refusal(status);
  if (code == CURLE_OK) return {ReadOutcome::State::kEnd, "", "the caster ended the stream"};
  if (code == CURLE_WEIRD_SERVER_REPLY || code == CURLE_UNSUPPORTED_PROTOCOL) {
    return {ReadOutcome::State::kRefused, "",
            "what replies is no caster that this program reads. One that sends data right behind "
            "\"ICY 200 OK\" can be read through a relay with tcp://"};
  }
  return {ReadOutcome::State::kEnd, "", curl_easy_strerror(code)};
}

ReadOutcome CasterStream::Read(std::chrono::milliseconds longest) {
  const auto until = steady_clock::now() + longest;
  while (true) {
    int running = 0;
    curl_multi_perform(multi_, &running);
    long status = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    if (!buffer_.empty() && !is_table_ && status < 300)
      return {ReadOutcome::State::kData, std::exchange(buffer_, {}), ""};
    if (running == 0) {
      int left = 0;
      const CURLMsg* const message = curl_multi_info_read(multi_, &left);
      return Ended(message == nullptr ? CURLE_RECV_ERROR : message->data.result);
    }
    if (is_table_) return Refusal(status);
    const auto now = steady_clock::now();
    if (now - last_ > silence_)
      return {ReadOutcome::State::kEnd, "", "no byte came for " + std::to_string(silence_.count()) + " s"};
    if (now >= until) return {};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - now);
    curl_multi_poll(multi_, nullptr, 0, static_cast<int>(left.count()) + 1, nullptr);
  }
}

}  // namespace

std::unique_ptr<ByteStream> OpenCaster(const SourceSpec& spec, const StreamOptions& options) {
  return std::make_unique<CasterStream>(spec, options);
}

bool HasCasters() { return true; }

}  // namespace orsolva_host::live

// A mount point of an NTRIP caster: first the source table where it is not known what the mount point asks
// for, then the stream.
#include <chrono>
#include <memory>
#include <utility>

#include "host/live/sources/byte_stream.h"
#include "host/live/sources/caster_request.h"

namespace orsolva_host::live {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kTableTime{10};
constexpr std::chrono::hours kAskAgain{1};
constexpr std::chrono::seconds kSilenceWithoutPosition{20};
constexpr long kUnauthorized = 401, kForbidden = 403, kNotFound = 404;

class CasterStream : public ByteStream {
 public:
  CasterStream(const SourceSpec& spec, const ConnectionOptions& options);
  ~CasterStream() override;
  CasterStream(const CasterStream&) = delete;
  CasterStream& operator=(const CasterStream&) = delete;
  ReadOutcome Read(std::chrono::milliseconds longest) override;

 private:
  void Begin(const std::string& mount);
  void BeginStream();
  bool KnowsWishes() const;
  /// Both: what Read returns, or nothing while it waits. @param running  whether libcurl has more to do
  std::optional<ReadOutcome> LookAtTable(bool running);
  std::optional<ReadOutcome> LookAtStream(bool running);
  CURLcode Result() const;
  ReadOutcome Ended(CURLcode code) const;
  ReadOutcome Refusal(long status) const;
  ReadOutcome Silence() const;
  bool MissesPosition() const { return wants_position_ && !options_.llh; }

  SourceSpec spec_;
  ConnectionOptions options_;
  CURLM* multi_;
  std::unique_ptr<CasterRequest> request_;
  std::unique_ptr<SourceTableSearch> search_;  ///< while the table is read
  steady_clock::time_point begun_;
  bool wants_position_ = false;  ///< as the table says
};

CasterStream::CasterStream(const SourceSpec& spec, const ConnectionOptions& options)
    : spec_(spec), options_(options), multi_(curl_multi_init()) {
  if (KnowsWishes()) {
    BeginStream();
  } else {
    search_ = std::make_unique<SourceTableSearch>(spec.mount);
    Begin("");
  }
}

CasterStream::~CasterStream() {
  curl_multi_remove_handle(multi_, request_->Handle());
  curl_multi_cleanup(multi_);
}

bool CasterStream::KnowsWishes() const {
  const MountWishes* const wishes = options_.wishes;
  return wishes == nullptr || (wishes->asked && steady_clock::now() - *wishes->asked < kAskAgain);
}

void CasterStream::Begin(const std::string& mount) {
  if (request_) curl_multi_remove_handle(multi_, request_->Handle());
  request_ = std::make_unique<CasterRequest>(spec_, mount, options_);
  begun_ = steady_clock::now();
  if (mount.empty()) curl_multi_add_handle(multi_, request_->Handle());
}

/// Who is known to want no position gets none; where no table says so, NTRIP 2 gets it in the header.
void CasterStream::BeginStream() {
  search_.reset();
  Begin(spec_.mount);
  const std::optional<bool> wanted = options_.wishes == nullptr ? std::nullopt : options_.wishes->position;
  wants_position_ = wanted.value_or(false);
  if (options_.llh && wanted.value_or(true)) request_->AddPosition(*options_.llh);
  if (options_.llh && wants_position_) request_->SendPositions(*options_.llh);
  if (MissesPosition()) options_.silence = std::min(options_.silence, kSilenceWithoutPosition);
  curl_multi_add_handle(multi_, request_->Handle());
}

CURLcode CasterStream::Result() const {
  int left = 0;
  const CURLMsg* const message = curl_multi_info_read(multi_, &left);
  return message == nullptr ? CURLE_RECV_ERROR : message->data.result;
}

ReadOutcome CasterStream::Refusal(long status) const {
  const auto refused = [](std::string problem) {
    return ReadOutcome{ReadOutcome::State::kRefused, "", std::move(problem)};
  };
  if (request_->IsTable() || status == kNotFound) return refused("the caster does not know the mount point");
  if (status == kUnauthorized || status == kForbidden)
    return refused("the caster refuses user or password (" + std::to_string(status) + ")");
  return {ReadOutcome::State::kEnd, "", "the caster replied with status " + std::to_string(status)};
}

ReadOutcome CasterStream::Silence() const {
  const std::string silent = "no byte came for " + std::to_string(options_.silence.count()) + " s";
  if (!MissesPosition()) return {ReadOutcome::State::kEnd, "", silent};
  return {ReadOutcome::State::kRefused, "",
          silent +
              ": this mount point sends nothing before it has a position (GGA), and that of the antenna is "
              "not known; give it as position of the station"};
}

ReadOutcome CasterStream::Ended(CURLcode code) const {
  const long status = request_->Status();
  if (request_->IsTable() || status >= 300) return Refusal(status);
  if (code == CURLE_OK) {
    return {ReadOutcome::State::kEnd, "",
            std::string("the caster ended the stream") +
                (MissesPosition() ? "; it asks for a position (GGA): give that of the station" : "")};
  }
  if (code == CURLE_WEIRD_SERVER_REPLY || code == CURLE_UNSUPPORTED_PROTOCOL) {
    return {ReadOutcome::State::kRefused, "",
            "what replies is no caster that this program reads. One that sends data right behind "
            "\"ICY 200 OK\" can be read through a relay with tcp://"};
  }
  return {ReadOutcome::State::kEnd, "", curl_easy_strerror(code)};
}

/// The stream follows whatever comes of the table, unless there was no connection at all.
std::optional<ReadOutcome> CasterStream::LookAtTable(bool running) {
  const bool more = search_->Take(request_->TakeBytes());
  const CURLcode result = running ? CURLE_OK : Result();
  const bool late = steady_clock::now() - begun_ > kTableTime && request_->WasConnected();
  if (running && more && !late) return std::nullopt;
  if (result != CURLE_OK && !request_->WasConnected()) return Ended(result);
  // A table that did not come says nothing; what an earlier one said stays.
  if (const auto wants = search_->WantsPosition()) options_.wishes->position = wants;
  options_.wishes->asked = steady_clock::now();
  BeginStream();
  return std::nullopt;
}

std::optional<ReadOutcome> CasterStream::LookAtStream(bool running) {
  const long status = request_->Status();
  if (!request_->Bytes().empty() && !request_->IsTable() && status < 300)
    return ReadOutcome{ReadOutcome::State::kData, request_->TakeBytes(), ""};
  if (!running) return Ended(Result());
  if (request_->IsTable()) return Refusal(status);
  if (steady_clock::now() - request_->LastByte() > options_.silence) return Silence();
  return std::nullopt;
}

ReadOutcome CasterStream::Read(std::chrono::milliseconds longest) {
  const auto until = steady_clock::now() + longest;
  while (true) {
    request_->SendDueLine();
    int running = 0;
    curl_multi_perform(multi_, &running);
    const bool was_table = search_ != nullptr;
    auto outcome = was_table ? LookAtTable(running > 0) : LookAtStream(running > 0);
    if (outcome) return *std::move(outcome);
    if (was_table && !search_) continue;  // the stream has yet to begin
    const auto now = steady_clock::now();
    if (now >= until) return {};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - now);
    curl_multi_poll(multi_, nullptr, 0, static_cast<int>(left.count()) + 1, nullptr);
  }
}

}  // namespace

std::unique_ptr<ByteStream> OpenCaster(const SourceSpec& spec, const ConnectionOptions& options) {
  return std::make_unique<CasterStream>(spec, options);
}

bool HasCasters() { return true; }

}  // namespace orsolva_host::live

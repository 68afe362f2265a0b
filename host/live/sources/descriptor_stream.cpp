#include "host/live/sources/descriptor_stream.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

namespace orsolva_host::live {
namespace {

constexpr std::size_t kReadAtOnce = 16 * 1024;

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept
    : number_(std::exchange(other.number_, -1)), owned_(other.owned_) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(number_, other.number_);
  std::swap(owned_, other.owned_);
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0 && owned_) close(number_);
}

std::string ReasonOf(int error) { return std::system_category().message(error); }

ReadOutcome Over(std::string problem) { return {ReadOutcome::State::kEnd, "", std::move(problem)}; }

DescriptorStream::DescriptorStream(Descriptor descriptor, std::string problem, std::chrono::seconds silence,
                                   const char* end)
    : descriptor_(std::move(descriptor)),
      problem_(std::move(problem)),
      silence_(silence),
      end_(end),
      last_(std::chrono::steady_clock::now()) {}

ReadOutcome DescriptorStream::Read(std::chrono::milliseconds longest) {
  if (!problem_.empty()) return Over(problem_);
  pollfd wanted = {descriptor_.Number(), POLLIN, 0};
  const int ready = poll(&wanted, 1, static_cast<int>(longest.count()));
  if (ready < 0 && errno != EINTR) return Over("waiting failed: " + ReasonOf(errno));
  if (ready <= 0) return Nothing();
  std::array<char, kReadAtOnce> bytes;
  const ssize_t count = read(descriptor_.Number(), bytes.data(), bytes.size());
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return Nothing();
  if (count < 0) return Over("reading failed: " + ReasonOf(errno));
  if (count == 0) return Over(end_);
  last_ = std::chrono::steady_clock::now();
  return {ReadOutcome::State::kData, std::string(bytes.data(), static_cast<std::size_t>(count)), ""};
}

ReadOutcome DescriptorStream::Nothing() const {
  if (silence_.count() == 0 || std::chrono::steady_clock::now() - last_ < silence_) return {};
  return Over("no byte came for " + std::to_string(silence_.count()) + " s");
}

std::unique_ptr<ByteStream> OpenStandardInput() {
  return std::make_unique<DescriptorStream>(Descriptor(STDIN_FILENO, false), "", std::chrono::seconds(0),
                                            "standard input ended");
}

std::unique_ptr<ByteStream> OpenStream(const SourceSpec& spec, const ConnectionOptions& options) {
  if (spec.kind == SourceKind::kNtrip) return OpenCaster(spec, options);
  if (spec.kind == SourceKind::kTcp) return OpenTcp(spec, options);
  if (spec.kind == SourceKind::kSerial) return OpenSerial(spec, options);
  return OpenStandardInput();
}

}  // namespace orsolva_host::live

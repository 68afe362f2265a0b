// In a build without libcurl.
#include "host/live/sources/byte_stream.h"

namespace orsolva_host::live {
namespace {

class NoCaster : public ByteStream {
 public:
  ReadOutcome Read(std::chrono::milliseconds) override {
    return {ReadOutcome::State::kRefused, "", "this program was built without libcurl and reads no casters"};
  }
};

}  // namespace

std::unique_ptr<ByteStream> OpenCaster(const SourceSpec&, const ConnectionOptions&) {
  return std::make_unique<NoCaster>();
}

bool HasCasters() { return false; }

}  // namespace orsolva_host::live

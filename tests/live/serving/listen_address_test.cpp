#include "host/live/serving/listen_address.h"

namespace orsolva_host::live {
namespace {

std::string Read(const std::string& text) {
  const auto address = ParseListenAddress(text);
  return address ? address->host + " " + std::to_string(address->port) : "none";
}

TEST(ListenAddress, ReadsHostAndPortOrThePortAlone) {
  EXPECT_EQ(Read("0.0.0.0:80"), "0.0.0.0 80");
  EXPECT_EQ(Read("localhost:9464"), "localhost 9464");
  EXPECT_EQ(Read("[::1]:9464"), "::1 9464");
  EXPECT_EQ(Read("9000"), "127.0.0.1 9000");
  EXPECT_EQ(Read("0"), "127.0.0.1 0");
}

TEST(ListenAddress, RefusesWhatIsNoAddress) {
  for (const char* text :
       {"", ":", ":80", "localhost:", "localhost", "::1:80", "[]:80", "a:65536", "a:-1", "a:8 0"}) {
    EXPECT_EQ(Read(text), "none") << text;
  }
}

TEST(ListenAddress, KnowsWhatOnlyThisMachineReaches) {
  EXPECT_TRUE(IsLoopback({"127.0.0.1", 1}));
  EXPECT_TRUE(IsLoopback({"::1", 1}));
  EXPECT_FALSE(IsLoopback({"0.0.0.0", 1}));
  EXPECT_FALSE(IsLoopback({"::", 1}));
  EXPECT_EQ(UrlOf({"::1", 80}), "http://[::1]:80/");
}

}  // namespace
}  // namespace orsolva_host::live

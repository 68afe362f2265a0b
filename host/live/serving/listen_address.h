// Where the service listens.
#ifndef ORSOLVA_LIVE_SERVING_LISTEN_ADDRESS_H
#define ORSOLVA_LIVE_SERVING_LISTEN_ADDRESS_H

#include <optional>
#include <string>

namespace orsolva_host::live {

/// Loopback by default: what is served has neither passwords nor encryption of its own.
struct ListenAddress {
  std::string host = "127.0.0.1";
  int port = 9464;  ///< 0: any that is free
};

/// "127.0.0.1:9464", "[::1]:9464", "localhost:9464" or the port alone.
/// @return std::nullopt for anything else, also ports above 65535
std::optional<ListenAddress> ParseListenAddress(const std::string& text);

/// Whether only programs of this machine reach it.
bool IsLoopback(const ListenAddress& address);

/// "http://127.0.0.1:9464/"
std::string UrlOf(const ListenAddress& address);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_LISTEN_ADDRESS_H

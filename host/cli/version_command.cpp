#include <cstdio>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "orsolva/session.hpp"

namespace orsolva_host {

Command VersionCommand() {
  return {"version", "Print name, version and build time of the library", {}, [] {
            std::puts(orsolva::LibraryBanner().c_str());
            return kGood;
          }};
}

}  // namespace orsolva_host

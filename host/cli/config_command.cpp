#include <cstdio>

#include "host/cli/commands.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"

namespace orsolva_host {

Command ConfigCommand() {
  return {"config", "Print a configuration file with every default", {}, [] {
            std::fputs(DefaultConfig(QcCommand()).c_str(), stdout);
            return kGood;
          }};
}

}  // namespace orsolva_host

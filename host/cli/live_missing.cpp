// `orsolva live` where its sockets and terminals are not.
#include <string>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {

Command LiveCommand() {
  return {"live",
          "Judge RTCM 3 streams as they run, with alarms",
          {},
          [] {
            PrintError(
                "live streams are judged on POSIX systems only. Record the stream and judge the file "
                "with `orsolva qc`.");
            return kRunFailed;
          },
          {kRunFailed, kWrongUsage}};
}

}  // namespace orsolva_host

// What the program answers to its caller.
#ifndef ORSOLVA_CLI_EXIT_CODES_H
#define ORSOLVA_CLI_EXIT_CODES_H

namespace orsolva_host {

constexpr int kGood = 0;
constexpr int kRunFailed = 1;
constexpr int kWrongUsage = 2;

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_EXIT_CODES_H

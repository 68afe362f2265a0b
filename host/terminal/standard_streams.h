// What the commands say on standard output and error beside their reports.
#ifndef ORSOLVA_TERMINAL_STANDARD_STREAMS_H
#define ORSOLVA_TERMINAL_STANDARD_STREAMS_H

#include <exception>
#include <string>

namespace orsolva_host {

/// @return whether all that was printed to standard output has arrived
bool FlushStandardOutput();

/// "orsolva: TEXT" on standard error. Control characters, which file names may hold, come as '?'.
void PrintError(const std::string& text);

/// What went wrong, in words for people.
std::string TextOf(const std::exception& error);

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_STANDARD_STREAMS_H

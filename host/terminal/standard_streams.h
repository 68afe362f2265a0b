// Standard output and standard error of the commands.
#ifndef ORSOLVA_TERMINAL_STANDARD_STREAMS_H
#define ORSOLVA_TERMINAL_STANDARD_STREAMS_H

#include <string>

namespace orsolva_host {

/// @return whether all that was printed to standard output has arrived
bool FlushStandardOutput();

/// "orsolva: TEXT" on standard error. Control characters, which file names may hold, are printed as '?'.
void PrintError(const std::string& text);

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_STANDARD_STREAMS_H

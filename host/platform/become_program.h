// Another program in the place of this one.
#ifndef ORSOLVA_PLATFORM_BECOME_PROGRAM_H
#define ORSOLVA_PLATFORM_BECOME_PROGRAM_H

#include <string>
#include <vector>

namespace orsolva_host {

/// Becomes another program, with the streams of this one; where the system cannot, runs it and waits.
/// @param words  the program, looked for on the path unless it names a folder, and its
/// arguments
/// @return the exit code where this program goes on; 127 when the other cannot be run
int BecomeProgram(const std::vector<std::string>& words);

}  // namespace orsolva_host

#endif  // ORSOLVA_PLATFORM_BECOME_PROGRAM_H

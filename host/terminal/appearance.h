// Colours and width of text on standard output.
#ifndef ORSOLVA_TERMINAL_APPEARANCE_H
#define ORSOLVA_TERMINAL_APPEARANCE_H

#include <cstddef>
#include <string>

namespace orsolva_host {

/// @param when  "always", "never" or "auto": on a terminal, but not a dumb one, and not with NO_COLOR set
bool UseColours(const std::string& when);

/// Columns of text: as asked for, else those of the terminal but at most 80, else 80.
/// @param asked  0: not asked for
std::size_t TextWidth(std::size_t asked);

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_APPEARANCE_H

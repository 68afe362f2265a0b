// Serial lines.
#ifndef ORSOLVA_LIVE_SOURCES_SERIAL_LINE_H
#define ORSOLVA_LIVE_SOURCES_SERIAL_LINE_H

#include <string>

namespace orsolva_host::live {

/// Whether a line can be set to a speed.
bool IsLineSpeed(unsigned baud);

/// All of them, between commas.
std::string LineSpeeds();

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_SERIAL_LINE_H

// Names of stations, and of the files that are called after them.
#ifndef ORSOLVA_LIVE_STATION_NAME_H
#define ORSOLVA_LIVE_STATION_NAME_H

#include <cstddef>
#include <string>

namespace orsolva_host::live {

/// In bytes. Written with three characters a byte, with a date and an ending, a name fits into the 255 bytes
/// of a file name.
constexpr std::size_t kLongestName = 75;

/// What is wrong with a name that was given; empty when nothing is.
std::string WrongWithName(const std::string& name);

/// A name that is allowed, from what a source is called: control characters and bytes that are no UTF-8
/// become
/// "_", and what is too long is cut.
std::string NameFrom(const std::string& found);

/// The name of a station's file without its ending: letters, digits, "-", "_" and "." stay, but for a dot at
/// the beginning; every other byte of ASCII is written as %XX. Different names give different files, and none
/// leads out of its folder.
std::string FileNameOf(const std::string& station);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATION_NAME_H

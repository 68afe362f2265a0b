// What operating systems do differently, in one place: terminals, patterns of file names, the folder of
// settings, standard streams, closed pipes and large memory. One source a system; the build takes the one of
// its target.
#ifndef ORSOLVA_PLATFORM_PLATFORM_H
#define ORSOLVA_PLATFORM_PLATFORM_H

#include <cstddef>
#include <string>
#include <vector>

namespace orsolva_host {

enum class Stream { kOutput, kError };

/// Whether a person sees what is written to the stream.
bool IsTerminal(Stream stream);

/// Columns of the terminal behind a stream; 0 when it is none.
std::size_t TerminalWidth(Stream stream);

/// The files a pattern with * and ? matches, in the order of their names; empty when it matches none. On
/// POSIX systems [ ] stand for one of several characters and every part of the path may be a pattern; on
/// Windows only the last part may.
std::vector<std::string> FilesMatching(const std::string& pattern);

/// The folder below which programs keep the user's settings; empty when the environment names none.
std::string SettingsFolder();

/// To be called first. The standard streams carry bytes as they are, and a terminal understands colours from
/// now on. The places of streams that the caller has closed are taken, so that no file that is opened later
/// gets their numbers and with them the report; reading or writing them stays an error.
void PrepareStreams();

/// Writing to a closed pipe, or beyond the user's limit on the size of files, fails instead of ending the
/// program.
void IgnoreSignalsOfWriting();

/// To be called first. Memory that one file needed is kept for the next one: given back and taken anew, its
/// pages would be filled with zeros again, and threads would wait for one another meanwhile.
void KeepFreedMemory();

/// Asks for huge pages behind memory that begins and ends at such a page; nothing where there are none.
inline constexpr std::size_t kHugePageBytes = std::size_t{1} << 21;
void PreferHugePages(void* memory, std::size_t bytes);

}  // namespace orsolva_host

#endif  // ORSOLVA_PLATFORM_PLATFORM_H

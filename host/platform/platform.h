// Differences between operating systems, in one place: terminals, file name patterns, the settings folder,
// standard streams, closed pipes and large memory. One source per system; the build selects that of its
// target.
#ifndef ORSOLVA_PLATFORM_PLATFORM_H
#define ORSOLVA_PLATFORM_PLATFORM_H

#include <cstddef>
#include <string>
#include <vector>

namespace orsolva_host {

enum class Stream { kOutput, kError };

/// Whether the stream is a terminal.
bool IsTerminal(Stream stream);

/// Columns of the terminal behind a stream; 0 if there is none.
std::size_t TerminalWidth(Stream stream);

/// The files that match a pattern with * and ?, in the order of their names; empty if there are none. On
/// POSIX systems [ ] match one of several characters and every part of the path may be a pattern; on Windows
/// only the last part may.
std::vector<std::string> FilesMatching(const std::string& pattern);

/// The folder in which programs keep the user's settings; empty if the environment names none.
std::string SettingsFolder();

/// To be called first. Switches the standard streams to binary mode and enables colours on a terminal. The
/// descriptors of streams that the caller has closed are occupied, so that no file opened later gets their
/// numbers and with them the report; reading or writing them remains an error.
void PrepareStreams();

/// Makes writing to a closed pipe, or beyond the user's file size limit, fail instead of ending the program.
void IgnoreSignalsOfWriting();

/// Whether standard output is a pipe that nobody reads any more.
bool IsOutputClosed();

/// Ends the program as one that writes to a closed pipe ends, without a message: by the signal for it where
/// there is one. @return the exit code where there is none
int EndAsByClosedPipe();

/// The folders of the program that runs, as far as the system says: of its file, and of the name by which it
/// was started. They differ for a program that a script starts in its place, under the script's name.
std::vector<std::string> ProgramFolders();

/// Runs another program with a text as its standard input, and waits for it; its other streams are those of
/// this program. @param words  the program, looked for on the path unless it names a folder, and its
/// arguments
/// @return its exit code, 128 and more when a signal ended it; 127 or another code when it cannot be run
int RunProgram(const std::vector<std::string>& words, const std::string& input);

/// Waits until a file or a folder is on the disk as it is now. @return why that failed; empty when it did not
std::string SyncToDisk(const std::string& path);

/// To be called first. Keeps the memory of one file for the next: if it were returned and allocated again,
/// its pages would be zeroed again while threads wait for one another.
void KeepFreedMemory();

/// The opposite, for a service that runs for months: what an hour needed for a moment goes back to the
/// system, and threads share the memory that they have freed. Before threads are started.
void ReturnFreedMemory();

/// Requests huge pages for memory aligned to such pages; does nothing where they are not available.
inline constexpr std::size_t kHugePageBytes = std::size_t{1} << 21;
void PreferHugePages(void* memory, std::size_t bytes);

}  // namespace orsolva_host

#endif  // ORSOLVA_PLATFORM_PLATFORM_H

// The library's only text output, and the log hooks, which do nothing.
#ifndef ORSOLVA_INTERFACE_PRINT_H
#define ORSOLVA_INTERFACE_PRINT_H

namespace orsolva {

// Kept for compatibility: the log hooks take what they are given and do nothing; no file is ever opened.

/// Takes the path of a log file.
void SetLogFile(const char* path);
/// Takes the log switch.
void SetLogSwitch(int on);
/// Would write to the log.
void WriteLog();
/// Would close the log.
void CloseLog();

/// Writes printf-style text to standard output.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void Print(const char* format, ...);

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_PRINT_H

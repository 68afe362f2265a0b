// Polling for SIGINT and SIGTERM.
#ifndef ORSOLVA_TERMINAL_INTERRUPT_H
#define ORSOLVA_TERMINAL_INTERRUPT_H

namespace orsolva_host {

/// From now on the first SIGINT or SIGTERM is only recorded; a second one ends the program at once. A closed
/// pipe and a file that grows beyond the user's limit become errors of writing.
void RecordInterrupts();

/// The exit code of the recorded signal; 0 without one.
int InterruptExitCode();

}  // namespace orsolva_host

#endif  // ORSOLVA_TERMINAL_INTERRUPT_H

// Long calls: the work runs on a thread of its own while the calling thread, without Python's lock, waits for
// it, looks for Ctrl-C and reports progress.
#ifndef ORSOLVA_PYTHON_WAITING_H
#define ORSOLVA_PYTHON_WAITING_H

#include <nanobind/nanobind.h>

#include <functional>

#include "host/judging/run_monitor.h"

namespace orsolva_python {

/// @param work      must end soon after monitor.stop is set; it runs without Python's lock and must not use
/// Python
/// @param progress  called with the epochs done so far, at most ten times a second and once at the end, or
/// None.
///                  What it raises stops the work and comes out of this call
/// @throws what the work throws
void RunInterruptibly(const std::function<void()>& work, orsolva_host::RunMonitor& monitor,
                      const nanobind::object& progress);

/// Calls `done` with the longest time it may wait, without Python's lock, until it returns true.
/// @throws nanobind::python_error on Ctrl-C or when the progress callback raises
void WaitFor(const std::function<bool(int milliseconds)>& done, const orsolva_host::RunMonitor& monitor,
             const nanobind::object& progress);

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_WAITING_H

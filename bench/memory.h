// Resident memory of this process.
#ifndef ORSOLVA_BENCH_MEMORY_H
#define ORSOLVA_BENCH_MEMORY_H

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace orsolva_bench {

/// Current, in MB.
inline double ResidentMb() {
  std::ifstream statm("/proc/self/statm");
  double pages = 0.0, resident = 0.0;
  statm >> pages >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Peak so far, in MB.
inline double PeakMb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024.0 / 1e6;
}

}  // namespace orsolva_bench

#endif  // ORSOLVA_BENCH_MEMORY_H

// What the address sanitizer need not do in a fuzz target: keep freed memory for long (each input would touch
// fresh pages), note whole stacks of every allocation, fill allocated memory. ASAN_OPTIONS overrides it, and
// replay_<target> runs with the sanitizer's defaults, so that a finding has its full report.
extern "C" const char* __asan_default_options();

extern "C" const char* __asan_default_options() {
  return "quarantine_size_mb=8:malloc_context_size=2:max_malloc_fill_size=0";
}

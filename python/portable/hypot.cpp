// hypot() of glibc has a second version since 2.35, which differs in nothing but how errors reach errno.
// Programs that call the first one run on older systems too.
extern "C" {

#if defined(__x86_64__)
double FirstHypot(double x, double y);
__asm__(".symver FirstHypot, hypot@GLIBC_2.2.5");
#else
double FirstHypot(double x, double y);
__asm__(".symver FirstHypot, hypot@GLIBC_2.17");
#endif

/// What `-Wl,--wrap=hypot` calls in place of hypot().
double __wrap_hypot(double x, double y);  // NOLINT
double __wrap_hypot(double x, double y) { return FirstHypot(x, y); }
}

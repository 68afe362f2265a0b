// The compiled part of fmt, which Debian has as a shared library only, from its headers.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {
template dragonbox::decimal_fp<float> dragonbox::to_decimal(float x) noexcept;
template dragonbox::decimal_fp<double> dragonbox::to_decimal(double x) noexcept;
template thousands_sep_result<char> thousands_sep_impl(locale_ref);
template char decimal_point_impl(locale_ref);
}  // namespace detail
FMT_END_NAMESPACE

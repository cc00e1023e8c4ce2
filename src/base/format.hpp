// Objective-C style formatting for log lines. Log lines keep their Objective-C
// format strings ("[QB] reveal ex: %@") so they read the same in both worlds;
// this fills them in.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace base {

// One argument of a format. %@ takes a string (callers describe objects and
// exceptions to text first); %s a C string; %d %i %ld %lld %lu %u %x %X %c an
// integer; %f %g %e a real. A bool is an integer 0/1, as BOOL is.
class FormatArg {
 public:
  enum class Kind { Signed, Unsigned, Real, Text };
  FormatArg(bool b) : kind_(Kind::Signed), i_(b ? 1 : 0) {}
  FormatArg(char c) : kind_(Kind::Signed), i_(c) {}
  FormatArg(int i) : kind_(Kind::Signed), i_(i) {}
  FormatArg(long i) : kind_(Kind::Signed), i_(i) {}
  FormatArg(long long i) : kind_(Kind::Signed), i_(i) {}
  FormatArg(unsigned i) : kind_(Kind::Unsigned), u_(i) {}
  FormatArg(unsigned long i) : kind_(Kind::Unsigned), u_(i) {}
  FormatArg(unsigned long long i) : kind_(Kind::Unsigned), u_(i) {}
  FormatArg(double d) : kind_(Kind::Real), d_(d) {}
  FormatArg(const char* s)
      : kind_(Kind::Text), s_(s ? std::string_view(s) : std::string_view("(null)")) {}
  FormatArg(std::string_view s) : kind_(Kind::Text), s_(s) {}
  FormatArg(const std::string& s) : kind_(Kind::Text), s_(s) {}

  Kind kind() const { return kind_; }
  std::int64_t asSigned() const {
    return kind_ == Kind::Unsigned ? static_cast<std::int64_t>(u_)
           : kind_ == Kind::Real   ? realToSigned(d_)
                                   : i_;
  }
  std::uint64_t asUnsigned() const {
    return kind_ == Kind::Unsigned ? u_
           : kind_ == Kind::Real   ? realToUnsigned(d_)
                                   : static_cast<std::uint64_t>(i_);
  }
  double asReal() const {
    return kind_ == Kind::Real       ? d_
           : kind_ == Kind::Unsigned ? static_cast<double>(u_)
                                     : static_cast<double>(i_);
  }
  std::string_view asText() const { return s_; }

 private:
  // A real given for an integer conversion: truncated and clamped, since a
  // plain cast of NaN or an out-of-range value is undefined.
  static std::int64_t realToSigned(double d) {
    if (d != d) return 0;
    if (d >= 9223372036854775807.0) return INT64_MAX;
    if (d <= -9223372036854775808.0) return INT64_MIN;
    return static_cast<std::int64_t>(d);
  }
  static std::uint64_t realToUnsigned(double d) {
    if (d >= 18446744073709551615.0) return UINT64_MAX;
    return d >= 0 ? static_cast<std::uint64_t>(d) : static_cast<std::uint64_t>(realToSigned(d));
  }

  Kind kind_;
  std::int64_t i_ = 0;
  std::uint64_t u_ = 0;
  double d_ = 0;
  std::string_view s_;
};

// Fills in `fmt`. Supports flags (- + space 0 #), width, precision, the length
// modifiers h hh l ll q z t j, and the conversions @ d i u x X o c s f F e E g G
// and %%. A %@ whose argument is not text prints its number; a missing argument
// prints "(null)" for %@ and %s and 0 otherwise; surplus arguments are ignored.
// An unknown conversion is copied through as written.
std::string formatv(std::string_view fmt, std::initializer_list<FormatArg> args);

template <typename... Args>
std::string format(std::string_view fmt, const Args&... args) {
  return formatv(fmt, {FormatArg(args)...});
}

}  // namespace base

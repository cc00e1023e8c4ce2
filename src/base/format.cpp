// The Objective-C style formatter. Numeric conversions are handed to
// snprintf with the flags, width and precision as written; %@ and %s pad by
// bytes, as NSLog does for ASCII.
#include "base/format.hpp"

#include <climits>
#include <cstdio>
#include <optional>

#include "base/utf8.hpp"

namespace base {
namespace {

struct Spec {
  std::string flags;
  int width = 0;
  int precision = -1;  // none
  char conversion = 0;
};

bool isFlag(char c) { return c == '-' || c == '+' || c == ' ' || c == '0' || c == '#'; }
bool isLengthModifier(char c) {
  return c == 'h' || c == 'l' || c == 'q' || c == 'z' || c == 't' || c == 'j' || c == 'L';
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads a width or precision; nullopt when it does not fit an int, which
// printf could not honour either.
std::optional<int> readNumber(std::string_view fmt, std::size_t& i) {
  long long n = 0;
  for (; i < fmt.size() && isDigit(fmt[i]); ++i) {
    n = n * 10 + (fmt[i] - '0');
    if (n > INT_MAX) return std::nullopt;
  }
  return static_cast<int>(n);
}

std::string pad(std::string_view text, const Spec& s) {
  if (s.precision >= 0 && text.size() > std::size_t(s.precision)) {
    // Cut on a character boundary so that the line stays valid UTF-8.
    std::size_t cut = std::size_t(s.precision);
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    text = text.substr(0, cut);
  }
  std::string out(text);
  if (out.size() < std::size_t(s.width)) {
    std::string fill(std::size_t(s.width) - out.size(), ' ');
    out = s.flags.find('-') != std::string::npos ? out + fill : fill + out;
  }
  return out;
}

template <typename T>
std::optional<std::string> printfOne(const Spec& s, const char* length, T value) {
  std::string fmt = "%" + s.flags;
  if (s.width > 0) fmt += std::to_string(s.width);
  if (s.precision >= 0) fmt += "." + std::to_string(s.precision);
  fmt += length;
  fmt += s.conversion;
  int n = std::snprintf(nullptr, 0, fmt.c_str(), value);
  if (n < 0) return std::nullopt;
  std::string out(std::size_t(n) + 1, '\0');
  std::snprintf(out.data(), out.size(), fmt.c_str(), value);
  out.resize(std::size_t(n));
  return out;
}

std::optional<std::string> numeric(const Spec& s, const FormatArg* arg) {
  switch (s.conversion) {
    case 'd':
    case 'i':
      return printfOne(s, "ll", static_cast<long long>(arg ? arg->asSigned() : 0));
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      return printfOne(s, "ll", static_cast<unsigned long long>(arg ? arg->asUnsigned() : 0));
    case 'c': {
      // A character code beyond ASCII is taken as a code point (Latin-1 for
      // one byte), so that it stays readable UTF-8; NUL prints nothing.
      std::int64_t code = arg ? arg->asSigned() : 0;
      std::string c;
      if (code > 0 && code <= 0x10FFFF) appendUtf8(c, static_cast<char32_t>(code));
      return pad(c, s);
    }
    default:  // f F e E g G
      return printfOne(s, "", arg ? arg->asReal() : 0.0);
  }
}

}  // namespace

std::string formatv(std::string_view fmt, std::initializer_list<FormatArg> args) {
  std::string out;
  const FormatArg* next = args.begin();
  auto take = [&]() -> const FormatArg* { return next != args.end() ? next++ : nullptr; };
  for (std::size_t i = 0; i < fmt.size(); ++i) {
    char c = fmt[i];
    if (c != '%') {
      out += c;
      continue;
    }
    std::size_t start = i++;
    if (i < fmt.size() && fmt[i] == '%') {
      out += '%';
      continue;
    }
    Spec s;
    while (i < fmt.size() && isFlag(fmt[i])) s.flags += fmt[i++];
    std::optional<int> width = readNumber(fmt, i);
    std::optional<int> precision = 0;
    if (i < fmt.size() && fmt[i] == '.') {
      ++i;
      precision = readNumber(fmt, i);  // "%.s" is precision 0, as in C
      if (precision) s.precision = *precision;
    }
    while (i < fmt.size() && isLengthModifier(fmt[i])) ++i;
    if (i >= fmt.size()) {
      out.append(fmt.substr(start));
      break;
    }
    s.conversion = fmt[i];
    std::string_view written = fmt.substr(start, i - start + 1);
    if (!width || !precision) {
      out.append(written);
      continue;
    }
    s.width = *width;
    switch (s.conversion) {
      case '@':
      case 's': {
        const FormatArg* a = take();
        if (!a)
          out += pad("(null)", s);
        else if (a->kind() == FormatArg::Kind::Text)
          out += pad(a->asText(), s);
        else if (a->kind() == FormatArg::Kind::Real)
          out += pad(numeric(Spec{"", 0, -1, 'g'}, a).value_or(""), s);
        else if (a->kind() == FormatArg::Kind::Unsigned)
          out += pad(std::to_string(a->asUnsigned()), s);
        else
          out += pad(std::to_string(a->asSigned()), s);
        break;
      }
      case 'd':
      case 'i':
      case 'u':
      case 'x':
      case 'X':
      case 'o':
      case 'c':
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G': {
        std::optional<std::string> text = numeric(s, take());
        if (text)
          out += *text;
        else
          out.append(written);
        break;
      }
      default:
        out.append(written);
        break;
    }
  }
  return out;
}

}  // namespace base

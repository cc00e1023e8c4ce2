// The Objective-C style formatter. Numeric conversions are handed to
// snprintf with the flags, width and precision as written; %@ and %s pad by
// bytes, as NSLog does for ASCII.
#include "base/format.hpp"

#include <cstdio>
#include <cstring>

namespace base {
namespace {

struct Spec {
  std::string flags;
  std::string width;
  std::string precision;  // with its dot, or empty
  char conversion = 0;
};

bool isFlag(char c) { return c == '-' || c == '+' || c == ' ' || c == '0' || c == '#'; }
bool isLengthModifier(char c) { return c == 'h' || c == 'l' || c == 'q' || c == 'z' || c == 't' || c == 'j' || c == 'L'; }

std::string pad(std::string_view text, const Spec& s) {
  std::string out(text);
  if (!s.precision.empty() && s.precision.size() > 1) {
    std::size_t limit = std::strtoul(s.precision.c_str() + 1, nullptr, 10);
    if (out.size() > limit) out.resize(limit);
  }
  std::size_t width = s.width.empty() ? 0 : std::strtoul(s.width.c_str(), nullptr, 10);
  if (out.size() < width) {
    bool left = s.flags.find('-') != std::string::npos;
    std::string fill(width - out.size(), ' ');
    out = left ? out + fill : fill + out;
  }
  return out;
}

std::string numeric(const Spec& s, const FormatArg* arg) {
  std::string fmt = "%" + s.flags + s.width + s.precision;
  char buf[128];
  switch (s.conversion) {
    case 'd':
    case 'i':
      std::snprintf(buf, sizeof buf, (fmt + "lld").c_str(), static_cast<long long>(arg ? arg->asSigned() : 0));
      break;
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      std::snprintf(buf, sizeof buf, (fmt + "ll" + s.conversion).c_str(),
                    static_cast<unsigned long long>(arg ? arg->asUnsigned() : 0));
      break;
    case 'c': {
      std::string c(1, static_cast<char>(arg ? arg->asSigned() : 0));
      return pad(c, s);
    }
    default:  // f F e E g G
      std::snprintf(buf, sizeof buf, (fmt + s.conversion).c_str(), arg ? arg->asReal() : 0.0);
      break;
  }
  return buf;
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
    while (i < fmt.size() && fmt[i] >= '0' && fmt[i] <= '9') s.width += fmt[i++];
    if (i < fmt.size() && fmt[i] == '.') {
      s.precision += fmt[i++];
      while (i < fmt.size() && fmt[i] >= '0' && fmt[i] <= '9') s.precision += fmt[i++];
    }
    while (i < fmt.size() && isLengthModifier(fmt[i])) ++i;
    if (i >= fmt.size()) {
      out.append(fmt.substr(start));
      break;
    }
    s.conversion = fmt[i];
    switch (s.conversion) {
      case '@':
      case 's': {
        const FormatArg* a = take();
        if (!a) out += pad("(null)", s);
        else if (a->kind() == FormatArg::Kind::Text) out += pad(a->asText(), s);
        else if (a->kind() == FormatArg::Kind::Real) out += pad(numeric(Spec{"", "", "", 'g'}, a), s);
        else if (a->kind() == FormatArg::Kind::Unsigned) out += pad(std::to_string(a->asUnsigned()), s);
        else out += pad(std::to_string(a->asSigned()), s);
        break;
      }
      case 'd': case 'i': case 'u': case 'x': case 'X': case 'o': case 'c':
      case 'f': case 'F': case 'e': case 'E': case 'g': case 'G':
        out += numeric(s, take());
        break;
      default:
        out.append(fmt.substr(start, i - start + 1));
        break;
    }
  }
  return out;
}

}  // namespace base

// The type-encoding walker. It steps over one type the way
// NSGetSizeAndAlignment does, offsets included, and never reads past the end
// of the string however malformed the encoding is.
#include <cctype>
#include <cstring>

#include "rt/encoding.hpp"

namespace rt {
namespace {

bool isQualifier(char c) { return std::strchr("rnNoORVAj", c) != nullptr && c != '\0'; }

const char* skipDigits(const char* p) {
  if (*p == '+' || *p == '-') {
    if (std::isdigit(static_cast<unsigned char>(p[1])))
      ++p;
    else
      return p;
  }
  while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
  return p;
}

const char* endOf(const char* p) { return p + std::strlen(p); }

// Skips a bracketed aggregate starting at `p` (which points at `open`),
// honouring nesting and quoted field names.
const char* skipAggregate(const char* p, char open, char close) {
  int depth = 0;
  for (; *p; ++p) {
    if (*p == '"') {
      const char* q = std::strchr(p + 1, '"');
      if (!q) return endOf(p);
      p = q;
    } else if (*p == open) {
      ++depth;
    } else if (*p == close) {
      if (--depth == 0) return p + 1;
    }
  }
  return p;
}

const char* skipBare(const char* p) {
  while (*p && isQualifier(*p)) ++p;
  switch (*p) {
    case '\0':
      return p;
    case '{':
      return skipAggregate(p, '{', '}');
    case '(':
      return skipAggregate(p, '(', ')');
    case '[':
      return skipAggregate(p, '[', ']');
    case '^':
      return skipBare(p + 1);
    case 'b':
      return skipDigits(p + 1);
    case '@':
      ++p;
      if (*p == '?') {
        ++p;
        if (*p == '<') {  // extended block signature
          const char* q = std::strchr(p, '>');
          return q ? q + 1 : endOf(p);
        }
        return p;
      }
      if (*p == '"') {
        const char* q = std::strchr(p + 1, '"');
        return q ? q + 1 : endOf(p);
      }
      return p;
    default:
      return p + 1;
  }
}

// The class of one normalized type at [p, end) for sameCallTypes: a width
// for integers, '@' for objects, '^' for pointers, else the type itself.
std::string_view callClass(const char* p, const char* end) {
  switch (*p) {
    case 'q':
    case 'Q':
    case 'l':
    case 'L':
      return "8";
    case 'i':
    case 'I':
      return "4";
    case 's':
    case 'S':
      return "2";
    case 'c':
    case 'C':
      return "1";
    case '@':
    case '#':
      return "@";
    case '^':
    case '*':
    case ':':
      return "^";
    default:
      return std::string_view(p, std::size_t(end - p));
  }
}

}  // namespace

const char* skipType(const char* p) {
  if (!p) return nullptr;
  return skipDigits(skipBare(p));
}

std::string normalizedEncoding(std::string_view types) {
  std::string in(types);  // the walker needs a terminated string
  std::string out;
  const char* p = in.c_str();
  while (*p) {
    while (*p && isQualifier(*p)) ++p;
    if (!*p) break;
    const char* end = skipBare(p);
    if (end == p) break;
    if (*p == '@')
      out += '@';  // blocks and class-named objects are objects
    else
      out.append(p, end);
    p = skipDigits(end);
  }
  return out;
}

bool sameCallTypes(std::string_view a, std::string_view b) {
  if (a == b) return true;
  std::string x(a), y(b);  // the walker needs terminated strings
  const char* p = x.c_str();
  const char* q = y.c_str();
  while (*p && *q) {
    const char* pe = skipBare(p);
    const char* qe = skipBare(q);
    if (pe == p || qe == q || callClass(p, pe) != callClass(q, qe)) return false;
    p = pe, q = qe;
  }
  return !*p && !*q;
}

}  // namespace rt

// UTF-8 decoding and the simple case mappings of the scripts the system's
// texts and names use.
#include "base/utf8.hpp"

#include <cstdint>
#include <cstring>

namespace base {

char32_t decodeUtf8(std::string_view s, std::size_t& i) {
  auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  if (i >= s.size()) {
    ++i;
    return 0xFFFD;
  }
  unsigned char b0 = byte(i);
  if (b0 < 0x80) {
    ++i;
    return b0;
  }
  // C0, C1 and F5-FF never start a sequence; continuation bytes neither.
  int len = b0 >= 0xF0 && b0 <= 0xF4   ? 4
            : b0 >= 0xE0 && b0 <= 0xEF ? 3
            : b0 >= 0xC2 && b0 <= 0xDF ? 2
                                       : 0;
  if (len == 0 || i + std::size_t(len) > s.size()) {
    ++i;
    return 0xFFFD;
  }
  char32_t cp = b0 & (0xFF >> (len + 1));
  for (int k = 1; k < len; ++k) {
    unsigned char b = byte(i + std::size_t(k));
    if ((b & 0xC0) != 0x80) {
      ++i;
      return 0xFFFD;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  bool overlong = (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000);
  if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
    ++i;
    return 0xFFFD;
  }
  i += std::size_t(len);
  return cp;
}

void appendUtf8(std::string& out, char32_t cp) {
  if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = 0xFFFD;
  if (cp < 0x80) {
    out += char(cp);
  } else if (cp < 0x800) {
    out += char(0xC0 | (cp >> 6));
    out += char(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += char(0xE0 | (cp >> 12));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  } else {
    out += char(0xF0 | (cp >> 18));
    out += char(0x80 | ((cp >> 12) & 0x3F));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  }
}

// Eight bytes at a time: file parsing asks this of every string it reads.
bool isAscii(std::string_view s) {
  std::size_t i = 0;
  for (; i + 8 <= s.size(); i += 8) {
    std::uint64_t word;
    std::memcpy(&word, s.data() + i, 8);
    if (word & 0x8080808080808080ULL) return false;
  }
  unsigned char rest = 0;
  for (; i < s.size(); ++i) rest |= static_cast<unsigned char>(s[i]);
  return rest < 0x80;
}

bool isValidUtf8(std::string_view s) {
  for (std::size_t i = 0; i < s.size();) {
    std::size_t at = i;
    if (decodeUtf8(s, i) == 0xFFFD && !(i - at == 3 && s.substr(at, 3) == "\xEF\xBF\xBD"))
      return false;
  }
  return true;
}

std::size_t codePointCount(std::string_view s) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < s.size(); ++n) decodeUtf8(s, i);
  return n;
}

std::size_t utf16Length(std::string_view s) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < s.size();) n += decodeUtf8(s, i) > 0xFFFF ? 2 : 1;
  return n;
}

bool isWhitespaceOrNewline(char32_t cp) {
  if ((cp >= 0x09 && cp <= 0x0D) || cp == 0x20 || cp == 0x85 || cp == 0xA0 || cp == 0x1680)
    return true;
  return (cp >= 0x2000 && cp <= 0x200A) || cp == 0x2028 || cp == 0x2029 || cp == 0x202F ||
         cp == 0x205F || cp == 0x3000;
}

std::string trimWhitespaceAndNewlines(std::string_view s) {
  std::size_t begin = s.size(), end = 0;
  for (std::size_t i = 0; i < s.size();) {
    std::size_t at = i;
    if (!isWhitespaceOrNewline(decodeUtf8(s, i))) {
      if (begin == s.size()) begin = at;
      end = i;
    }
  }
  return begin < end ? std::string(s.substr(begin, end - begin)) : std::string();
}

namespace {

// Latin Extended-A alternates upper (even) / lower (odd) in two runs, with
// the ranges shifted by one after U+0138.
bool pairedEvenOdd(char32_t cp) {
  return (cp >= 0x0100 && cp <= 0x012F) || (cp >= 0x0132 && cp <= 0x0137) ||
         (cp >= 0x014A && cp <= 0x0177) || (cp >= 0x0460 && cp <= 0x0481) ||
         (cp >= 0x048A && cp <= 0x04BF);
}
bool pairedOddEven(char32_t cp) {
  return (cp >= 0x0139 && cp <= 0x0148) || (cp >= 0x0179 && cp <= 0x017E);
}

}  // namespace

char32_t toLower(char32_t cp) {
  if (cp >= 'A' && cp <= 'Z') return cp + 32;
  if (cp < 0x80) return cp;
  if ((cp >= 0xC0 && cp <= 0xDE && cp != 0xD7)) return cp + 32;
  if (cp == 0x178) return 0xFF;
  if (cp == 0x130) return 'i';
  if (pairedEvenOdd(cp)) return cp % 2 == 0 ? cp + 1 : cp;
  if (pairedOddEven(cp)) return cp % 2 == 1 ? cp + 1 : cp;
  if (cp >= 0x391 && cp <= 0x3AB && cp != 0x3A2) return cp + 32;
  switch (cp) {
    case 0x386:
      return 0x3AC;
    case 0x388:
      return 0x3AD;
    case 0x389:
      return 0x3AE;
    case 0x38A:
      return 0x3AF;
    case 0x38C:
      return 0x3CC;
    case 0x38E:
      return 0x3CD;
    case 0x38F:
      return 0x3CE;
    default:
      break;
  }
  if (cp >= 0x410 && cp <= 0x42F) return cp + 32;
  if (cp >= 0x400 && cp <= 0x40F) return cp + 80;
  return cp;
}

char32_t toUpper(char32_t cp) {
  if (cp >= 'a' && cp <= 'z') return cp - 32;
  if (cp < 0x80) return cp;
  if (cp >= 0xE0 && cp <= 0xFE && cp != 0xF7) return cp - 32;
  if (cp == 0xFF) return 0x178;
  if (cp == 0x131) return 'I';
  if (cp == 0x17F) return 'S';
  if (pairedEvenOdd(cp)) return cp % 2 == 1 ? cp - 1 : cp;
  if (pairedOddEven(cp)) return cp % 2 == 0 ? cp - 1 : cp;
  if (cp == 0x3C2) return 0x3A3;
  if (cp >= 0x3B1 && cp <= 0x3CB) return cp - 32;
  switch (cp) {
    case 0x3AC:
      return 0x386;
    case 0x3AD:
      return 0x388;
    case 0x3AE:
      return 0x389;
    case 0x3AF:
      return 0x38A;
    case 0x3CC:
      return 0x38C;
    case 0x3CD:
      return 0x38E;
    case 0x3CE:
      return 0x38F;
    default:
      break;
  }
  if (cp >= 0x430 && cp <= 0x44F) return cp - 32;
  if (cp >= 0x450 && cp <= 0x45F) return cp - 80;
  return cp;
}

namespace {

template <typename Map>
std::string mapped(std::string_view s, Map map) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size();) appendUtf8(out, map(decodeUtf8(s, i)));
  return out;
}

}  // namespace

std::string lowercase(std::string_view s) { return mapped(s, toLower); }
std::string uppercase(std::string_view s) { return mapped(s, toUpper); }

std::string firstCharacterUpper(std::string_view s) {
  if (s.empty()) return "";
  std::size_t i = 0;
  std::string out;
  appendUtf8(out, toUpper(decodeUtf8(s, i)));
  return out;
}

bool contains(std::string_view haystack, std::string_view needle) {
  return !needle.empty() && haystack.find(needle) != std::string_view::npos;
}

bool startsWith(std::string_view s, std::string_view prefix) {
  return s.substr(0, prefix.size()) == prefix;
}

}  // namespace base

#include "sim/frameworks/foundation/icu_text.hpp"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "base/utf8.hpp"

namespace sim {
namespace {

std::u16string toUtf16(std::string_view s) {
  UErrorCode err = U_ZERO_ERROR;
  int32_t len = 0;
  u_strFromUTF8WithSub(nullptr, 0, &len, s.data(), int32_t(s.size()), 0xFFFD, nullptr, &err);
  std::u16string out(std::size_t(len), u'\0');
  err = U_ZERO_ERROR;
  u_strFromUTF8WithSub(out.data(), len, nullptr, s.data(), int32_t(s.size()), 0xFFFD, nullptr,
                       &err);
  return U_SUCCESS(err) ? out : std::u16string();
}

std::string toUtf8(const std::u16string& s) {
  UErrorCode err = U_ZERO_ERROR;
  int32_t len = 0;
  u_strToUTF8(nullptr, 0, &len, s.data(), int32_t(s.size()), &err);
  std::string out(std::size_t(len), '\0');
  err = U_ZERO_ERROR;
  u_strToUTF8(out.data(), len, nullptr, s.data(), int32_t(s.size()), &err);
  return U_SUCCESS(err) ? out : std::string();
}

template <typename Fn>
std::string mapCase(std::string_view utf8, Fn fn) {
  std::u16string in = toUtf16(utf8);
  UErrorCode err = U_ZERO_ERROR;
  int32_t len = fn(nullptr, 0, in.data(), int32_t(in.size()), "", &err);
  std::u16string out(std::size_t(len), u'\0');
  err = U_ZERO_ERROR;
  fn(out.data(), len, in.data(), int32_t(in.size()), "", &err);
  return U_SUCCESS(err) ? toUtf8(out) : std::string(utf8);
}

struct CollatorClose {
  void operator()(UCollator* c) const { ucol_close(c); }
};

// Opening a collator is costly; one per locale is kept for the program.
UCollator* collatorFor(const std::string& locale) {
  static std::mutex mutex;
  static std::map<std::string, std::unique_ptr<UCollator, CollatorClose>> collators;
  std::lock_guard lock(mutex);
  auto& slot = collators[locale];
  if (!slot) {
    UErrorCode err = U_ZERO_ERROR;
    UCollator* c = ucol_open(locale.c_str(), &err);
    if (U_FAILURE(err)) {
      err = U_ZERO_ERROR;
      c = ucol_open("", &err);
    }
    ucol_setAttribute(c, UCOL_NUMERIC_COLLATION, UCOL_ON, &err);
    ucol_setAttribute(c, UCOL_STRENGTH, UCOL_TERTIARY, &err);
    slot.reset(c);
  }
  return slot.get();
}

}  // namespace

// ASCII text maps the same under the root locale and is the common case (keys,
// identifiers, English words), so it skips the round trip through UTF-16.
template <typename Ascii>
bool mapAscii(std::string_view utf8, std::string& out, Ascii ascii) {
  if (!base::isAscii(utf8)) return false;
  out.resize(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) out[i] = ascii(utf8[i]);
  return true;
}

std::string icuLowercase(std::string_view utf8) {
  std::string out;
  if (mapAscii(utf8, out, [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }))
    return out;
  return mapCase(utf8, u_strToLower);
}

std::string icuUppercase(std::string_view utf8) {
  std::string out;
  if (mapAscii(utf8, out, [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; }))
    return out;
  return mapCase(utf8, u_strToUpper);
}

int icuStandardCompare(std::string_view a, std::string_view b, const std::string& locale) {
  UErrorCode err = U_ZERO_ERROR;
  UCollationResult r = ucol_strcollUTF8(collatorFor(locale), a.data(), int32_t(a.size()), b.data(),
                                        int32_t(b.size()), &err);
  if (U_SUCCESS(err) && r != UCOL_EQUAL) return r == UCOL_LESS ? -1 : 1;
  int c = a.compare(b);
  return c < 0 ? -1 : c > 0 ? 1 : 0;
}

}  // namespace sim

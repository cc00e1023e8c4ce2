// UTF-8 string helpers the system needs without a platform behind it.
// Strings are UTF-8 throughout the system; invalid bytes are treated as
// U+FFFD when decoding and never crash.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace base {

// Decodes one code point at s[i] and advances i past it. Invalid or truncated
// sequences yield U+FFFD and advance by one byte.
char32_t decodeUtf8(std::string_view s, std::size_t& i);
void appendUtf8(std::string& out, char32_t cp);

std::size_t codePointCount(std::string_view s);
// The length NSString reports: UTF-16 code units (a character beyond the
// Basic Multilingual Plane counts two).
std::size_t utf16Length(std::string_view s);
// True when every byte sequence is a well-formed UTF-8 code point.
bool isValidUtf8(std::string_view s);
// True when every byte is below 0x80.
bool isAscii(std::string_view s);

// Simple (one-to-one) case mapping for Latin (ASCII, Latin-1, Latin
// Extended-A), Greek and Cyrillic; other characters are unchanged. Enough for
// the words the system compares and the letters it draws.
char32_t toLower(char32_t cp);
char32_t toUpper(char32_t cp);
std::string lowercase(std::string_view s);
std::string uppercase(std::string_view s);

// The first code point of `s`, upper-cased, as UTF-8; "" for an empty string.
std::string firstCharacterUpper(std::string_view s);

// NSCharacterSet whitespaceAndNewlineCharacterSet: Unicode's space
// separators (U+0020, U+00A0, U+3000, …), line and paragraph separators, and
// the controls U+0009–U+000D and U+0085.
bool isWhitespaceOrNewline(char32_t cp);
// stringByTrimmingCharactersInSet: with that set, at both ends.
std::string trimWhitespaceAndNewlines(std::string_view s);

// Byte-wise substring test, as NSString containsString: for UTF-8 text that
// needs no normalisation. An empty needle is never contained (Foundation).
bool contains(std::string_view haystack, std::string_view needle);
bool startsWith(std::string_view s, std::string_view prefix);

}  // namespace base

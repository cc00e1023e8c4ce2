// UTF-8 decoding and the simple case mappings.
#include <gtest/gtest.h>

#include "base/utf8.hpp"

namespace {

std::u32string decodeAll(std::string_view s) {
  std::u32string out;
  for (std::size_t i = 0; i < s.size();) out += base::decodeUtf8(s, i);
  return out;
}

TEST(Utf8, DecodesAndRejectsMalformedSequences) {
  EXPECT_EQ(decodeAll("a密😀"), (std::u32string{U'a', U'密', U'😀'}));
  EXPECT_EQ(decodeAll("\xC0\xAF"), (std::u32string{0xFFFD, 0xFFFD})) << "overlong";
  EXPECT_EQ(decodeAll("\xE0\x80\xAF"), (std::u32string{0xFFFD, 0xFFFD, 0xFFFD})) << "overlong";
  EXPECT_EQ(decodeAll("\xED\xA0\x80"), (std::u32string{0xFFFD, 0xFFFD, 0xFFFD})) << "surrogate";
  EXPECT_EQ(decodeAll("\xF4\x90\x80\x80"), (std::u32string(4, 0xFFFD))) << "above U+10FFFF";
  EXPECT_EQ(decodeAll("\xE5\xAF"), (std::u32string{0xFFFD, 0xFFFD})) << "truncated";
  EXPECT_EQ(decodeAll("\xFF"
                      "a"),
            (std::u32string{0xFFFD, U'a'}));
  EXPECT_EQ(decodeAll("\xF8\x88\x80\x80"), (std::u32string(4, 0xFFFD))) << "F5-FF start nothing";
  EXPECT_EQ(decodeAll("\xF5\x80\x80\x80"), (std::u32string(4, 0xFFFD)));
  EXPECT_EQ(decodeAll("\x80\xBF"), (std::u32string(2, 0xFFFD))) << "stray continuation bytes";
  EXPECT_FALSE(base::isValidUtf8("\xEE\x80"));
  EXPECT_TRUE(base::isValidUtf8("密友 \xEF\xBF\xBD ok"));
  EXPECT_FALSE(base::isValidUtf8("bad \xFF"));
  EXPECT_EQ(base::codePointCount("密友ab"), 4u);
  std::string round;
  for (char32_t cp : {U'A', U'é', U'密', U'😀'}) base::appendUtf8(round, cp);
  EXPECT_EQ(round, "Aé密😀");
}

TEST(Utf8, CaseMappingOfTheCoveredScripts) {
  EXPECT_EQ(base::lowercase("VERSION Version"), "version version");
  EXPECT_EQ(base::lowercase("ÀÉÎÕÜ Ÿ"), "àéîõü ÿ");
  EXPECT_EQ(base::uppercase("àéîõü ÿ ß µ"), "ÀÉÎÕÜ Ÿ ß µ")
      << "ß and µ have no one-letter capital here";
  EXPECT_EQ(base::lowercase("ĀĂĄ ĹĻ Ž"), "āăą ĺļ ž");
  EXPECT_EQ(base::uppercase("ı ſ ĸ ŉ"), "I S ĸ ŉ");
  EXPECT_EQ(base::lowercase("İ"), "i");
  EXPECT_EQ(base::lowercase("ΑΒΓ ΆΏ"), "αβγ άώ");
  EXPECT_EQ(base::uppercase("σας"), "ΣΑΣ") << "final sigma capitalises to Σ";
  EXPECT_EQ(base::lowercase("ПРИВЕТ ЁЂ Ѡ"), "привет ёђ ѡ");
  EXPECT_EQ(base::lowercase("密友 123"), "密友 123");
  EXPECT_EQ(base::lowercase("ĿŇŊŹ"), "ŀňŋź") << "either side of the odd/even switch";
  EXPECT_EQ(base::lowercase("ς ŉ ĸ"), "ς ŉ ĸ");
}

TEST(Utf8, CaseMappingIsOneToOneApartFromTheOneWayLetters) {
  for (char32_t cp = 0; cp < 0x530; ++cp) {
    char32_t lower = base::toLower(cp), upper = base::toUpper(cp);
    if (lower != cp && cp != 0x130) {
      EXPECT_EQ(base::toUpper(lower), cp) << std::hex << unsigned(cp);
    }
    if (upper != cp && cp != 0x131 && cp != 0x17F && cp != 0x3C2) {
      EXPECT_EQ(base::toLower(upper), cp) << std::hex << unsigned(cp);
    }
    EXPECT_FALSE(lower != cp && upper != cp)
        << "a letter is not both cases " << std::hex << unsigned(cp);
  }
}

TEST(Utf8, FirstCharacterAndContains) {
  EXPECT_EQ(base::firstCharacterUpper("alice"), "A");
  EXPECT_EQ(base::firstCharacterUpper("ñandu"), "Ñ");
  EXPECT_EQ(base::firstCharacterUpper("张三"), "张");
  EXPECT_EQ(base::firstCharacterUpper("😀x"), "😀");
  EXPECT_EQ(base::firstCharacterUpper(""), "");
  EXPECT_TRUE(base::contains("12345@chatroom", "@chatroom"));
  EXPECT_FALSE(base::contains("abc", ""));
  EXPECT_FALSE(base::contains("", "a"));
  EXPECT_TRUE(base::startsWith("gh_abc", "gh_"));
  EXPECT_FALSE(base::startsWith("g", "gh_"));
}

// Read eight bytes at a time: a high byte must be seen wherever it falls,
// in the whole words and in the tail.
TEST(Utf8, AsciiIsJudgedAtEveryPositionAndLength) {
  EXPECT_TRUE(base::isAscii(""));
  for (std::size_t len = 1; len <= 19; ++len) {
    std::string s(len, '\x7F');
    EXPECT_TRUE(base::isAscii(s)) << len;
    for (std::size_t at = 0; at < len; ++at) {
      std::string t = s;
      t[at] = '\x80';
      EXPECT_FALSE(base::isAscii(t)) << len << " " << at;
    }
  }
  EXPECT_FALSE(base::isAscii("密友"));
}

TEST(Utf8, TrimsWhatFoundationCallsWhitespaceAndCountsAsNSStringDoes) {
  EXPECT_EQ(base::trimWhitespaceAndNewlines("\u3000 abc\u00A0\u2029\n"), "abc");
  EXPECT_EQ(base::trimWhitespaceAndNewlines("a\u3000b"), "a\u3000b");
  EXPECT_EQ(base::trimWhitespaceAndNewlines("\u2003\u0085\t"), "");
  EXPECT_EQ(base::trimWhitespaceAndNewlines("\u200B"), "\u200B");  // zero width: not a blank
  EXPECT_EQ(base::utf16Length("密码"), 2u);
  EXPECT_EQ(base::utf16Length("a\U0001F600"), 3u);
  EXPECT_EQ(base::utf16Length(""), 0u);
}

}  // namespace

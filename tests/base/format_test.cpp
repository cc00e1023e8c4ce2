// The Objective-C style formatter of log lines.
#include <gtest/gtest.h>

#include <cstdint>

#include "base/format.hpp"

namespace {

using base::format;

TEST(Format, LogLineConversions) {
  EXPECT_EQ(format("[QB] reveal ex: %@", std::string("boom")), "[QB] reveal ex: boom");
  EXPECT_EQ(format("[QB] softReload main force=%d", true), "[QB] softReload main force=1");
  EXPECT_EQ(format("%02ld:%02ld", 8L, 5L), "08:05");
  EXPECT_EQ(format("%ld|%lu|%d", -3L, 7UL, 42), "-3|7|42");
  EXPECT_EQ(format("%s and %@", "c", "objc"), "c and objc");
  EXPECT_EQ(format("100%% sure"), "100% sure");
  EXPECT_EQ(format("[QB] schedule apply → %@", "show"), "[QB] schedule apply → show");
  EXPECT_EQ(format("最多添加 %ld 个时段", 3L), "最多添加 3 个时段");
}

TEST(Format, WidthFlagsAndPrecision) {
  EXPECT_EQ(format("[%5d]", 42), "[   42]");
  EXPECT_EQ(format("[%-5d]", 42), "[42   ]");
  EXPECT_EQ(format("[%+d]", 4), "[+4]");
  EXPECT_EQ(format("[%6@]", "ab"), "[    ab]");
  EXPECT_EQ(format("[%-4s]", "ab"), "[ab  ]");
  EXPECT_EQ(format("[%.2s]", "abcdef"), "[ab]");
  EXPECT_EQ(format("%.2f", 0.125), "0.12");
  EXPECT_EQ(format("%x %X", 255, 255), "ff FF");
  EXPECT_EQ(format("%lld %llu %zu", -1LL, 2ULL, 3UL), "-1 2 3");
  EXPECT_EQ(format("[%.4s][%.s]", "密友", "abc"), "[密][]") << "cut on a character boundary";
  EXPECT_EQ(format("%c%c", 'A', 0xE9), "Aé");
}

TEST(Format, MissingSurplusAndUnknown) {
  EXPECT_EQ(format("%@ / %s / %d"), "(null) / (null) / 0");
  EXPECT_EQ(format("%d", 1, 2, 3), "1");
  EXPECT_EQ(format("%y and %"), "%y and %");
  EXPECT_EQ(format("%@", 5), "5") << "a number given for %@ prints as one";
  EXPECT_EQ(format("%d", std::string("text")), "0");
  EXPECT_EQ(format(""), "");
  EXPECT_EQ(format("%99999999999d|%d", 7), "%99999999999d|7") << "a width printf cannot take";
  EXPECT_EQ(format("%d|%u", 1e300, -1.0),
            std::to_string(INT64_MAX) + "|" + std::to_string(UINT64_MAX));
}

}  // namespace

// Foundation's number readings of property-list values, and dictionary edits.
#include <gtest/gtest.h>

#include <climits>

#include "base/value.hpp"

namespace {

using base::Value;

TEST(ValueNumbers, IntegerValueOfStrings) {
  EXPECT_EQ(base::integerValueOfString("42"), 42);
  EXPECT_EQ(base::integerValueOfString("  \t\n-17xyz"), -17);
  EXPECT_EQ(base::integerValueOfString("+8"), 8);
  EXPECT_EQ(base::integerValueOfString("abc"), 0);
  EXPECT_EQ(base::integerValueOfString(""), 0);
  EXPECT_EQ(base::integerValueOfString("- 5"), 0) << "no blanks after the sign";
  EXPECT_EQ(base::integerValueOfString("3.9"), 3);
  EXPECT_EQ(base::integerValueOfString("99999999999999999999"), LONG_MAX);
  EXPECT_EQ(base::integerValueOfString("-99999999999999999999"), LONG_MIN);
  EXPECT_EQ(base::integerValueOfString("-9223372036854775808"), LONG_MIN);
  EXPECT_EQ(base::integerValueOfString("9223372036854775807"), LONG_MAX);
  EXPECT_EQ(base::integerValueOfString("9223372036854775808"), LONG_MAX);
}

TEST(ValueNumbers, BoolValueOfStrings) {
  for (const char* yes :
       {"YES", "yes", "Y", "true", "T", "t", "1", "007", "  -3", "+9", "9abc", " y"})
    EXPECT_TRUE(base::boolValueOfString(yes)) << yes;
  for (const char* no : {"NO", "no", "false", "0", "000", "", "   ", "0.5", "x1", "-", "-y", "N"})
    EXPECT_FALSE(base::boolValueOfString(no)) << no;
}

TEST(ValueNumbers, OnlyNumbersAndStringsAnswer) {
  EXPECT_EQ(Value(true).integerValue(), 1);
  EXPECT_EQ(Value(false).boolValue(), false);
  EXPECT_EQ(Value(-2.9).integerValue(), -2) << "truncated toward zero";
  EXPECT_EQ(Value(1e300).integerValue(), LONG_MAX);
  EXPECT_EQ(Value(-1e300).integerValue(), LONG_MIN);
  EXPECT_EQ(Value(0.0 / 0.0).integerValue(), 0);
  EXPECT_EQ(Value(-1).boolValue(), true);
  EXPECT_EQ(Value(0.5).boolValue(), true);
  EXPECT_EQ(Value(0).boolValue(), false);
  EXPECT_EQ(Value(" 12").integerValue(), 12);
  EXPECT_EQ(Value("yes").boolValue(), true);
  EXPECT_EQ(Value().integerValue(), std::nullopt);
  EXPECT_EQ(Value(base::Array{}).boolValue(), std::nullopt);
  EXPECT_EQ(Value(base::Dictionary{}).integerValue(), std::nullopt);
  EXPECT_EQ(Value(base::Data{1}).integerValue(), std::nullopt);
  EXPECT_EQ(Value(base::Date{5}).boolValue(), std::nullopt);
}

TEST(ValueDictionary, SetKeepsOrderAndReplacesInPlace) {
  Value d;
  d.set("b", Value(1));
  d.set("a", Value(2));
  d.set("b", Value("x"));
  ASSERT_TRUE(d.isDictionary());
  const base::Dictionary& entries = *d.asDictionary();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].first, "b");
  EXPECT_EQ(entries[0].second, Value("x"));
  EXPECT_EQ(*d.find("a"), Value(2));
  EXPECT_EQ(d.find("missing"), nullptr);
  Value notDict(5);
  notDict.set("k", Value(1));
  EXPECT_EQ(notDict, Value(5)) << "only a dictionary (or null) takes keys";
  EXPECT_EQ(Value(5).find("k"), nullptr);
}

TEST(ValueDescribe, ReadableForms) {
  Value v(base::Dictionary{{"s", Value("a\"b")},
                           {"a", Value(base::Array{Value(1), Value(true), Value()})}});
  EXPECT_EQ(base::describe(v), "{s = \"a\\\"b\"; a = [1, true, null]}");
  EXPECT_EQ(base::describe(Value(0.25)), "0.25");
  EXPECT_EQ(base::describe(Value(base::Data{1, 2})), "<2 bytes>");
  EXPECT_EQ(base::describe(Value(base::Date{817128000.5})), "date(817128000.5)");
  EXPECT_EQ(
      base::describe(Value(base::Array{Value(base::Dictionary{}), Value(false), Value("\\")})),
      "[{}, false, \"\\\\\"]");
}

}  // namespace

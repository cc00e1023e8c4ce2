// Foundation values as the system reads them from host objects.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/utf8.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/icu_text.hpp"
#include "support/sim_world.hpp"

namespace {

using rt::Id;
using rt::SEL;

long hostInteger(Id, SEL) { return 3; }

class Foundation : public qbtest::SimWorld {};

TEST_F(Foundation, NumberReadingsFollowFoundationForNumbersAndStrings) {
  EXPECT_EQ(rt::integerValue(rt::str("  -42abc")), -42);
  EXPECT_EQ(rt::integerValue(rt::str("abc")), 0);
  EXPECT_EQ(rt::integerValue(rt::realNumber(2.9)), 2);
  EXPECT_EQ(rt::integerValue(rt::boolNumber(true)), 1);
  EXPECT_TRUE(rt::boolValue(rt::str("yes")));
  EXPECT_TRUE(rt::boolValue(rt::str("T")));
  EXPECT_FALSE(rt::boolValue(rt::str("no")));
  EXPECT_FALSE(rt::boolValue(rt::str("0")));
  EXPECT_TRUE(rt::boolValue(rt::number(-1)));
  EXPECT_EQ(rt::integerValue(nullptr), 0);
  EXPECT_FALSE(rt::boolValue(rt::null())) << "NSNull does not answer boolValue";
  EXPECT_FALSE(rt::answersIntegerValue(rt::array({})));
  rt::Class c = sim::ClassBuilder("Countish").method("integerValue", hostInteger).build();
  EXPECT_EQ(rt::integerValue(rt::send<Id>(c, "new")), 3)
      << "any object answering integerValue counts";
}

TEST_F(Foundation, StringsCompareByTextAndCountUtf16) {
  Id a = rt::str("密友");
  EXPECT_TRUE(rt::isString(a));
  EXPECT_EQ(rt::send<unsigned long>(a, "length"), 2u);
  EXPECT_EQ(rt::send<unsigned long>(rt::str("😀"), "length"), 2u) << "a surrogate pair";
  EXPECT_TRUE(rt::isEqual(a, rt::str("密友")));
  EXPECT_FALSE(rt::isEqual(a, rt::str("密")));
  EXPECT_FALSE(rt::isEqual(rt::str("1"), rt::number(1)));
  EXPECT_TRUE(rt::send<bool>(rt::str("12345@chatroom"), "containsString:", rt::str("@chatroom")));
  EXPECT_TRUE(rt::send<bool>(rt::str("gh_abc"), "hasPrefix:", rt::str("gh_")));
  EXPECT_EQ(rt::lowercase("VERSION Ünïcode ΣΑΣ"), "version ünïcode σας")
      << "full Unicode mapping, final sigma";
  EXPECT_EQ(rt::nonEmptyString(rt::str("")), std::nullopt);
  EXPECT_EQ(rt::asString(rt::number(1)), std::nullopt);
}

TEST_F(Foundation, TheBaseCaseMappingAgreesWithIcuWhereItClaimsCoverage) {
  const std::pair<char32_t, char32_t> ranges[] = {{0x41, 0x7A},   {0xC0, 0xFE},   {0x100, 0x17F},
                                                  {0x386, 0x3CE}, {0x400, 0x45F}, {0x460, 0x481},
                                                  {0x48A, 0x4BF}};
  int compared = 0;
  for (auto [from, to] : ranges) {
    for (char32_t cp = from; cp <= to; ++cp) {
      if (cp == 0x130 || cp == 0x149) continue;  // ICU expands these to two characters
      std::string one;
      base::appendUtf8(one, cp);
      EXPECT_EQ(base::lowercase(one), rt::lowercase(one)) << "U+" << std::hex << unsigned(cp);
      // ICU's full mapping expands these to several characters.
      bool expands = cp == 0xDF || cp == 0x390 || cp == 0x3B0;
      if (!expands) {
        EXPECT_EQ(base::uppercase(one), sim::icuUppercase(one)) << "U+" << std::hex << unsigned(cp);
      }
      ++compared;
    }
  }
  EXPECT_GT(compared, 500);
}

TEST_F(Foundation, LocalizedStandardCompareIsNumericAwareAndUsesTheChineseLocale) {
  EXPECT_LT(rt::localizedStandardCompare("item2", "item10"), 0);
  EXPECT_GT(rt::localizedStandardCompare("item10", "item2"), 0);
  EXPECT_EQ(rt::localizedStandardCompare("same", "same"), 0);
  EXPECT_NE(rt::localizedStandardCompare("a", "A"), 0) << "a total order";
  std::vector<std::string> names = {"张三", "阿明", "Bob", "李四", "alice"};
  std::sort(names.begin(), names.end(), [](const std::string& x, const std::string& y) {
    return rt::localizedStandardCompare(x, y) < 0;
  });
  // The zh collation orders Han by pinyin, a(阿) < l(李) < z(张), ahead of Latin
  // (code-point order would put 张 first).
  EXPECT_EQ(names, (std::vector<std::string>{"阿明", "李四", "张三", "alice", "Bob"}));
}

TEST_F(Foundation, CollectionsAnswerLikeFoundation) {
  Id arr = rt::array({rt::str("a"), rt::str("b")});
  EXPECT_EQ(rt::count(arr), 2);
  EXPECT_EQ(rt::asString(rt::objectAtIndex(arr, 1)), "b");
  EXPECT_THROW(rt::objectAtIndex(arr, 2), rt::Exception);
  EXPECT_FALSE(rt::respondsTo(arr, rt::sel("addObject:"))) << "immutable";
  Id m = rt::mutableArray();
  rt::addObject(m, rt::str("x"));
  EXPECT_THROW(rt::addObject(m, nullptr), rt::Exception);
  EXPECT_TRUE(rt::isMutableArray(m));
  EXPECT_TRUE(rt::containsObject(m, rt::str("x")));

  Id d = rt::dictionary({{rt::str("k"), rt::number(1)}});
  EXPECT_FALSE(rt::respondsTo(d, rt::sel("setObject:forKey:")));
  EXPECT_TRUE(rt::respondsTo(d, rt::sel("allKeys")));
  Id md = rt::mutableDictionary({{rt::str("k"), rt::number(1)}});
  rt::setObjectForKey(md, rt::number(2), rt::str("k"));
  EXPECT_EQ(rt::count(md), 1) << "an equal key replaces";
  EXPECT_EQ(rt::integerValue(rt::objectForKey(md, "k")), 2);
  EXPECT_THROW(rt::setObjectForKey(md, nullptr, rt::str("k")), rt::Exception);
  EXPECT_TRUE(rt::isEqual(rt::dictionary({{rt::str("k"), rt::number(2)}}), md));

  Id s = rt::set({rt::str("a"), rt::str("a"), rt::str("b")});
  EXPECT_EQ(rt::count(s), 2);
  EXPECT_TRUE(rt::containsObject(s, rt::str("b")));

  Id ip = rt::indexPath(3, 1);
  EXPECT_EQ(rt::indexPathRow(ip), 3);
  EXPECT_EQ(rt::indexPathSection(ip), 1);
  EXPECT_TRUE(rt::isEqual(ip, rt::indexPath(3, 1)));
  EXPECT_TRUE(rt::isNull(rt::null()));
  EXPECT_EQ(rt::null(), rt::send<Id>(rt::getClass("NSNull"), "null"));
}

TEST_F(Foundation, DescriptionsAreWhatPercentAtPrints) {
  EXPECT_EQ(rt::description(nullptr), "(null)");
  EXPECT_EQ(rt::description(rt::str("x")), "x");
  EXPECT_EQ(rt::description(rt::number(5)), "5");
  EXPECT_EQ(rt::description(rt::boolNumber(true)), "1");
  EXPECT_EQ(rt::description(rt::null()), "<null>");
  EXPECT_EQ(rt::description(rt::array({rt::str("a"), rt::number(2)})), "(a, 2)");
}

TEST_F(Foundation, PropertyListValuesRoundTrip) {
  base::Dictionary d;
  d.emplace_back("password", base::Value("7351"));
  d.emplace_back("shakeHide", base::Value(true));
  d.emplace_back("secretNotifyMode", base::Value(2));
  d.emplace_back("secrets", base::Value(base::Array{base::Value("alice"), base::Value("密友")}));
  base::Value v(d);
  Id obj = rt::fromValue(v);
  EXPECT_TRUE(rt::isDictionary(obj));
  EXPECT_EQ(rt::toValue(obj), v);
  EXPECT_EQ(rt::toValue(rt::send<Id>(rt::getClass("NSObject"), "new")), std::nullopt);
}

}  // namespace

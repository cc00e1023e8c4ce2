// The daily-window rules: membership across midnight, overlap, the messages in
// their order, and the editing operations.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

using core::DailyWindow;
using core::DailyWindows;
using core::QBConfig;

base::Value w(long start, long end, long mode = 0) {
  return DailyWindow{start, end, mode}.toValue();
}
base::Value list(std::initializer_list<base::Value> items) {
  return base::Value(base::Array(items));
}

std::string message(const base::Value& v) {
  std::string m = "(valid)";
  QBConfig::validateDailyWindows(v, &m);
  return m;
}

TEST(DailyWindowRules, MembershipIsHalfOpenAndCrossesMidnight) {
  EXPECT_TRUE(QBConfig::isMinuteInWindow(480, 480, 1320));
  EXPECT_FALSE(QBConfig::isMinuteInWindow(1320, 480, 1320));
  EXPECT_FALSE(QBConfig::isMinuteInWindow(479, 480, 1320));
  EXPECT_TRUE(QBConfig::isMinuteInWindow(23 * 60, 1320, 360));
  EXPECT_TRUE(QBConfig::isMinuteInWindow(5 * 60 + 59, 1320, 360));
  EXPECT_FALSE(QBConfig::isMinuteInWindow(6 * 60, 1320, 360));
  EXPECT_FALSE(QBConfig::isMinuteInWindow(21 * 60 + 59, 1320, 360));
  EXPECT_FALSE(QBConfig::isMinuteInWindow(100, 100, 100)) << "an empty window holds no minute";
  EXPECT_TRUE(QBConfig::isMinuteInWindow(-30, 0, 10)) << "arguments are clamped";
  EXPECT_FALSE(QBConfig::isMinuteInWindow(5000, 1400, 1500))
      << "both clamp to 1439, the excluded end";
}

TEST(DailyWindowRules, OverlapIsSomeSharedMinute) {
  EXPECT_FALSE(QBConfig::windowsOverlap(480, 780, 780, 900)) << "adjacent endpoints";
  EXPECT_TRUE(QBConfig::windowsOverlap(480, 781, 780, 900));
  EXPECT_TRUE(QBConfig::windowsOverlap(1320, 360, 300, 420)) << "05:00 lies in both";
  EXPECT_FALSE(QBConfig::windowsOverlap(1320, 360, 360, 1320)) << "together they cover the day";
  EXPECT_TRUE(QBConfig::windowsOverlap(1320, 360, 1380, 60));
  EXPECT_FALSE(QBConfig::windowsOverlap(10, 10, 0, 1439));
}

TEST(DailyWindowRules, OverlapAgreesWithTheMinuteByMinuteRule) {
  auto everyMinute = [](long s1, long e1, long s2, long e2) {
    for (long m = 0; m < 1440; ++m)
      if (QBConfig::isMinuteInWindow(m, s1, e1) && QBConfig::isMinuteInWindow(m, s2, e2))
        return true;
    return false;
  };
  const long edges[] = {-7, 0, 1, 359, 360, 361, 1319, 1320, 1438, 1439, 1440, 9000};
  for (long s1 : edges)
    for (long e1 : edges)
      for (long s2 : edges)
        for (long e2 : edges)
          ASSERT_EQ(QBConfig::windowsOverlap(s1, e1, s2, e2), everyMinute(s1, e1, s2, e2))
              << s1 << "-" << e1 << " and " << s2 << "-" << e2;
  std::uint64_t x = 88172645463325252ull;  // xorshift: the same draws every run
  auto draw = [&x] {
    x ^= x << 13, x ^= x >> 7, x ^= x << 17;
    return long(x % 1460) - 10;
  };
  for (int i = 0; i < 3000; ++i) {
    long s1 = draw(), e1 = draw(), s2 = draw(), e2 = draw();
    ASSERT_EQ(QBConfig::windowsOverlap(s1, e1, s2, e2), everyMinute(s1, e1, s2, e2))
        << s1 << "-" << e1 << " and " << s2 << "-" << e2;
  }
}

TEST(DailyWindowRules, TextForms) {
  EXPECT_EQ(QBConfig::clampMinute(1440), 1439);
  EXPECT_EQ(QBConfig::clampMinute(-3), 0);
  EXPECT_EQ(QBConfig::stringFromMinute(1439), "23:59");
  EXPECT_EQ(QBConfig::stringFromMinute(-1), "00:00");
  EXPECT_EQ(QBConfig::stringFromMinute(480), "08:00");
  EXPECT_EQ(QBConfig::stringFromWindow(w(1320, 360, 1)), "22:00 – 06:00（跨午夜） · 隐藏");
  EXPECT_EQ(QBConfig::stringFromWindow(w(480, 1320)), "08:00 – 22:00 · 显示");
  EXPECT_EQ(QBConfig::stringFromWindow(base::Value("x")), "--:-- – --:-- · 显示");
  // The midnight mark compares the raw values, before clamping.
  EXPECT_EQ(QBConfig::stringFromWindow(w(2000, 1500)), "23:59 – 23:59（跨午夜） · 显示");
  EXPECT_EQ(QBConfig::stringFromWindowMode(1), "隐藏");
  EXPECT_EQ(QBConfig::stringFromWindowMode(7), "显示");
  EXPECT_EQ(QBConfig::modeFromWindow(w(0, 1, 1)), 1);
  EXPECT_EQ(QBConfig::modeFromWindow(base::Value(base::Dictionary{{"mode", base::Value("1")}})), 1);
  EXPECT_EQ(QBConfig::modeFromWindow(base::Value(1)), 0);
  EXPECT_EQ(QBConfig::QBWindow(-5, 2000, -1), (DailyWindow{0, 1439, 0}));
}

TEST(DailyWindowRules, ValidationMessagesInRuleOrder) {
  EXPECT_EQ(message(list({})), "至少保留一个时段");
  EXPECT_EQ(message(base::Value("nope")), "至少保留一个时段");
  EXPECT_EQ(message(list({base::Value(1), w(0, 1), w(2, 3), w(4, 5)})), "最多添加 3 个时段")
      << "count before format";
  EXPECT_EQ(message(list({w(0, 60), base::Value("x")})), "时段格式无效");
  EXPECT_EQ(message(list({w(0, 0)})), "开始与结束不能相同");
  EXPECT_EQ(message(list({w(-5, 0)})), "开始与结束不能相同") << "-5 clamps to 0";
  EXPECT_EQ(message(list({w(0, 10, 2)})), "请选择显示或隐藏");
  EXPECT_EQ(message(list({w(0, 10, -1)})), "请选择显示或隐藏");
  EXPECT_EQ(message(list({w(10, 10, 5)})), "开始与结束不能相同")
      << "ends are checked before the mode";
  EXPECT_EQ(message(list({w(480, 781), w(780, 900, 1)})),
            "时段不能重叠。若要午间隐藏，请拆成多段，例如：08:00–13:00 显示、13:00–15:00 "
            "隐藏、15:00–22:00 "
            "显示（相邻端点可以相同）。");
  EXPECT_EQ(message(list({w(480, 780), w(780, 900, 1), w(900, 1320)})), "(valid)");
  EXPECT_EQ(message(list({base::Value(base::Dictionary{})})), "开始与结束不能相同")
      << "missing keys read as 0";
  EXPECT_TRUE(QBConfig::validateDailyWindows(list({w(1320, 360, 1)}), nullptr));
}

TEST(DailyWindowRules, SanitisingKeepsTheFirstThreeUsable) {
  EXPECT_EQ(QBConfig::sanitizeWindowsArray(base::Value(1)), std::nullopt);
  EXPECT_EQ(QBConfig::sanitizeWindowsArray(list({})), std::nullopt);
  EXPECT_EQ(QBConfig::sanitizeWindowsArray(
                list({base::Value(base::Dictionary{{"start", base::Value(1)}})})),
            std::nullopt);
  EXPECT_EQ(
      QBConfig::sanitizeWindowsArray(list({w(5, 5), w(1, 2, 3), w(1, 2, 1), w(9, 8), w(0, 1)})),
      (DailyWindows{{5, 5, 0}, {1, 2, 0}, {1, 2, 1}}))
      << "no overlap or empty check here";
}

class DailyWindowEditing : public qbtest::SimWorld {
 protected:
  QBConfig& c = QBConfig::shared();
  base::Value fileWindows() {
    auto d = sys::readPropertyList(c.configURL());
    return d ? *d->find("dailyWindows") : base::Value();
  }
};

TEST_F(DailyWindowEditing, AddKeepsStartOrderAndSaves) {
  std::string m;
  ASSERT_TRUE(c.setDailyWindows(list({w(720, 780)}), &m)) << m;
  ASSERT_TRUE(c.addDailyWindowWithStart(540, 600, 1, &m)) << m;
  EXPECT_EQ(c.normalizedDailyWindows(), (DailyWindows{{540, 600, 1}, {720, 780, 0}}));
  EXPECT_EQ(fileWindows(), core::windowsValue({{540, 600, 1}, {720, 780, 0}}));
  ASSERT_TRUE(c.updateDailyWindowAtIndex(0, 500, 560, 0, &m)) << "index 0 is 09:00 now";
  EXPECT_EQ(c.normalizedDailyWindows(), (DailyWindows{{500, 560, 0}, {720, 780, 0}}));
  ASSERT_TRUE(c.addDailyWindowWithStart(1320, 360, 1, &m));
  EXPECT_FALSE(c.addDailyWindowWithStart(100, 200, 0, &m));
  EXPECT_EQ(m, "最多添加 3 个时段");
}

TEST_F(DailyWindowEditing, RefusedEditsChangeNothing) {
  std::string m;
  ASSERT_TRUE(c.setDailyWindows(list({w(480, 780), w(780, 900, 1)}), &m));
  base::Value before = fileWindows();
  EXPECT_FALSE(c.updateDailyWindowAtIndex(1, 700, 900, 1, &m));
  EXPECT_EQ(m, core::kMsgOverlap) << "checked against the other windows";
  EXPECT_FALSE(c.updateDailyWindowAtIndex(2, 0, 10, 0, &m));
  EXPECT_EQ(m, "时段不存在");
  EXPECT_FALSE(c.removeDailyWindowAtIndex(5, &m));
  EXPECT_EQ(m, "时段不存在");
  EXPECT_FALSE(c.updateDailyWindowAtIndex(0, 10, 10, 0, nullptr)) << "no message place is fine";
  EXPECT_EQ(fileWindows(), before);
  ASSERT_TRUE(c.removeDailyWindowAtIndex(0, &m));
  EXPECT_EQ(c.normalizedDailyWindows(), (DailyWindows{{780, 900, 1}}));
  EXPECT_FALSE(c.removeDailyWindowAtIndex(0, &m));
  EXPECT_EQ(m, "至少保留一个时段");
}

}  // namespace

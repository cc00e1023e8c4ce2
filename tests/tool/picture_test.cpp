// Pictures of the simulated screens hold what a person would check on them:
// the phone's pixel size, a mark under the checked row only, switches that
// look on or off, Chinese text drawn with glyphs, the secret's row only when
// revealed, dialogs centred, an in-app banner while it lasts, and a numbered
// picture after each show of a screen; outside the app, the lock screen
// and the share sheet with nothing of a hidden secret's.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "commands.hpp"
#include "pictures.hpp"
#include "rt/send.hpp"
#include "runner.hpp"
#include "sim/picture/canvas.hpp"
#include "sim/picture/png_text.hpp"
#include "sim/picture/screen_picture.hpp"
#include "sim/picture/shrink.hpp"
#include "sim/frameworks/uikit/layout.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/colors.hpp"

namespace {

using sim::picture::Picture;

class Pictures : public ::testing::Test {
 protected:
  void run(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) qbsim::execute(session, {qbsim::splitWords(line), line});
  }
  Picture draw() {
    Picture p;
    session.process()->runGuarded([&] { p = sim::picture::drawScreen(); });
    return p;
  }
  void openPanel() {
    run({"friend alice nick=Alice", "friend bob nick=Bob", "session bob", "session alice",
         "secret bob", "launch", "wait 2", "open about", "wait 1", "tap page", "tap page",
         "tap page", "tap page", "tap page", "type 7351", "press 确定", "wait 1",
         "expect screen panel"});
  }
  static const sim::picture::DrawnRow& row(const Picture& p, const std::string& title) {
    for (const auto& r : p.rows)
      if (r.title == title) return r;
    throw std::runtime_error("no row " + title);
  }
  // How many pixels in `r` are not the white of a row.
  static int marked(const Picture& p, rt::CGRect r) {
    int n = 0;
    for (double y = r.origin.y; y < r.origin.y + r.size.height; y += 1.0 / 3)
      for (double x = r.origin.x; x < r.origin.x + r.size.width; x += 1.0 / 3)
        if (p.pixel(x, y) != 0xFFFFFFFFu) ++n;
    return n;
  }
  std::ostringstream out;
  qbsim::Session session{{}, out};
};

TEST_F(Pictures, TheMainListShowsTheSecretOnlyWhenRevealed) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "session bob", "session alice",
       "secret bob", "launch", "wait 2", "expect hidden"});
  Picture hidden = draw();
  EXPECT_EQ(hidden.width, 1170);
  EXPECT_EQ(hidden.height, 2532);
  ASSERT_EQ(hidden.rows.size(), 1u);
  EXPECT_EQ(hidden.rows[0].title, "Alice");
  run({"shake", "type 7351", "press 确定", "wait 1", "expect revealed"});
  Picture revealed = draw();
  ASSERT_EQ(revealed.rows.size(), 2u);
  EXPECT_EQ(revealed.rows[0].title, "Alice");
  EXPECT_EQ(revealed.rows[1].title, "Bob");
  // Rows are stacked, not drawn over each other, and start below the bars.
  EXPECT_GE(revealed.rows[0].frame.origin.y, 47 + 44);
  EXPECT_GE(revealed.rows[1].frame.origin.y,
            revealed.rows[0].frame.origin.y + revealed.rows[0].frame.size.height);
  EXPECT_EQ(revealed.unknownGlyphs, 0);
  EXPECT_GT(marked(revealed, revealed.rows[1].frame), 0) << "Bob's row is drawn";
}

TEST_F(Pictures, TheContactsListDrawsOneRowPerContactShown) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "friend carol nick=卡罗", "secret bob",
       "launch", "wait 2", "open contacts"});
  Picture p = draw();
  std::vector<std::string> titles;
  for (const auto& r : p.rows) titles.push_back(r.title);
  EXPECT_EQ(titles, (std::vector<std::string>{"Alice", "卡罗"}));
  EXPECT_EQ(p.unknownGlyphs, 0);
}

TEST_F(Pictures, ThePanelMarksTheCheckedModeAndTheSwitchesInBothModes) {
  openPanel();
  Picture manual = draw();
  EXPECT_EQ(manual.unknownGlyphs, 0) << "the panel's Chinese texts have glyphs";
  EXPECT_EQ(row(manual, "手动控制").state, "checked");
  int checked = marked(manual, row(manual, "手动控制").accessory);
  int unchecked = marked(manual, row(manual, "定时控制").accessory);
  EXPECT_GT(checked, 20);
  EXPECT_EQ(unchecked, 0);
  EXPECT_TRUE(manual.symbols.count("checkmark"));
  EXPECT_TRUE(manual.symbols.count("hand.tap.fill"));
  // The names of the stand-ins travel in the PNG.
  std::string names = sim::picture::textChunks(manual.png)["Symbols"];
  EXPECT_NE(names.find("checkmark"), std::string::npos) << names;
  EXPECT_NE(names.find("clock.fill"), std::string::npos) << names;

  run({"panel switch 2 0 off", "panel tap 0 1"});
  Picture schedule = draw();
  EXPECT_EQ(row(schedule, "定时控制").state, "checked");
  EXPECT_EQ(marked(schedule, row(schedule, "手动控制").accessory), 0);
  EXPECT_GT(marked(schedule, row(schedule, "定时控制").accessory), 20);
  EXPECT_NE(schedule.rows.size(), manual.rows.size())
      << "schedule mode lists the daily windows instead";
  EXPECT_TRUE(schedule.symbols.count("plus"));
  EXPECT_EQ(schedule.unknownGlyphs, 0);
}

TEST_F(Pictures, SwitchesLookOnOrOff) {
  openPanel();
  run({"panel switch 2 0 off"});
  Picture p = draw();
  const auto& off = row(p, "轻晃隐藏");
  const auto& on = row(p, "轻晃显示");
  ASSERT_EQ(off.state, "off");
  ASSERT_EQ(on.state, "on");
  auto green = [&](const sim::picture::DrawnRow& r) {
    int n = 0;
    for (double x = r.accessory.origin.x; x < r.accessory.origin.x + r.accessory.size.width; x += 1)
      for (double y = r.accessory.origin.y; y < r.accessory.origin.y + r.accessory.size.height;
           y += 1) {
        std::uint32_t px = p.pixel(x, y);
        int red = int(px >> 16 & 0xFF), g = int(px >> 8 & 0xFF);
        if (g > 150 && red < 100) ++n;
      }
    return n;
  };
  EXPECT_GT(green(on), 100);
  EXPECT_EQ(green(off), 0);
}

TEST_F(Pictures, ThePickerDrawsItsSearchAndTheCheckedContact) {
  openPanel();
  run({"panel tap 7 0", "wait 1", "picker search b"});
  Picture p = draw();
  EXPECT_EQ(row(p, "Bob").state, "checked");
  EXPECT_GT(marked(p, row(p, "Bob").accessory), 20);
  EXPECT_NE(std::find(p.texts.begin(), p.texts.end(), "b"), p.texts.end()) << "the search text";
  EXPECT_NE(std::find(p.texts.begin(), p.texts.end(), "添加密友"), p.texts.end()) << "the title";
  EXPECT_TRUE(p.symbols.count("magnifyingglass"));
  EXPECT_EQ(p.unknownGlyphs, 0);
}

TEST_F(Pictures, TheWindowEditorsThreeDialogsAreCentredWithTheirWheelAndButtons) {
  openPanel();
  run({"panel tap 0 1", "panel tap 2 1", "wait 1", "time 22:30"});
  auto alertFrame = [&] {
    rt::CGRect f;
    session.process()->runGuarded(
        [&] { f = sim::viewState(rt::send<rt::Id>(sim::topController(), "view"))->frame; });
    return f;
  };
  auto has = [](const Picture& p, const std::string& text) {
    return std::find(p.texts.begin(), p.texts.end(), text) != p.texts.end();
  };
  Picture start = draw();
  EXPECT_TRUE(has(start, "① 选择开始时间"));
  EXPECT_TRUE(has(start, "22") && has(start, "30")) << "the wheel shows the time set";
  rt::CGRect f = alertFrame();
  EXPECT_DOUBLE_EQ(f.origin.x + f.size.width / 2, 195);
  EXPECT_DOUBLE_EQ(f.origin.y + f.size.height / 2, 422);
  rt::CGRect wheel, confirm, cancel;
  session.process()->runGuarded([&] {
    rt::Id alert = sim::topController();
    wheel = sim::viewState(sim::alertTimePicker(alert))->frame;
    sim::AlertFrame laid =
        sim::layoutAlert(alert, [](const std::string&, const ui::Font&, double) { return 20.0; });
    confirm = laid.buttons.at(0), cancel = laid.buttons.at(1);  // in the order they were added
  });
  double wheelBottom = wheel.origin.y + wheel.size.height;
  EXPECT_GE(confirm.origin.y, wheelBottom) << "the buttons lie under the wheel";
  EXPECT_LE(confirm.origin.y - wheelBottom, 12) << "no gap under the wheel";
  EXPECT_LT(cancel.origin.x, confirm.origin.x) << "取消 on the left, as UIKit puts a cancel";
  run({"press 确定", "wait 1", "time 23:15"});
  Picture end = draw();
  EXPECT_TRUE(has(end, "② 选择结束时间"));
  EXPECT_TRUE(has(end, "23") && has(end, "15"));
  run({"press 确定", "wait 1"});
  Picture mode = draw();
  EXPECT_TRUE(has(mode, "③ 这段时间要"));
  for (const char* button : {"显示", "隐藏", "取消"}) EXPECT_TRUE(has(mode, button)) << button;
  f = alertFrame();
  EXPECT_DOUBLE_EQ(f.origin.y + f.size.height / 2, 422);
  for (const Picture* p : {&start, &end, &mode}) EXPECT_EQ(p->unknownGlyphs, 0);
}

TEST_F(Pictures, AnInAppBannerShowsOverTheListUntilItsTimeIsUp) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "session alice", "launch", "wait 2",
       "message bob \"晚上见\"", "expect banner bob"});
  Picture p = draw();
  auto has = [](const Picture& pic, const std::string& text) {
    return std::find(pic.texts.begin(), pic.texts.end(), text) != pic.texts.end();
  };
  EXPECT_TRUE(has(p, "Bob") && has(p, "晚上见")) << "the banner names Bob as the host does";
  EXPECT_FALSE(has(p, "bob"));
  EXPECT_NE(p.pixel(30, 60), p.pixel(30, 40)) << "the card stands out from the bar behind it";
  std::uint32_t beside = p.pixel(370, 75);  // right of the text, inside the card
  EXPECT_GT(int(beside & 0xFF), 200) << "the text lies on the light card, not on a box of its own";
  run({"wait 4"});
  Picture later = draw();
  EXPECT_EQ(later.pixel(30, 60), later.pixel(30, 40)) << "the card has gone";
}

// What the texts of the main list, the contacts and the search say.
bool drew(const Picture& p, const std::string& text) {
  return std::find(p.texts.begin(), p.texts.end(), text) != p.texts.end();
}

TEST_F(Pictures, TheSearchScreenShowsItsFieldWithTheQuery) {
  run({"friend alice nick=Alice", "launch", "wait 1", "open search 阿l"});
  Picture p = draw();
  EXPECT_TRUE(drew(p, "阿l")) << "the query in the field";
  EXPECT_FALSE(drew(p, "搜索") && !drew(p, "阿l")) << "not the placeholder";
  EXPECT_TRUE(p.symbols.count("magnifyingglass"));
  EXPECT_EQ(p.unknownGlyphs, 0);
  EXPECT_EQ(p.pixel(195, 500), 0xFFFFFFFFu) << "the screen under the field stays white";
}

TEST_F(Pictures, TheBiometricPromptIsDrawnOverTheScreen) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "session alice", "secret bob",
       "setting revealAuthMode 1", "launch", "wait 1"});
  Picture before = draw();
  run({"shake", "expect screen biometric"});
  Picture faceID = draw();
  EXPECT_TRUE(drew(faceID, "面容 ID"));
  EXPECT_TRUE(faceID.symbols.count("faceid"));
  EXPECT_NE(faceID.pixel(195, 422), before.pixel(195, 422)) << "the prompt's square";
  run({"biometric pass", "wait 1", "expect revealed"});
  EXPECT_FALSE(drew(draw(), "面容 ID")) << "the prompt goes once answered";
  // A phone with Touch ID asks in an alert of the system's, with the reason.
  std::ostringstream o;
  qbsim::Session touch({}, o);
  for (const char* line :
       {"device biometrics touchid", "friend bob", "secret bob", "setting revealAuthMode 1",
        "launch", "wait 1", "shake", "expect screen biometric"})
    qbsim::execute(touch, {qbsim::splitWords(line), line});
  Picture touchID;
  std::string reason;
  touch.process()->runGuarded([&] {
    touchID = sim::picture::drawScreen();
    reason = touch.process()->platform().biometricReason;
  });
  EXPECT_TRUE(drew(touchID, "取消"));
  EXPECT_TRUE(drew(touchID, reason));
  EXPECT_TRUE(touchID.symbols.count("touchid"));
  EXPECT_FALSE(drew(touchID, "面容 ID"));
}

TEST_F(Pictures, ARingingCallCoversTheScreenUntilItEnds) {
  run({"friend alice nick=Alice", "friend bob nick=Bob remark=老板", "session alice", "launch",
       "wait 1", "call video bob", "expect ringing bob"});
  Picture ringing = draw();
  EXPECT_TRUE(drew(ringing, "老板")) << "the caller by the name the host shows";
  EXPECT_TRUE(drew(ringing, "微信视频通话"));
  EXPECT_TRUE(drew(ringing, "接听") && drew(ringing, "拒绝"));
  EXPECT_LT(int(ringing.pixel(195, 500) & 0xFF), 80) << "the dark call screen, not the list";
  run({"wait 31", "expect no-ringing bob"});
  Picture after = draw();
  EXPECT_FALSE(drew(after, "微信视频通话"));
  EXPECT_EQ(ringing.unknownGlyphs, 0);
}

TEST_F(Pictures, APersonHasOneAvatarColourAndTheMainListShowsLastMessages) {
  run({"friend alice nick=Alice", "friend carol nick=Carol", "session carol", "session alice",
       "launch", "wait 1", "send alice \"明天见\""});
  Picture main = draw();
  EXPECT_TRUE(drew(main, "明天见")) << "the last message under the name";
  EXPECT_FALSE(drew(main, "alice")) << "not the username";
  run({"open contacts"});
  Picture contacts = draw();
  EXPECT_TRUE(drew(contacts, "2位联系人")) << "the contacts footer";
  // The avatar's top-left corner, clear of its initial.
  auto avatar = [](const Picture& p, const std::string& title) {
    const sim::picture::DrawnRow& r = row(p, title);
    return p.pixel(r.frame.origin.x + 16 + 6, r.frame.origin.y + r.frame.size.height / 2 - 12);
  };
  EXPECT_EQ(avatar(main, "Alice"), avatar(contacts, "Alice"));
  EXPECT_EQ(avatar(main, "Carol"), avatar(contacts, "Carol"));
  EXPECT_NE(avatar(contacts, "Alice"), avatar(contacts, "Carol"));
  EXPECT_NE(avatar(contacts, "Alice"), 0xFFFFFFFFu) << "an avatar is there";
}

TEST_F(Pictures, TheLockScreenDrawsWhatNotificationCenterHoldsAndNoHiddenSecret) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "room team@chatroom title=Team",
       "secret bob", "setting secretNotifyMode 0", "launch", "wait 1", "background",
       "message alice \"明天见\"", "message bob \"在吗？\"", "message team@chatroom \"周报\"",
       "expect lockscreen team@chatroom alice"});
  Picture p = qbsim::drawSystemSurface(session, "lockscreen");
  EXPECT_TRUE(drew(p, "Team")) << "a group's notification is titled by its name";
  EXPECT_TRUE(drew(p, "Alice"));
  EXPECT_TRUE(drew(p, "明天见"));
  EXPECT_FALSE(drew(p, "Bob"));
  EXPECT_FALSE(drew(p, "在吗？"));
  auto at = [&](const std::string& text) {
    return std::find(p.texts.begin(), p.texts.end(), text) - p.texts.begin();
  };
  EXPECT_LT(at("Team"), at("Alice")) << "newest first";
  EXPECT_EQ(p.unknownGlyphs, 0);
  EXPECT_THROW(qbsim::drawSystemSurface(session, "homescreen"), qbsim::ScriptError);
}

TEST_F(Pictures, TheShareSheetSuggestsInOrderInTheListsAvatarColours) {
  run({"friend alice nick=Alice", "friend bob nick=Bob", "friend carol nick=Carol", "session carol",
       "session alice", "secret bob", "launch", "wait 1", "send carol \"a\"", "send bob \"b\"",
       "send alice \"c\"", "wait 1", "expect suggestions alice carol"});
  Picture main = draw();
  Picture sheet = qbsim::drawSystemSurface(session, "sharesheet");
  EXPECT_FALSE(drew(sheet, "Bob"));
  auto at = [&](const std::string& text) {
    return std::find(sheet.texts.begin(), sheet.texts.end(), text) - sheet.texts.begin();
  };
  ASSERT_LT(at("Carol"), std::ptrdiff_t(sheet.texts.size()));
  EXPECT_LT(at("Alice"), at("Carol")) << "most recent first";
  // The first two circles of the row, above their initials.
  const sim::picture::DrawnRow& alice = row(main, "Alice");
  const sim::picture::DrawnRow& carol = row(main, "Carol");
  auto listAvatar = [&](const sim::picture::DrawnRow& r) {
    return main.pixel(r.frame.origin.x + 16 + 6, r.frame.origin.y + r.frame.size.height / 2 - 12);
  };
  EXPECT_EQ(sheet.pixel(12 + 30, 430 + 8), listAvatar(alice));
  EXPECT_EQ(sheet.pixel(88 + 30, 430 + 8), listAvatar(carol));
}

TEST(PictureCanvas, CountsGlyphsNoFontHas) {
  sim::picture::Canvas c(100, 40, 1);
  c.text("密友", {{0, 0}, {100, 40}}, {17, ui::Weight::Regular}, ui::kLabel);
  EXPECT_EQ(c.unknownGlyphs(), 0);
  c.text("\xEE\x80\x80", {{0, 0}, {100, 40}}, {17, ui::Weight::Regular},
         ui::kLabel);  // U+E000, private use
  EXPECT_EQ(c.unknownGlyphs(), 1);
}

TEST_F(Pictures, AShrunkCopyKeepsTheProportionsAndTheSymbolNames) {
  openPanel();
  Picture p = draw();
  std::string small = sim::picture::shrunk(p.png, 390);
  ASSERT_FALSE(small.empty());
  auto be32 = [&](std::size_t at) {
    unsigned v = 0;
    for (std::size_t i = 0; i < 4; ++i) v = v << 8 | static_cast<unsigned char>(small[at + i]);
    return v;
  };
  EXPECT_EQ(be32(16), 390u);
  EXPECT_EQ(be32(20), 844u);
  EXPECT_EQ(sim::picture::textChunks(small)["Symbols"], sim::picture::textChunks(p.png)["Symbols"]);
  EXPECT_LT(small.size(), p.png.size() / 3);
  EXPECT_TRUE(sim::picture::shrunk("not a png", 390).empty());
}

TEST(PictureStory, AShowOfAScreenLeavesANumberedPictureAndOtherShowsNone) {
  std::filesystem::path dir =
      std::filesystem::temp_directory_path() / ("quenby-pictures-" + std::to_string(::getpid()));
  std::filesystem::path script = dir.string() + ".qbs";
  std::ofstream(script)
      << "launch\nshow main\nshow state\nshow config\nshow log\nopen contacts\nshow contacts\n";
  qbsim::SimOptions options;
  options.picturesDir = dir.string();
  std::ostringstream out;
  ASSERT_EQ(qbsim::runFiles({script.string(), script.string()}, options, out), 0) << out.str();
  std::vector<std::string> names;
  for (const auto& e : std::filesystem::directory_iterator(dir))
    names.push_back(e.path().filename().string());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"001-main.png", "002-contacts.png", "003-main.png",
                                             "004-contacts.png"}))
      << "the second file's pictures number on";
  std::ifstream f(dir / "001-main.png", std::ios::binary);
  std::string png((std::istreambuf_iterator<char>(f)), {});
  ASSERT_GT(png.size(), 24u);
  auto be32 = [&](std::size_t at) {
    return (unsigned(static_cast<unsigned char>(png[at])) << 24) |
           (unsigned(static_cast<unsigned char>(png[at + 1])) << 16) |
           (unsigned(static_cast<unsigned char>(png[at + 2])) << 8) |
           unsigned(static_cast<unsigned char>(png[at + 3]));
  };
  EXPECT_EQ(be32(16), 1170u);
  EXPECT_EQ(be32(20), 2532u);
  EXPECT_TRUE(sim::picture::textChunks(png).count("Symbols"));
  std::filesystem::remove_all(dir);
  std::filesystem::remove(script);
}

}  // namespace

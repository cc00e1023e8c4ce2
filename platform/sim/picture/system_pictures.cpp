// The lock screen and the share sheet as a phone lays them out, at the same
// size and scale as the app's screens.
#include "sim/picture/system_pictures.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "base/utf8.hpp"
#include "sim/picture/canvas.hpp"
#include "sim/picture/palette.hpp"
#include "sim/frameworks/uikit/layout.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "ui/colors.hpp"

namespace sim::picture {
namespace {

constexpr ui::Color kWallpaper{0.15, 0.19, 0.32, 1};
constexpr ui::Color kWallpaperLow{0.27, 0.22, 0.38, 1};
constexpr ui::Color kOnWallpaper{1, 1, 1, 1};
constexpr ui::Color kPlatter{1, 1, 1, 0.78};
constexpr ui::Color kAppGreen{7 / 255.0, 193 / 255.0, 96 / 255.0, 1};

std::string firstCharacter(const std::string& s) {
  std::size_t end = 0;
  if (!s.empty()) base::decodeUtf8(s, end);
  return s.substr(0, end);
}

void appIcon(Canvas& cv, const std::string& app, rt::CGRect r) {
  cv.fill(r, kAppGreen, r.size.width * 0.225);
  cv.text(firstCharacter(app), r, {r.size.width * 0.45, ui::Weight::Semibold}, ui::kWhite,
          Align::Center, true, true);
}

// "11月25日 星期三" and "9:41" for a clock `t` seconds after 2001-01-01 UTC.
std::pair<std::string, std::string> dateAndTime(double t) {
  using namespace std::chrono;
  constexpr long kDaysFrom1970To2001 = 11323;
  long day = long(std::floor(t / 86400)) + kDaysFrom1970To2001;
  year_month_day ymd{sys_days{days{day}}};
  weekday wd{sys_days{days{day}}};
  static const char* const names[] = {"日", "一", "二", "三", "四", "五", "六"};
  char date[64], clock[48];
  std::snprintf(date, sizeof date, "%u月%u日 星期%s", unsigned(ymd.month()), unsigned(ymd.day()),
                names[wd.c_encoding()]);
  long minutes = long(std::floor(t - std::floor(t / 86400) * 86400)) / 60;
  std::snprintf(clock, sizeof clock, "%ld:%02ld", minutes / 60, minutes % 60);
  return {date, clock};
}

void padlock(Canvas& cv, double cx, double top) {
  cv.stroke(rect(cx - 6, top, 12, 16), kOnWallpaper, 2.2, 6);
  cv.fill(rect(cx - 9, top + 8, 18, 14), kOnWallpaper, 3);
}

}  // namespace

Picture drawLockScreen(const std::vector<LockScreenNotice>& notices, double absoluteTime) {
  Canvas cv{kScreenWidth, kScreenHeight, 3};
  constexpr int kBands = 48;  // enough that no step shows at 3×
  for (int i = 0; i < kBands; ++i) {
    double t = double(i) / (kBands - 1);
    ui::Color c{kWallpaper.red + (kWallpaperLow.red - kWallpaper.red) * t,
                kWallpaper.green + (kWallpaperLow.green - kWallpaper.green) * t,
                kWallpaper.blue + (kWallpaperLow.blue - kWallpaper.blue) * t, 1};
    cv.fill(rect(0, kScreenHeight * i / kBands, kScreenWidth, kScreenHeight / kBands + 1), c);
  }
  padlock(cv, kScreenWidth / 2, 58);
  auto [date, clock] = dateAndTime(absoluteTime);
  cv.text(date, rect(0, 96, kScreenWidth, 26), {20, ui::Weight::Semibold}, kOnWallpaper,
          Align::Center, true, true);
  cv.text(clock, rect(0, 118, kScreenWidth, 100), {84, ui::Weight::Semibold}, kOnWallpaper,
          Align::Center, true, true);

  // Newest first from the bottom of the clock down, as far as the screen goes.
  double y = 330;
  for (const LockScreenNotice& n : notices) {
    double inner = kScreenWidth - 20 - 16 - 38 - 12 - 14;
    double bodyHeight = std::min(cv.measure(n.body, {15, ui::Weight::Regular}, inner), 80.0);
    double height = 14 + 20 + 2 + bodyHeight + 14;
    if (y + height > kScreenHeight - 120) break;
    rt::CGRect card = rect(10, y, kScreenWidth - 20, height);
    cv.fill(card, kPlatter, 22);
    appIcon(cv, n.app, rect(card.origin.x + 14, y + (height - 38) / 2, 38, 38));
    double x = card.origin.x + 14 + 38 + 12;
    cv.text(n.title, rect(x, y + 14, inner - 40, 20), {15, ui::Weight::Semibold}, ui::kLabel,
            Align::Left, true, true);
    cv.text("现在", rect(x + inner - 40, y + 14, 40, 20), {13, ui::Weight::Regular},
            ui::kSecondaryLabel, Align::Right, true, true);
    cv.text(n.body, rect(x, y + 36, inner, bodyHeight), {15, ui::Weight::Regular}, ui::kLabel);
    y += height + 8;
  }

  for (double cx : {70.0, kScreenWidth - 70}) cv.circle({cx, 770}, 25, {0, 0, 0, 0.35});
  cv.fill(rect(kScreenWidth / 2 - 67, kScreenHeight - 13, 134, 5), kOnWallpaper, 2.5);
  return pictureOf(cv);
}

Picture drawShareSheet(const std::vector<SharePerson>& people, const std::string& appName) {
  Canvas cv{kScreenWidth, kScreenHeight, 3};
  cv.fill(rect(0, 0, kScreenWidth, kScreenHeight), ui::kWhite);
  cv.fill(rect(0, 0, kScreenWidth, kScreenHeight), kDim);
  double top = 330;
  cv.fill(rect(0, top, kScreenWidth, kScreenHeight - top + 12), ui::kGroupedBackground, 12);
  cv.fill(rect(kScreenWidth / 2 - 18, top + 5, 36, 5), kGrabber, 2.5);

  appIcon(cv, appName, rect(16, top + 20, 48, 48));
  cv.text(appName, rect(76, top + 24, 200, 22), {17, ui::Weight::Semibold}, ui::kLabel, Align::Left,
          true, true);
  cv.text("分享", rect(76, top + 46, 200, 18), {13, ui::Weight::Regular}, ui::kSecondaryLabel,
          Align::Left, true, true);
  cv.circle({kScreenWidth - 32, top + 36}, 15, {0.46, 0.46, 0.5, 0.12});
  cv.text("×", rect(kScreenWidth - 47, top + 21, 30, 30), {17, ui::Weight::Semibold},
          ui::kSystemGray, Align::Center, true, true);
  cv.line({0, top + 84}, {kScreenWidth, top + 84}, kSeparator, 0.33);

  // The suggestions row scrolls sideways: those past the edge are not drawn.
  double x = 12, rowTop = top + 100;
  for (const SharePerson& p : people) {
    if (x + 60 > kScreenWidth) break;
    cv.circle({x + 30, rowTop + 30}, 30, sim::avatarTint(p.person));
    cv.text(firstCharacter(p.name), rect(x, rowTop, 60, 60), {24, ui::Weight::Semibold}, ui::kWhite,
            Align::Center, true, true);
    cv.text(p.name, rect(x - 6, rowTop + 66, 72, 30), {11, ui::Weight::Regular}, ui::kLabel,
            Align::Center, true, true);
    x += 76;
  }

  double appsTop = rowTop + 112;
  const char* const apps[] = {"信息", "邮件", "备忘录", "提醒事项"};
  const ui::Color tints[] = {ui::kSystemGreen, ui::kSystemBlue, ui::kSystemOrange,
                             ui::kSystemIndigo};
  for (int i = 0; i < 4; ++i) {
    double ax = 12 + 76 * i;
    cv.fill(rect(ax, appsTop, 60, 60), tints[i], 13.5);
    cv.text(apps[i], rect(ax - 6, appsTop + 66, 72, 30), {11, ui::Weight::Regular}, ui::kLabel,
            Align::Center, true, true);
  }

  rt::CGRect actions = rect(16, appsTop + 112, kScreenWidth - 32, 88);
  cv.fill(actions, ui::kWhite, 10);
  cv.text("拷贝", rect(32, actions.origin.y, 200, 44), {17, ui::Weight::Regular}, ui::kLabel,
          Align::Left, true, true);
  cv.line({32, actions.origin.y + 44},
          {actions.origin.x + actions.size.width, actions.origin.y + 44}, kSeparator, 0.33);
  cv.text("存储到“文件”", rect(32, actions.origin.y + 44, 240, 44), {17, ui::Weight::Regular},
          ui::kLabel, Align::Left, true, true);
  cv.fill(rect(kScreenWidth / 2 - 67, kScreenHeight - 13, 134, 5), ui::kLabel, 2.5);
  return pictureOf(cv);
}

}  // namespace sim::picture

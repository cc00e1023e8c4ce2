// Draws the view tree: the key window's root, the controllers it presents
// (page sheets, alerts) layered on it, then the labels the system put on the
// window itself (toasts). Colours are UIKit's light-appearance values.
#include "sim/picture/screen_picture.hpp"

#include <cmath>
#include <cstdio>
#include <fstream>

#include "sim/picture/canvas.hpp"
#include "sim/picture/palette.hpp"
#include "sim/picture/png_text.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/process.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/layout.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/colors.hpp"

namespace sim::picture {
namespace {

using rt::Id;

constexpr ui::Color kBarBackground{249 / 255.0, 249 / 255.0, 249 / 255.0, 0.94};
constexpr ui::Color kFill{118 / 255.0, 118 / 255.0, 128 / 255.0, 0.12};
constexpr ui::Color kSystemRed{1, 59 / 255.0, 48 / 255.0, 1};
constexpr ui::Color kAlertBackground{242 / 255.0, 242 / 255.0, 242 / 255.0, 1};

rt::CGRect offset(rt::CGRect r, double dx, double dy) {
  return {{r.origin.x + dx, r.origin.y + dy}, r.size};
}
double bottom(rt::CGRect r) { return r.origin.y + r.size.height; }

struct Painter {
  Canvas cv{kScreenWidth, kScreenHeight, 3};
  std::vector<DrawnRow> rows;

  MeasureText measure() {
    return
        [this](const std::string& s, const ui::Font& f, double w) { return cv.measure(s, f, w); };
  }

  // --- images: what was drawn into them, or the symbol they stand for
  void image(Id img, rt::CGRect r) {
    ImageState* s = imageState(img);
    if (!s) return;
    if (!s->symbol.empty()) {
      cv.symbol(s->symbol, r, s->tint.alpha > 0 ? s->tint : ui::kLabel);
      return;
    }
    if (s->size.width <= 0 || s->size.height <= 0) return;
    cv.save();
    cv.translate(r.origin.x, r.origin.y);
    cv.scale(r.size.width / s->size.width, r.size.height / s->size.height);
    for (const ui::DrawOp& op : s->ops) {
      if (const auto* f = std::get_if<ui::FillRect>(&op))
        cv.fill(f->rect, f->color, f->cornerRadius);
      if (const auto* t = std::get_if<ui::DrawText>(&op))
        cv.text(t->text, rect(t->origin.x, t->origin.y, s->size.width, t->font.size * 1.5), t->font,
                t->color);
      if (const auto* d = std::get_if<ui::DrawImage>(&op)) {
        cv.save();
        cv.clip(d->rect, d->clipRadius);
        image(d->image, d->rect);
        cv.restore();
      }
    }
    if (s->ops.empty() && s->source.rfind("file:", 0) == 0)
      cv.fill(rect(0, 0, r.size.width, r.size.height), kFill);
    cv.restore();
  }

  // --- labels and plain views the system made, at their frames
  void view(Id v, rt::CGPoint origin) {
    ViewState& s = *viewState(v);
    if (s.hidden || s.alpha < 0.01) return;
    rt::CGRect f = offset(s.frame, origin.x, origin.y);
    if (rt::isKindOf(v, "UILabel")) {
      // A label nobody styled has UILabel's defaults.
      const ui::LabelStyle l = s.style.empty() ? ui::LabelStyle{{17, ui::Weight::Regular},
                                                                ui::kLabel,
                                                                {0, 0, 0, 0},
                                                                false,
                                                                0,
                                                                false,
                                                                1}
                                               : s.look;
      if (l.background.alpha > 0) cv.fill(f, l.background, l.cornerRadius);
      cv.text(s.text, rect(f.origin.x + 4, f.origin.y, f.size.width - 8, f.size.height), l.font,
              l.textColor, l.centered ? Align::Center : Align::Left, l.numberOfLines == 1, true);
    }
    for (Id sub : s.subviews) view(sub, f.origin);
  }

  void statusBar(double top, double secondOfDay) {
    char clock[8];
    int minutes = int(secondOfDay / 60);
    std::snprintf(clock, sizeof clock, "%d:%02d", minutes / 60 % 24, minutes % 60);
    cv.text(clock, rect(40, top + 14, 80, 22), {17, ui::Weight::Semibold}, ui::kLabel,
            Align::Center);
    for (int i = 0; i < 4; ++i)
      cv.fill(rect(292 + 6 * i, top + 27 - 3 * i, 4, 4 + 3 * i), ui::kLabel, 1);
    cv.stroke(rect(326, top + 18, 25, 12), withAlpha(ui::kLabel, 0.4), 1, 3.5);
    cv.fill(rect(328, top + 20, 18, 8), ui::kLabel, 2);
  }

  void navBar(Id nav, Id top, double y, bool underStatus) {
    rt::CGRect bar = rect(0, y, kScreenWidth, kNavBarHeight);
    viewState(rt::send<Id>(nav, "navigationBar"))->frame = bar;
    if (underStatus)
      cv.fill(rect(0, y - kStatusBarHeight, kScreenWidth, kStatusBarHeight), kBarBackground);
    cv.fill(bar, kBarBackground);
    cv.line({0, bottom(bar)}, {kScreenWidth, bottom(bar)}, kSeparator, 0.33);
    std::string title = controllerState(top)->title;
    if (title.empty()) title = controllerState(nav)->title;
    cv.text(title, rect(90, y, kScreenWidth - 180, kNavBarHeight), {17, ui::Weight::Semibold},
            ui::kLabel, Align::Center, true, true);
    ScreenState* navLook = findExtra<ScreenState>(nav);
    ui::Color tint = navLook && navLook->tint.alpha > 0 ? navLook->tint : ui::kSystemBlue;
    const std::vector<Id>& stack = controllerState(nav)->viewControllers;
    ScreenState* look = findExtra<ScreenState>(top);
    if (look && !look->leftTitle.empty()) {
      cv.text(look->leftTitle, rect(16, y, 90, kNavBarHeight),
              {17, look->leftStyle == 2 ? ui::Weight::Semibold : ui::Weight::Regular}, tint,
              Align::Left, true, true);
    } else if (stack.size() > 1) {
      cv.symbol("chevron.backward", rect(8, y + 12, 12, 20), tint);
      cv.text(controllerState(stack[stack.size() - 2])->title, rect(24, y, 80, kNavBarHeight),
              {17, ui::Weight::Regular}, tint, Align::Left, true, true);
    }
  }

  void searchBar(Id search, double y) {
    SearchState* s = findExtra<SearchState>(search);
    cv.fill(rect(0, y, kScreenWidth, kSearchBarHeight), kBarBackground);
    cv.fill(rect(16, y + 8, kScreenWidth - 32, 36), kFill, 10);
    cv.symbol("magnifyingglass", rect(24, y + 17, 18, 18), ui::kSystemGray);
    bool empty = !s || s->text.empty();
    cv.text(empty ? (s ? s->spec.placeholder : "") : s->text,
            rect(48, y + 8, kScreenWidth - 80, 36), {17, ui::Weight::Regular},
            empty ? ui::kSecondaryLabel : ui::kLabel, Align::Left, true, true);
  }

  void tabBar(Id tabs, rt::CGRect area) {
    rt::CGRect bar =
        rect(area.origin.x, bottom(area) - kTabBarHeight, area.size.width, kTabBarHeight);
    cv.fill(bar, kBarBackground);
    cv.line(bar.origin, {bar.origin.x + bar.size.width, bar.origin.y}, kSeparator, 0.33);
    const ControllerState& t = *controllerState(tabs);
    double w = bar.size.width / double(std::max<std::size_t>(1, t.viewControllers.size()));
    for (std::size_t i = 0; i < t.viewControllers.size(); ++i) {
      Id vc = t.viewControllers[i];
      const std::vector<Id>& stack = controllerState(vc)->viewControllers;
      std::string title =
          stack.empty() ? controllerState(vc)->title : controllerState(stack.front())->title;
      ui::Color c = long(i) == t.selectedIndex ? ui::kSystemGreen : ui::kSystemGray;
      cv.fill(rect(bar.origin.x + w * double(i) + w / 2 - 12, bar.origin.y + 7, 24, 20), c, 6);
      cv.text(title, rect(bar.origin.x + w * double(i), bar.origin.y + 29, w, 14),
              {10, ui::Weight::Medium}, c, Align::Center, true);
    }
  }

  // --- controllers
  // `area` is the controller's frame; its content stops `bottomBar` points
  // above the bottom, where a tab bar lies over it.
  void controller(Id c, rt::CGRect area, bool underStatus, double bottomBar = 0) {
    if (rt::isKindOf(c, "UITabBarController")) {
      const ControllerState& t = *controllerState(c);
      if (t.selectedIndex >= 0 && t.selectedIndex < long(t.viewControllers.size()))
        controller(t.viewControllers[std::size_t(t.selectedIndex)], area, underStatus,
                   kTabBarHeight);
      tabBar(c, area);
      return;
    }
    if (rt::isKindOf(c, "UINavigationController") && !controllerState(c)->viewControllers.empty()) {
      Id top = controllerState(c)->viewControllers.back();
      double y = area.origin.y + (underStatus ? kStatusBarHeight : 0);
      rt::CGRect content = rect(area.origin.x, y + kNavBarHeight, area.size.width,
                                bottom(area) - bottomBar - y - kNavBarHeight);
      ScreenState* look = findExtra<ScreenState>(top);
      if (look && look->searchController) {
        searchBar(look->searchController, content.origin.y);
        content = rect(content.origin.x, content.origin.y + kSearchBarHeight, content.size.width,
                       content.size.height - kSearchBarHeight);
      }
      leaf(top, content, area);
      navBar(c, top, y, underStatus);
      return;
    }
    leaf(c, rect(area.origin.x, area.origin.y, area.size.width, area.size.height - bottomBar),
         area);
  }

  // A screen's view fills `full`, under the bars; what it shows is in `area`.
  void leaf(Id c, rt::CGRect area, rt::CGRect full) {
    ScreenState* look = findExtra<ScreenState>(c);
    cv.fill(area, look && look->background.alpha > 0 ? look->background : ui::kWhite);
    Id v = controllerState(c)->viewLoaded ? controllerState(c)->view : nullptr;
    if (!v) return;
    Id table = tableOf(c);
    if (!table)
      for (Id sub : viewState(v)->subviews)
        if (rt::isKindOf(sub, "UITableView")) table = sub;
    if (table) {
      this->table(table, area, full);
      return;
    }
    for (Id sub : viewState(v)->subviews) view(sub, area.origin);
  }

  void table(Id t, rt::CGRect area, rt::CGRect full) {
    TableFrame f = layoutTable(t, full, area.origin.y - full.origin.y, measure());
    const TableState& state = extra<TableState>(t);
    cv.fill(area, f.insetGrouped ? state.look.background : ui::kWhite);
    cv.save();
    cv.clip(area, 0);
    if (state.headerView) view(state.headerView, area.origin);
    double dx = full.origin.x, dy = full.origin.y;
    for (const SectionFrame& s : f.sections) {
      cv.text(s.header, offset(s.headerFrame, dx, dy), {13, ui::Weight::Regular},
              ui::kSecondaryLabel);
      if (f.insetGrouped && !s.rows.empty()) cv.fill(offset(s.group, dx, dy), ui::kWhite, 10);
      for (const RowFrame& r : s.rows)
        row(r, dx, dy, f.insetGrouped, state.look.separatorInsetLeft);
      cv.text(s.footer, offset(s.footerFrame, dx, dy), {13, ui::Weight::Regular},
              ui::kSecondaryLabel);
    }
    cv.restore();
  }

  void row(const RowFrame& r, double dx, double dy, bool inset, double separatorInset) {
    rt::CGRect frame = offset(r.frame, dx, dy), acc = offset(r.accessory, dx, dy);
    rows.push_back({r.row.title, r.row.state, frame, acc});
    CellState* c = r.row.cell ? findExtra<CellState>(r.row.cell) : nullptr;
    if (!c) return;
    const ui::CellSpec& spec = c->spec;
    double x = frame.origin.x + 16, right = acc.origin.x - (acc.size.width > 0 ? 8 : 0);
    if (spec.image) {
      rt::CGSize size = imageState(spec.image)->size;
      rt::CGRect ir =
          rect(x, frame.origin.y + (frame.size.height - size.height) / 2, size.width, size.height);
      cv.save();
      cv.clip(ir, spec.imageCornerRadius);
      image(spec.image, ir);
      cv.restore();
      x += size.width + 12;
    }
    bool below = !spec.detail.empty() && spec.style != ui::CellStyle::Value1;
    double width = right - x;
    double th = cv.measure(spec.title, spec.titleFont, width);
    double dh = below ? cv.measure(spec.detail, spec.detailFont, width) + 2 : 0;
    double ty = frame.origin.y + (frame.size.height - th - dh) / 2;
    cv.text(spec.title, rect(x, ty, width, th), spec.titleFont, spec.titleColor);
    if (below)
      cv.text(spec.detail, rect(x, ty + th + 2, width, dh), spec.detailFont, spec.detailColor);
    else if (!spec.detail.empty())
      cv.text(spec.detail, rect(x, frame.origin.y, width, frame.size.height), spec.titleFont,
              ui::kSecondaryLabel, Align::Right, true, true);
    accessory(spec, acc);
    if (!r.lastInGroup || !inset) {
      double from = spec.image ? x : frame.origin.x + std::max(16.0, separatorInset);
      cv.line({from, bottom(frame)}, {frame.origin.x + frame.size.width, bottom(frame)}, kSeparator,
              0.33);
    }
  }

  void accessory(const ui::CellSpec& spec, rt::CGRect acc) {
    ui::Color tint = spec.hasTint ? spec.tint : ui::kSystemBlue;
    if (spec.accessoryView && rt::isKindOf(spec.accessoryView, "UISwitch")) {
      const SwitchState& s = extra<SwitchState>(spec.accessoryView);
      cv.fill(acc,
              s.on ? (s.onTint.alpha > 0 ? s.onTint : ui::kSystemGreen)
                   : withAlpha(kFill, 0.16 / 0.12 * 0.12 + 0.04),
              15.5);
      double knobX = s.on ? acc.origin.x + acc.size.width - 15.5 : acc.origin.x + 15.5;
      cv.circle({knobX, acc.origin.y + 15.5}, 13.5, withAlpha(ui::kLabel, 0.08));
      cv.circle({knobX, acc.origin.y + 15.5}, 13, ui::kWhite);
    } else if (spec.accessory == ui::Accessory::Checkmark) {
      cv.symbol("checkmark", acc, tint);
    } else if (spec.accessory == ui::Accessory::DisclosureIndicator) {
      cv.symbol("chevron.right", rect(acc.origin.x + 3, acc.origin.y, 9, 14), ui::kTertiaryLabel);
    }
  }

  // --- presented controllers
  void sheet(Id nav) {
    cv.fill(rect(0, 0, kScreenWidth, kScreenHeight), kDim);
    rt::CGRect area =
        rect(0, kStatusBarHeight + 10, kScreenWidth, kScreenHeight - kStatusBarHeight - 10);
    cv.save();
    cv.clip(area, 10);
    cv.fill(area, ui::kWhite);
    controller(nav, area, false);
    cv.restore();
    ScreenState* s = findExtra<ScreenState>(nav);
    if (s && s->grabberVisible)
      cv.fill(rect(kScreenWidth / 2 - 18, area.origin.y + 5, 36, 5), kGrabber, 2.5);
  }

  void alert(Id a) {
    AlertState* s = alertState(a);
    AlertFrame f = layoutAlert(a, measure());
    cv.fill(rect(0, 0, kScreenWidth, kScreenHeight), kDim);
    double dx = f.box.origin.x, dy = f.box.origin.y;
    cv.fill(f.box, kAlertBackground, 14);
    cv.text(s->title, offset(f.title, dx, dy), {17, ui::Weight::Semibold}, ui::kLabel,
            Align::Center);
    cv.text(s->message, offset(f.message, dx, dy), {13, ui::Weight::Regular}, ui::kLabel,
            Align::Center);
    for (std::size_t i = 0; i < f.fields.size(); ++i) field(s, i, offset(f.fields[i], dx, dy));
    if (Id picker = alertTimePicker(a))
      wheels(extra<DatePickerState>(picker), offset(f.picker, dx, dy));
    for (std::size_t i = 0; i < f.buttons.size(); ++i) {
      rt::CGRect b = offset(f.buttons[i], dx, dy);
      cv.line(b.origin, {b.origin.x + b.size.width, b.origin.y}, kSeparator, 0.5);
      if (f.buttons.size() == 2 && b.origin.x > f.box.origin.x)
        cv.line(b.origin, {b.origin.x, bottom(b)}, kSeparator, 0.5);
      const AlertAction& action = s->actions[i];
      ui::Color c = action.style == ui::ActionStyle::Destructive ? kSystemRed : ui::kSystemBlue;
      ui::Weight w =
          action.style == ui::ActionStyle::Cancel ? ui::Weight::Semibold : ui::Weight::Regular;
      cv.text(action.title, b, {17, w}, c, Align::Center, true, true);
    }
  }

  void field(AlertState* s, std::size_t i, rt::CGRect r) {
    cv.fill(r, ui::kWhite, 6);
    cv.stroke(r, kSeparator, 0.5, 6);
    std::string text = viewState(s->textFields[i])->text;
    const ui::TextFieldSpec& spec = s->fieldSpecs[i];
    if (spec.secure)
      text = [&] {
        std::string dots;
        for (std::size_t n = 0; n < text.size(); ++n) dots += "•";
        return dots;
      }();
    rt::CGRect inner = rect(r.origin.x + 6, r.origin.y, r.size.width - 12, r.size.height);
    if (text.empty())
      cv.text(spec.placeholder, inner, {13, ui::Weight::Regular}, ui::kTertiaryLabel, Align::Left,
              true, true);
    else
      cv.text(text, inner, {13, ui::Weight::Regular}, ui::kLabel, Align::Left, true, true);
  }

  // The time wheel: the chosen hour and minute in the band, their
  // neighbours fading above and below.
  void wheels(const DatePickerState& p, rt::CGRect r) {
    double mid = r.origin.y + r.size.height / 2, rowH = 32;
    cv.fill(rect(r.origin.x + 8, mid - rowH / 2, r.size.width - 16, rowH), kFill, 8);
    for (int d = -2; d <= 2; ++d) {
      double y = mid - rowH / 2 + d * rowH;
      if (y < r.origin.y || y + rowH > bottom(r)) continue;
      ui::Color c = withAlpha(ui::kLabel, d == 0 ? 1 : 0.35);
      char hour[4], minute[4];
      std::snprintf(hour, sizeof hour, "%02ld", (p.hour + d + 24) % 24);
      std::snprintf(minute, sizeof minute, "%02ld", (p.minute + d + 60) % 60);
      ui::Font font{d == 0 ? 21.0 : 18.0, ui::Weight::Regular};
      cv.text(hour, rect(r.origin.x + r.size.width / 2 - 70, y, 60, rowH), font, c, Align::Right,
              true, true);
      cv.text(minute, rect(r.origin.x + r.size.width / 2 + 10, y, 60, rowH), font, c, Align::Left,
              true, true);
    }
    cv.text(":", rect(r.origin.x, mid - rowH / 2, r.size.width, rowH), {21, ui::Weight::Regular},
            ui::kLabel, Align::Center, true, true);
  }

  // The system's biometric prompt over everything: Face ID's small square,
  // or Touch ID's alert with the app's reason and its cancel button.
  void biometricPrompt(bool faceID, const std::string& reason) {
    if (faceID) {
      rt::CGRect box = rect((kScreenWidth - 160) / 2, (kScreenHeight - 160) / 2, 160, 160);
      cv.fill(box, {0.93, 0.93, 0.94, 0.97}, 22);
      cv.symbol("faceid", rect(box.origin.x + 50, box.origin.y + 28, 60, 60), ui::kLabel);
      cv.text("面容 ID", rect(box.origin.x, box.origin.y + 104, 160, 30),
              {17, ui::Weight::Semibold}, ui::kLabel, Align::Center, true, true);
      return;
    }
    cv.fill(rect(0, 0, kScreenWidth, kScreenHeight), kDim);
    double width = 270, inner = width - 32;  // an alert's width
    double messageHeight = cv.measure(reason, {13, ui::Weight::Regular}, inner);
    double height = 20 + 22 + 4 + messageHeight + 16 + 64 + 16 + 44;
    rt::CGRect box = rect((kScreenWidth - width) / 2, (kScreenHeight - height) / 2, width, height);
    cv.fill(box, kAlertBackground, 14);
    double x = box.origin.x, y = box.origin.y + 20;
    cv.text("“微信”的触控 ID", rect(x + 16, y, inner, 22), {17, ui::Weight::Semibold}, ui::kLabel,
            Align::Center);
    y += 26;
    cv.text(reason, rect(x + 16, y, inner, messageHeight), {13, ui::Weight::Regular}, ui::kLabel,
            Align::Center);
    y += messageHeight + 16;
    cv.symbol("touchid", rect(x + width / 2 - 32, y, 64, 64), kSystemRed);
    y += 64 + 16;
    cv.line({x, y}, {x + width, y}, kSeparator, 0.5);
    cv.text("取消", rect(x, y, width, 44), {17, ui::Weight::Semibold}, ui::kSystemBlue,
            Align::Center, true, true);
  }

  void presented(Id root) {
    for (Id c = root; c;) {
      ControllerState& s = *controllerState(c);
      if (Id p = s.presented) {
        if (alertState(p))
          alert(p);
        else
          sheet(p);
        c = p;
      } else if (rt::isKindOf(c, "UINavigationController") && !s.viewControllers.empty()) {
        c = s.viewControllers.back();
      } else if (rt::isKindOf(c, "UITabBarController") && s.selectedIndex >= 0 &&
                 s.selectedIndex < long(s.viewControllers.size())) {
        c = s.viewControllers[std::size_t(s.selectedIndex)];
      } else {
        break;
      }
    }
  }
};

}  // namespace

std::uint32_t Picture::pixel(double x, double y) const {
  int px = int(x * scale), py = int(y * scale);
  if (px < 0 || py < 0 || px >= width || py >= height) return 0;
  return pixels[std::size_t(py) * std::size_t(width) + std::size_t(px)];
}

Picture drawScreen() {
  Painter p;
  rt::CGRect screen = rect(0, 0, kScreenWidth, kScreenHeight);
  p.cv.fill(screen, ui::kWhite);
  Id window = nullptr, root = nullptr;
  if (hasCurrentProcess()) {
    for (Id w : rt::elements(rt::send<Id>(sharedApplication(), "windows")))
      if (viewState(w)->keyWindow) window = w;
    root = window ? viewState(window)->rootViewController : nullptr;
  }
  if (root) {
    p.controller(root, screen, true);
    p.presented(root);
    Id rootView = controllerState(root)->view;
    for (Id sub : viewState(window)->subviews)
      if (sub != rootView) p.view(sub, {0, 0});
  }
  if (hasCurrentProcess() && currentProcess().platform().biometricReply)
    p.biometricPrompt(currentProcess().device().biometrics != Biometrics::TouchID,
                      currentProcess().platform().biometricReason);
  p.statusBar(0, hasCurrentProcess() ? currentProcess().device().localSecondOfDay() : 0);
  return pictureOf(p.cv, std::move(p.rows));
}

Picture pictureOf(const Canvas& cv, std::vector<DrawnRow> rows) {
  Picture out;
  out.width = cv.pixelWidth();
  out.height = cv.pixelHeight();
  out.unknownGlyphs = cv.unknownGlyphs();
  out.symbols = cv.symbols();
  out.texts = cv.texts();
  out.rows = std::move(rows);
  out.pixels = cv.pixels();
  std::string names;
  for (const std::string& s : out.symbols) names += (names.empty() ? "" : " ") + s;
  out.png = withTextChunks(cv.png(), {{"Software", "quenby-sim"}, {"Symbols", names}});
  return out;
}

bool writePicture(const Picture& picture, const std::string& path) {
  std::ofstream f(path, std::ios::binary | std::ios::trunc);
  f.write(picture.png.data(), std::streamsize(picture.png.size()));
  return bool(f.flush());
}

}  // namespace sim::picture

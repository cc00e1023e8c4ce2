#include "sim/hostapp/about_page.hpp"

#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/colors.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

constexpr long kVersionTag = 8050;

Id label(Id parent, const std::string& text, rt::CGRect frame, long tag = 0) {
  Id l = rt::send<Id>(rt::getClass("UILabel"), "new");
  rt::send<void>(l, "setText:", rt::str(text));
  rt::send<void>(l, "setFrame:", frame);
  rt::send<void>(l, "setTag:", tag);
  rt::send<void>(l, "setUserInteractionEnabled:", false);  // UILabel's default
  sim::ViewState& look = *sim::viewState(l);               // centred, in the system font
  look.look = ui::LabelStyle{{tag ? 14.0 : 17.0, ui::Weight::Regular},
                             tag ? ui::kSecondaryLabel : ui::kLabel,
                             {0, 0, 0, 0},
                             true,
                             0,
                             false,
                             1};
  look.style = "host";
  rt::send<void>(parent, "addSubview:", l);
  return l;
}

Id box(Id parent, rt::CGRect frame) {
  Id v = rt::send<Id>(rt::getClass("UIView"), "new");
  rt::send<void>(v, "setFrame:", frame);
  rt::send<void>(parent, "addSubview:", v);
  return v;
}

void buildLabels(Id page) {
  Id view = rt::send<Id>(page, "view");
  Id header = box(box(view, {{0, 330}, {390, 160}}), {{0, 0}, {390, 160}});
  label(header, kHostDisplayName, {{0, 60}, {390, 30}});
  std::string version = std::string("Version ") + kHostVersion;
  if (HostApp::current().build.hasVariant("about-version-in-bar"))
    label(view, version, {{0, 57}, {390, 24}}, kVersionTag);  // under the bar, which lies over it
  else
    label(header, version, {{0, 100}, {390, 20}}, kVersionTag);
  Id rows = box(view, {{0, 520}, {390, 100}});
  label(rows, "功能介绍", {{16, 0}, {358, 44}});
  label(rows, "隐私保护指引", {{16, 50}, {358, 44}});
}

void aboutViewDidLoad(Id self, SEL) {
  rt::send<void>(self, "setTitle:", rt::str("关于微信"));
  // The host's own late build holds the page weakly: a page left early builds nothing.
  sys::after(kAboutLabelsDelay, [page = rt::Weak(self)] {
    if (rt::Strong p = page.lock()) buildLabels(p.get());
  });
}
void aboutViewDidAppear(Id, SEL, bool) {}

Id findTagged(Id view, long tag) {
  if (!view) return nullptr;
  if (rt::send<long>(view, "tag") == tag) return view;
  for (Id sub : rt::elements(rt::send<Id>(view, "subviews")))
    if (Id hit = findTagged(sub, tag)) return hit;
  return nullptr;
}

}  // namespace

void defineAboutClasses(HostApp& app) {
  sim::currentProcess().platform().bundleInfo["CFBundleShortVersionString"] = kHostVersion;
  sim::currentProcess().platform().bundleInfo["CFBundleDisplayName"] = kHostDisplayName;
  HostClass(app, "SettingAboutMMViewController", "UIViewController")
      .method("viewDidLoad", aboutViewDidLoad)
      .method("viewDidAppear:", aboutViewDidAppear)
      .build();
}

Id openAbout(HostApp& app) {
  rt::Class cls = rt::getClass("SettingAboutMMViewController");
  if (!cls || !app.tabs()) return nullptr;
  app.selectTab(kMeTab);
  app.popToRoot();
  Id nav = rt::send<Id>(app.tabs(), "selectedViewController");
  // The navigation controller owns it from here: leaving the page frees it.
  Id page = sim::autorelease(rt::send<Id>(cls, "new"));
  rt::send<void>(nav, "pushViewController:animated:", page, true);
  return page;
}

Id aboutVersionLabel(Id page) {
  if (!page || !rt::send<bool>(page, "isViewLoaded")) return nullptr;
  return findTagged(rt::send<Id>(page, "view"), kVersionTag);
}

}  // namespace hostapp

// UIApplication and its one UIWindowScene, the state records behind UIKit
// objects, images, and the helpers the simulated host builds screens with.
#include <filesystem>
#include <utility>
#include <variant>

#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace sim {

void registerViews(Runtime& rtm);
void registerControllers(Runtime& rtm);
void registerInteraction(Runtime& rtm);
void registerTables();
void registerScreens();
void registerTouches();

namespace {

using rt::Id;
using rt::SEL;

struct ApplicationState {
  Id scene = nullptr;
  std::vector<Id> windows;
};

ApplicationState& app(Id self) {
  if (!native<ApplicationState>(self)) self->native = ApplicationState{};
  return *native<ApplicationState>(self);
}

Id sharedApplicationImp(Id, SEL) { return sharedApplication(); }
Id connectedScenes(Id self, SEL) { return rt::set({app(self).scene}); }
Id applicationWindows(Id self, SEL) { return rt::array(app(self).windows); }
long applicationState(Id, SEL) {
  switch (currentProcess().appState()) {
    case AppState::Active:
      return 0;
    case AppState::Background:
      return 2;
    default:
      return 1;
  }
}
Id sceneWindows(Id, SEL) { return rt::array(app(sharedApplication()).windows); }

rt::CGSize imageSize(Id self, SEL) { return imageState(self)->size; }
double imageScale(Id self, SEL) { return imageState(self)->scale; }
Id systemImageNamed(Id, SEL, Id name) {
  Id img = rt::send<Id>(rt::send<Id>(rt::getClass("UIImage"), "alloc"), "init");
  imageState(img)->source = "symbol:" + rt::asString(name).value_or("");
  imageState(img)->symbol = rt::asString(name).value_or("");
  imageState(img)->size = {17, 17};
  return img;
}
Id imageWithContentsOfFile(Id, SEL, Id path) {
  auto p = rt::asString(path);
  std::error_code ec;
  if (!p || !std::filesystem::is_regular_file(*p, ec)) return nullptr;
  Id img = rt::send<Id>(rt::send<Id>(rt::getClass("UIImage"), "alloc"), "init");
  imageState(img)->source = "file:" + *p;
  imageState(img)->size = {120, 120};
  return img;
}

}  // namespace

void superDealloc(Id self, SEL cmd, const char* cls) {
  rt::Method m = rt::getInstanceMethod(rt::superclass(rt::getClass(cls)), cmd);
  if (m) rt::call<void>(rt::methodImplementation(m), self, cmd);
}

ViewState* viewState(Id view) {
  if (!view) return nullptr;
  if (!native<ViewState>(view)) view->native = ViewState{};
  return native<ViewState>(view);
}

ControllerState* controllerState(Id controller) {
  if (!controller) return nullptr;
  if (!native<ControllerState>(controller)) controller->native = ControllerState{};
  return native<ControllerState>(controller);
}

ImageState* imageState(Id image) {
  if (!image) return nullptr;
  if (!native<ImageState>(image)) image->native = ImageState{};
  return native<ImageState>(image);
}

namespace {
// A drawn image lets go of the images its drawing is replayed from.
void imageDealloc(Id self, SEL cmd) {
  if (ImageState* s = native<ImageState>(self))
    for (const ui::DrawOp& op : std::exchange(s->ops, {}))
      if (const ui::DrawImage* d = std::get_if<ui::DrawImage>(&op)) rt::detail::release(d->image);
  superDealloc(self, cmd, "UIImage");
}
}  // namespace

Id sharedApplication() {
  Id& slot = runtime().singleton("UIApplication");
  if (!slot) {
    slot = rt::createInstance(rt::getClass("UIApplication"));
    app(slot).scene = rt::createInstance(rt::getClass("UIWindowScene"));
  }
  return slot;
}

Id addWindow(Id root, bool key) {
  Id w = rt::send<Id>(rt::send<Id>(rt::getClass("UIWindow"), "alloc"), "init");
  app(sharedApplication()).windows.push_back(w);
  if (root) rt::send<void>(w, "setRootViewController:", root);
  if (key) rt::send<void>(w, "makeKeyAndVisible");
  return w;
}

void appear(Id controller) {
  rt::send<Id>(controller, "view");
  rt::send<void>(controller, "viewWillAppear:", false);
  rt::send<void>(controller, "viewDidAppear:", false);
}

void disappear(Id controller) {
  rt::send<void>(controller, "viewWillDisappear:", false);
  rt::send<void>(controller, "viewDidDisappear:", false);
}

// The presenter owns what it presents until it is dismissed.
void present(Id presenter, Id presented) {
  controllerState(presenter)->presented = rt::detail::retain(presented);
  controllerState(presented)->presenting = presenter;
  appear(presented);
}

bool inWindowHierarchy(Id controller) {
  for (Id c = controller; c;) {
    for (Id w : app(sharedApplication()).windows)
      if (viewState(w)->rootViewController == c) return true;
    const ControllerState& s = *controllerState(c);
    c = s.parent ? s.parent : s.presenting;
  }
  return false;
}

Id topController() {
  Id top = nullptr;
  for (Id w : app(sharedApplication()).windows)
    if (viewState(w)->keyWindow) top = viewState(w)->rootViewController;
  while (top) {
    ControllerState& s = *controllerState(top);
    if (s.presented)
      top = s.presented;
    else if (rt::isKindOf(top, "UINavigationController") && !s.viewControllers.empty())
      top = s.viewControllers.back();
    else if (rt::isKindOf(top, "UITabBarController") &&
             s.selectedIndex < long(s.viewControllers.size()))
      top = s.viewControllers[std::size_t(s.selectedIndex)];
    else
      break;
  }
  return top;
}

Id drawnImage(rt::CGSize size, double scale, bool opaque, std::vector<std::string> drawing) {
  Id img = rt::send<Id>(rt::send<Id>(rt::getClass("UIImage"), "alloc"), "init");
  ImageState& s = *imageState(img);
  s.source = "drawn";
  s.size = size;
  s.scale = scale;
  s.opaque = opaque;
  s.drawing = std::move(drawing);
  return img;
}

void registerUIKit(Runtime& rtm) {
  registerViews(rtm);
  registerControllers(rtm);
  registerInteraction(rtm);
  registerTables();
  registerScreens();
  registerTouches();
  ClassBuilder("UIApplication", "UIResponder")
      .classMethod("sharedApplication", sharedApplicationImp)
      .method("connectedScenes", connectedScenes)
      .method("windows", applicationWindows)
      .method("applicationState", applicationState)
      .build();
  ClassBuilder("UIScene", "UIResponder").build();
  ClassBuilder("UIWindowScene", "UIScene").method("windows", sceneWindows).build();
  ClassBuilder("UIImage")
      .method("dealloc", imageDealloc)
      .classMethod("systemImageNamed:", systemImageNamed)
      .classMethod("imageWithContentsOfFile:", imageWithContentsOfFile)
      .method("size", imageSize)
      .method("scale", imageScale)
      .build();
}

rt::Id newObject(const char* cls) { return rt::send<rt::Id>(rt::getClass(cls), "new"); }

}  // namespace sim

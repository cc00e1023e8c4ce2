// The part of UIKit the system touches, simulated: the application and its
// scene and windows, views, labels and navigation bars, view controllers and
// their containers, table views, and images. State lives in C++ records
// behind the objects; the selectors answer as UIKit's do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "rt/geometry.hpp"
#include "rt/types.hpp"
#include "ui/drawing.hpp"
#include "ui/views.hpp"

namespace sim {

class Runtime;

struct ViewState {
  rt::CGRect frame{{0, 0}, {390, 844}};
  bool hidden = false;
  double alpha = 1.0;
  bool userInteraction = true;
  long tag = 0;
  rt::Id superview = nullptr;
  std::vector<rt::Id> subviews;
  std::vector<rt::Id> gestureRecognizers;
  std::string text;                     // UILabel
  std::string style;                    // a label's look, as the system set it
  ui::LabelStyle look;                  // the same look, for drawing
  rt::Id rootViewController = nullptr;  // UIWindow
  bool keyWindow = false;               // UIWindow
  // UITableView
  rt::Id dataSource = nullptr;
  rt::Id delegate = nullptr;
  bool dragging = false;
  bool decelerating = false;
  long reloads = 0;
  double rowHeight = 44;  // UIKit's default
  // What the table showed at its last reloadData: the cells of the rows that
  // fit the frame, by section, asked the way UIKit asks (sections, rows per
  // section, then each row on screen).
  std::vector<std::vector<rt::Id>> shownRows;
};

struct AlertState;

struct ControllerState {
  std::shared_ptr<AlertState> alert;  // a UIAlertController's content
  rt::Id view = nullptr;
  bool viewLoaded = false;
  rt::Id parent = nullptr;
  std::vector<rt::Id> children;
  rt::Id presented = nullptr;
  rt::Id presenting = nullptr;
  // A presentation or dismissal of this controller is under way: UIKit
  // refuses, without raising, to present on it meanwhile.
  bool inTransition = false;
  std::vector<rt::Id> viewControllers;  // navigation stack or tab list
  long selectedIndex = 0;
  rt::Id navigationBar = nullptr;
  std::string title;
};

struct ImageState {
  std::string source;  // "symbol:NAME", "file:PATH" or "drawn"
  rt::CGSize size{0, 0};
  double scale = 3.0;
  bool opaque = false;
  // What was drawn into a drawn image, in order, for tests to read.
  std::vector<std::string> drawing;
  // The same, for drawing: the operations, or the system symbol and its tint.
  std::vector<ui::DrawOp> ops;
  std::string symbol;
  ui::Color tint;
};

void registerUIKit(Runtime& rtm);

ViewState* viewState(rt::Id view);
ControllerState* controllerState(rt::Id controller);
ImageState* imageState(rt::Id image);

// The process's UIApplication (one per process).
rt::Id sharedApplication();
// [[cls alloc] init] of a UIKit class, owned by the caller.
rt::Id newObject(const char* cls);
// A window on the app's scene showing `root`; made key when `key`.
rt::Id addWindow(rt::Id root, bool key);
// Loads the controller's view (viewDidLoad) and sends the appearance
// callbacks, as UIKit does when a screen comes on.
void appear(rt::Id controller);
void disappear(rt::Id controller);
// `presented` is presented modally on `presenter` and appears.
void present(rt::Id presenter, rt::Id presented);
// The controller whose screen is on top: the key window's root, followed
// through presented controllers and into navigation and tab containers.
rt::Id topController();
// Whether the controller's screen is part of a window's: a window's root, or
// contained in or presented by one that is. UIKit refuses to present from a
// controller that is not (it only logs a warning).
bool inWindowHierarchy(rt::Id controller);
// The dealloc of the superclass of `cls`, for a class's own dealloc to end with.
void superDealloc(rt::Id self, rt::SEL cmd, const char* cls);

// A drawn image of the given size whose drawing is recorded.
rt::Id drawnImage(rt::CGSize size, double scale, bool opaque, std::vector<std::string> drawing);

}  // namespace sim

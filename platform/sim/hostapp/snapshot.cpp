// The app switcher's picture: what the screen on top showed at the instant the
// app entered the background, as the system records it for the switcher.
#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/runtime.hpp"
#include "sim/process.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace hostapp {
namespace {

std::string screenOf(rt::Id top) {
  if (!top) return "(none)";
  if (sim::currentProcess().platform().biometricReply) return "biometric";
  if (rt::isKindOf(top, "UIAlertController")) return "alert";
  std::string_view cls = rt::className(top);
  if (cls == "NewMainFrameViewController") return "main";
  if (cls == "ContactsViewController") return "contacts";
  if (cls == "BaseMsgContentViewController") return "chat";
  if (cls == kSearchScreenClass) return "search";
  if (cls == kMomentsScreenClass) return "moments";
  if (cls == kForwardScreenClass) return "forward";
  return std::string(cls);
}

}  // namespace

void HostApp::takeSnapshot() {
  Snapshot shot;
  shot.taken = true;
  shot.screen = screenOf(sim::topController());
  if (shot.screen == "main")
    shot.mainRows = shot.rows = mainListShown();
  else if (shot.screen == "contacts")
    shot.rows = contactsShown(*this);
  snapshot_ = std::move(shot);
}

}  // namespace hostapp

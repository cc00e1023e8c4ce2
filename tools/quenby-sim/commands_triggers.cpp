// The user's hands on the device: device, open chat, shake, longpress, type,
// press, biometric, expect screen, expect alert.
#include <cmath>
#include <set>

#include "commands.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/files.hpp"

namespace qbsim {
namespace {

// The controller on top: the root followed through presentations, and into
// the selected tab and navigation stack when nothing is presented.
rt::Id topScreen() { return sim::topController(); }

}  // namespace

std::string topScreenName(Session& s) {
  sim::Process& p = s.requireProcess("expect screen");
  if (p.platform().biometricReply) return "biometric";
  rt::Id top = topScreen();
  if (!top) return "(none)";
  std::string_view cls = rt::className(top);
  if (rt::isKindOf(top, "UIAlertController")) return "alert";
  if (cls == "NewMainFrameViewController") return "main";
  if (cls == "BaseMsgContentViewController") return "chat";
  if (cls == "ContactsViewController") return "contacts";
  if (cls == "SettingAboutMMViewController") return "about";
  if (cls == "QBPanelController") return "panel";
  if (cls == "QBContactPickController") return "picker";
  if (cls == hostapp::kSearchScreenClass) return "search";
  if (cls == hostapp::kMomentsScreenClass) return "moments";
  if (cls == hostapp::kForwardScreenClass) return "forward";
  return std::string(cls);
}

void requireNothingOver(Session& s, const std::string& command) {
  std::string top = topScreenName(s);
  if (top == "alert" || top == "biometric") throw ScriptError{command + ": a dialog is on screen"};
  if (top == "panel") throw ScriptError{command + ": the control panel is on screen"};
  if (top == "picker") throw ScriptError{command + ": the contact picker is on screen"};
}

namespace {

rt::Id alertOnScreen(Session& s, const std::string& command) {
  s.requireForeground(command);
  rt::Id top = topScreen();
  if (!top || !sim::alertState(top)) throw ScriptError{command + ": no dialog on screen"};
  return top;
}

}  // namespace

void addTriggerCommands(CommandTable& t) {
  t["device"] = {
      "device biometrics faceid|touchid|none | device motion full|accelerometer|none | device "
      "locked | device unlock | device backup | device restore",
      [](Session& s, const Command& c) {
        const char* usage =
            "device biometrics faceid|touchid|none | device motion full|accelerometer|none | "
            "device locked | device unlock | device backup | device restore";
        requireWords(c, 2, 3, usage);
        const std::string& what = c.words[1];
        if (c.words.size() == 2) {
          if (what == "locked") {
            s.device().setLockedSinceRestart(true);
          } else if (what == "unlock") {
            if (!s.device().lockedSinceRestart())
              throw ScriptError{"device unlock: the device is not locked since a restart"};
            s.device().setLockedSinceRestart(false);
            if (sim::Process* p = s.process()) p->post(sys::kProtectedDataDidBecomeAvailable);
          } else if (what == "backup") {
            s.device().takeBackup();
          } else if (what == "restore") {
            if (!s.device().hasBackup())
              throw ScriptError{"device restore: no backup was taken on this device"};
            // A restore ends the app as quit does; its next launch is cold.
            if (s.process()) s.quit();
            s.device().restoreBackup();
          } else {
            throw ScriptError{std::string("usage: ") + usage};
          }
          return;
        }
        const std::string& v = c.words[2];
        if (what == "biometrics" && (v == "faceid" || v == "touchid" || v == "none")) {
          s.device().biometrics = v == "faceid"    ? sim::Biometrics::FaceID
                                  : v == "touchid" ? sim::Biometrics::TouchID
                                                   : sim::Biometrics::None;
        } else if (what == "motion" && (v == "full" || v == "accelerometer" || v == "none")) {
          s.device().motion = v == "full"            ? sim::MotionSensors::Full
                              : v == "accelerometer" ? sim::MotionSensors::Accelerometer
                                                     : sim::MotionSensors::None;
        } else {
          throw ScriptError{
              "usage: device biometrics faceid|touchid|none | device motion "
              "full|accelerometer|none"};
        }
      }};
  t["shake"] = {"shake", [](Session& s, const Command& c) {
                  requireWords(c, 1, 1, "shake");
                  sim::Process& p = s.requireProcess("shake");
                  sim::PlatformState& ps = p.platform();
                  // A suspended app runs no thread: the samples of this shake are lost to it.
                  if (ps.motionHandler && !p.suspended()) {
                    // About 0.3 s of strong movement, then the phone at rest again.
                    double interval = ps.motionInterval > 0 ? ps.motionInterval : 0.04;
                    bool raw = ps.motionFromAccelerometer;
                    auto handler = ps.motionHandler;
                    for (int i = 0; i * interval < 0.5; ++i) {
                      double at = i * interval;
                      double strength = at < 0.3 ? (i % 2 ? 1.4 : -1.2) : 0.0;
                      p.mainQueue().submit(p.device().elapsed() + at, [handler, strength, raw] {
                        if (raw)
                          handler(strength, 0, -1.0);
                        else
                          handler(strength, 0, 0);
                      });
                    }
                  }
                  s.advance(0.3);
                }};
  t["longpress"] = {"longpress", [](Session& s, const Command& c) {
                      requireWords(c, 1, 1, "longpress");
                      s.requireForeground("longpress");
                      if (std::string top = topScreenName(s); top == "alert" || top == "biometric")
                        throw ScriptError{"longpress: a dialog is on screen"};
                      rt::Id top = topScreen();
                      if (!top) throw ScriptError{"longpress: no screen shown"};
                      rt::Id nav = rt::send<rt::Id>(top, "navigationController");
                      rt::Id target = nav ? rt::send<rt::Id>(nav, "navigationBar")
                                          : rt::send<rt::Id>(top, "view");
                      std::vector<rt::Id> recognizers;
                      for (rt::Id g : sim::viewState(target)->gestureRecognizers)
                        if (rt::isKindOf(g, "UILongPressGestureRecognizer"))
                          recognizers.push_back(g);
                      double held = 0.8, began = held;
                      for (rt::Id g : recognizers)
                        began = std::min(began, sim::gestureState(g)->minimumPressDuration);
                      s.advance(began);
                      for (rt::Id g : recognizers) {
                        sim::GestureState* gs = sim::gestureState(g);
                        if (gs->minimumPressDuration > held) continue;
                        gs->state = 1;  // began
                        if (auto action = gs->action) s.process()->runGuarded([&] { action(g); });
                      }
                      s.advance(held - began);
                      for (rt::Id g : recognizers) {
                        sim::GestureState* gs = sim::gestureState(g);
                        if (gs->state != 1) continue;
                        gs->state = 3;  // ended
                        if (auto action = gs->action) s.process()->runGuarded([&] { action(g); });
                        gs->state = 0;
                      }
                    }};
  t["type"] = {"type TEXT", [](Session& s, const Command& c) {
                 requireWords(c, 2, 2, "type TEXT");
                 rt::Id alert = alertOnScreen(s, "type");
                 if (sim::alertState(alert)->textFields.empty())
                   throw ScriptError{"type: the dialog has no text field"};
                 sim::typeIntoAlert(alert, c.words[1]);
               }};
  t["press"] = {
      "press TITLE", [](Session& s, const Command& c) {
        requireWords(c, 2, 2, "press TITLE");
        rt::Id alert = alertOnScreen(s, "press");
        bool found = false;
        s.process()->runGuarded([&] { found = sim::pressAlertAction(alert, c.words[1]); });
        if (!found) throw ScriptError{"press: the dialog has no button '" + c.words[1] + "'"};
      }};
  t["biometric"] = {"biometric pass|fail", [](Session& s, const Command& c) {
                      requireWords(c, 2, 2, "biometric pass|fail");
                      if (c.words[1] != "pass" && c.words[1] != "fail")
                        throw ScriptError{"usage: biometric pass|fail"};
                      sim::Process& p = s.requireForeground("biometric");
                      if (!p.answerSystemPrompt(c.words[1] == "pass"))
                        throw ScriptError{"biometric: no biometric prompt on screen"};
                    }};
  t["expect screen"] = {"expect screen NAME", [](Session& s, const Command& c) {
                          requireWords(c, 3, 3, "expect screen NAME");
                          static const std::set<std::string> kNames = {
                              "main",  "chat",  "contacts",  "search", "moments", "forward",
                              "about", "alert", "biometric", "panel",  "picker"};
                          if (!kNames.count(c.words[2]))
                            throw ScriptError{"expect screen: no screen '" + c.words[2] +
                                              "' (main, chat, contacts, search, moments, "
                                              "forward, about, alert, biometric, panel, picker)"};
                          std::string got = topScreenName(s);
                          if (got != c.words[2]) throw ExpectFailure{got};
                        }};
  t["expect alert"] = {"expect alert \"TITLE\"", [](Session& s, const Command& c) {
                         requireWords(c, 3, 3, "expect alert \"TITLE\"");
                         s.requireProcess("expect alert");
                         rt::Id top = topScreen();
                         sim::AlertState* a = top ? sim::alertState(top) : nullptr;
                         if (!a) throw ExpectFailure{"no dialog (screen " + topScreenName(s) + ")"};
                         if (a->title != c.words[2]) throw ExpectFailure{"\"" + a->title + "\""};
                       }};
}

}  // namespace qbsim

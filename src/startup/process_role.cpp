#include "startup/process_role.hpp"

#include <string>

#include "notify/springboard_guard.hpp"
#include "rt/runtime.hpp"
#include "sys/bundle.hpp"

namespace core {
namespace {

constexpr const char* kHostClasses[] = {"MMContext",
                                        "MMServiceCenter",
                                        "MMNewSessionMgr",
                                        "MainSessionMgr",
                                        "MainFrameLogicController",
                                        "NewMainFrameViewController",
                                        "CContactMgr",
                                        "BaseMsgContentViewController",
                                        "ContactsViewController",
                                        "QuickReplyMsgMgr",
                                        "MMLocalNotificationMgr",
                                        "MMLocalNotificationUtil",
                                        "SettingAboutMMViewController",
                                        "VoipCXMgr"};

}  // namespace

ProcessRole processRole() {
  std::string bundle = sys::mainBundleString("CFBundleIdentifier");
  if (bundle == notify::kSpringBoardBundle) return ProcessRole::SpringBoard;
  for (const char* name : kHostClasses)
    if (rt::getClass(name)) return ProcessRole::Host;
  return bundle.empty() ? ProcessRole::Host : ProcessRole::Other;
}

}  // namespace core

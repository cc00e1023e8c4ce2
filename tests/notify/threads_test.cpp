// The host calls some notification hooks from its other threads while the
// main thread changes settings. Run under ThreadSanitizer by the test command.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "sim/hostapp/host_app.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace {

using rt::Id;

class NotifyThreads : public qbtest::NotifyWorld {};

TEST_F(NotifyThreads, HooksFromSeveralThreadsWhileSettingsChange) {
  launch();
  Id quickReply = hostapp::hostService("QuickReplyMsgMgr");
  Id push = hostapp::hostService("MMLocalNotificationMgr");
  Id center = rt::send<Id>(rt::getClass("UNUserNotificationCenter"), "currentNotificationCenter");
  auto messageFrom = [](const char* u) {
    return rt::dictionary(
        {{rt::str("m_nsFromUsr"), rt::str(u)}, {rt::str("m_nsToUsr"), rt::str("wxid_me")}});
  };
  auto requestFrom = [](const char* u) {
    Id content = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
    rt::send<void>(content, "setBody:", rt::str("hi"));
    rt::send<void>(content,
                   "setUserInfo:", rt::dictionary({{rt::str("fromUserName"), rt::str(u)}}));
    return rt::send<Id>(rt::getClass("UNNotificationRequest"),
                        "requestWithIdentifier:content:trigger:", rt::str(u), content, Id{nullptr});
  };
  Id alice = messageFrom("alice"), bob = messageFrom("bob");
  Id aliceRequest = requestFrom("alice"), bobRequest = requestFrom("bob");
  std::atomic<int> completions{0};
  Id completion = sim::makeCompletionBlock([&](Id) { ++completions; });
  const char* infoSel =
      "notificationInfoForMessage:withEnabledNotificationSettings:isFromVoipPush:";
  // Once on the main thread, so lazily made host objects exist before the threads read them.
  rt::send<bool>(quickReply, "canShowPushForContact:msgWrap:", Id{nullptr}, bob);
  rt::send<Id>(push, infoSel, bob, 7L, false);

  constexpr int kThreads = 4, kRounds = 60;
  std::atomic<int> aliceRefused{0};
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < kRounds; ++i) {
        if (!rt::send<bool>(quickReply, "canShowPushForContact:msgWrap:", Id{nullptr}, alice))
          ++aliceRefused;
        rt::send<bool>(quickReply, "canShowPushForContact:msgWrap:", Id{nullptr}, bob);
        rt::send<Id>(push, infoSel, bob, 7L, true);
        rt::send<void>(center, "addNotificationRequest:withCompletionHandler:",
                       i % 2 ? aliceRequest : bobRequest, completion);
      }
    });
  }
  std::thread settings([&] {
    for (long i = 0; !stop; ++i) {
      config().setSecretNotifyMode(i % 3);
      config().setUnlocked(i % 2);
      config().setVoipVoiceNotifyEnabled(i % 5 == 0);
    }
  });
  for (auto& th : threads) th.join();
  stop = true;
  settings.join();
  EXPECT_EQ(aliceRefused, 0) << "a non-secret is never refused";
  EXPECT_EQ(completions, kThreads * kRounds) << "every request completes, added or not";
  process->runDue();
}

}  // namespace

// The default notification centre. Observers are delivered on the main queue:
// a post on the main thread reaches them at once, in registration order, as
// Foundation does with addObserverForName:object:queue:mainQueue usingBlock:.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "rt/types.hpp"

namespace sys {

struct Notification {
  std::string name;
  rt::Id object = nullptr;
  rt::Id userInfo = nullptr;
};

using Observer = std::function<void(const Notification&)>;

struct ObserverToken {
  std::uint64_t id = 0;
};

// addObserverForName:object:nil queue:[NSOperationQueue mainQueue] usingBlock:.
// An empty name observes every notification.
ObserverToken addObserver(std::string name, Observer block);
// removeObserver: — later posts no longer reach it, a post under way included.
void removeObserver(ObserverToken token);
// postNotificationName:object:userInfo: on the default centre. Off the main
// thread the observers run on the main queue instead.
void postNotification(std::string name, rt::Id object = nullptr, rt::Id userInfo = nullptr);

// The names of the platform's application and scene notifications.
inline constexpr const char* kDidFinishLaunching = "UIApplicationDidFinishLaunchingNotification";
inline constexpr const char* kDidBecomeActive = "UIApplicationDidBecomeActiveNotification";
inline constexpr const char* kWillResignActive = "UIApplicationWillResignActiveNotification";
inline constexpr const char* kDidEnterBackground = "UIApplicationDidEnterBackgroundNotification";
inline constexpr const char* kWillEnterForeground = "UIApplicationWillEnterForegroundNotification";
inline constexpr const char* kSceneWillConnect = "UISceneWillConnectNotification";
inline constexpr const char* kSceneWillEnterForeground = "UISceneWillEnterForegroundNotification";
inline constexpr const char* kSceneDidActivate = "UISceneDidActivateNotification";
inline constexpr const char* kSceneWillDeactivate = "UISceneWillDeactivateNotification";
inline constexpr const char* kSceneDidEnterBackground = "UISceneDidEnterBackgroundNotification";

}  // namespace sys

// The default NSNotificationCenter with block observers on the main
// operation queue. Each observer also carries a flag that removeObserver
// clears, so a post already under way stops reaching it at once.
#include "sys/notifications.hpp"

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "bridge.h"

namespace sys {
namespace {

struct Registration {
  id<NSObject> token;
  std::shared_ptr<std::atomic<bool>> live;
};

struct Observers {
  std::mutex mutex;
  std::uint64_t next = 0;
  std::unordered_map<std::uint64_t, Registration> byId;
};

Observers& observers() {
  static Observers* o = new Observers;
  return *o;
}

void postNow(const std::string& name, rt::Id object, rt::Id userInfo) {
  [[NSNotificationCenter defaultCenter] postNotificationName:ios::ns(name)
                                                      object:ios::object(object)
                                                    userInfo:(NSDictionary*)ios::object(userInfo)];
}

}  // namespace

ObserverToken addObserver(std::string name, Observer block) {
  auto live = std::make_shared<std::atomic<bool>>(true);
  id<NSObject> token = [[NSNotificationCenter defaultCenter]
      addObserverForName:(name.empty() ? nil : ios::ns(name))
                  object:nil
                   queue:[NSOperationQueue mainQueue]
              usingBlock:^(NSNotification* n) {
                if (!*live) return;
                Notification note{ios::utf8(n.name), ios::handle(n.object),
                                  ios::handle(n.userInfo)};
                ios::shielded("notification observer", [&] { block(note); });
              }];
  Observers& o = observers();
  std::lock_guard lock(o.mutex);
  std::uint64_t id = ++o.next;
  o.byId[id] = Registration{token, live};
  return ObserverToken{id};
}

void removeObserver(ObserverToken token) {
  Registration r;
  {
    Observers& o = observers();
    std::lock_guard lock(o.mutex);
    auto it = o.byId.find(token.id);
    if (it == o.byId.end()) return;
    r = it->second;
    o.byId.erase(it);
  }
  *r.live = false;
  [[NSNotificationCenter defaultCenter] removeObserver:r.token];
}

void postNotification(std::string name, rt::Id object, rt::Id userInfo) {
  if ([NSThread isMainThread]) {
    postNow(name, object, userInfo);
    return;
  }
  // The objects cross to the main queue held strongly by the block.
  id obj = ios::object(object), info = ios::object(userInfo);
  dispatch_async(dispatch_get_main_queue(), ^{
    ios::shielded("notification post", [&] { postNow(name, ios::handle(obj), ios::handle(info)); });
  });
}

}  // namespace sys

#include "host/runtime_toolkit.hpp"

#include <cstring>
#include <deque>

#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/guarded.hpp"
#include "sys/log.hpp"

namespace host {
namespace {

std::string name(rt::SEL s) { return std::string(rt::selName(s)); }

// A class method, when the class responds to it.
rt::Id classCall(rt::Class cls, const char* selector) {
  rt::SEL s = rt::sel(selector);
  if (!cls || !rt::respondsTo(rt::toId(cls), s)) return nullptr;
  return rt::send<rt::Id>(cls, s);
}

// Host objects can point at each other (a session's contact whose session...);
// nesting deeper than this is not a username carrier.
constexpr int kMaxNesting = 8;

std::string usernameAt(rt::Id obj, int depth) {
  if (!obj || rt::isNull(obj) || depth > kMaxNesting) return "";
  if (rt::isString(obj)) return rt::asString(obj).value_or("");
  for (const char* key : kUsernameKeys) {
    if (auto s = rt::nonEmptyString(rt::probeKey(obj, key))) return *s;
  }
  for (const char* key : kNestedContactKeys) {
    std::string found = usernameAt(rt::probeKey(obj, key), depth + 1);
    if (!found.empty()) return found;
  }
  return "";
}

}  // namespace

std::size_t UsernameReader::keysOf(rt::Class cls) {
  for (std::size_t k = 0; k < classes_.size(); ++k)
    if (classes_[k].cls == cls) return k;
  std::size_t n = std::size(kUsernameKeys) + std::size(kNestedContactKeys);
  classes_.push_back(ClassKeys{cls, std::vector<std::optional<rt::KeyRead>>(n)});
  return classes_.size() - 1;
}

// usernameAt, asking each class only once whether it answers a key.
std::string UsernameReader::at(rt::Id obj, int depth) {
  if (!obj || rt::isNull(obj) || depth > kMaxNesting) return "";
  if (rt::isString(obj)) return rt::asString(obj).value_or("");
  rt::Class cls = rt::classOf(obj);
  // By index: a nested read may add a class and move the others.
  std::size_t k = keysOf(cls);
  std::size_t i = 0;
  auto read = [&](const char* key) -> rt::Id {
    std::optional<rt::KeyRead>& how = classes_[k].reads[i++];
    if (!how) how = rt::keyReadOn(cls, key);
    return rt::readKey(obj, key, *how);
  };
  for (const char* key : kUsernameKeys)
    if (auto s = rt::nonEmptyString(read(key))) return *s;
  for (const char* key : kNestedContactKeys) {
    rt::Id nested = read(key);
    std::string found = at(nested, depth + 1);
    if (!found.empty()) return found;
  }
  return "";
}

std::string UsernameReader::operator()(rt::Id obj) {
  return sys::guarded(
      "[QB][stable] QBRuntime usernameFrom ex: %@", [&] { return at(obj, 0); }, std::string());
}

void QBRuntime::swizzleInstance(rt::Class cls, rt::SEL original, rt::SEL swizzled) {
  if (!cls || !original || !swizzled) return;
  sys::guarded("[QB][stable] swizzle ex: %@", [&] {
    rt::Method origMethod = rt::getInstanceMethod(cls, original);
    rt::Method swizMethod = rt::getInstanceMethod(cls, swizzled);
    if (!origMethod || !swizMethod) {
      sys::log("[QB][stable] swizzle skip %@ %@ / %@", rt::className(cls), name(original),
               name(swizzled));
      return;
    }
    const char* types = rt::typeEncoding(origMethod);
    // An inherited original gets a copy on the class itself first, so the
    // exchange changes this class only, not the superclass and its siblings.
    if (rt::addMethod(cls, original, rt::methodImplementation(origMethod), types))
      origMethod = rt::getInstanceMethod(cls, original);
    rt::addMethod(cls, swizzled, rt::methodImplementation(swizMethod), types ? types : "v@:");
    swizMethod = rt::getInstanceMethod(cls, swizzled);
    if (!swizMethod) return;
    rt::exchangeImplementations(origMethod, swizMethod);
  });
}

bool QBRuntime::replace(rt::Class cls, rt::SEL sel, rt::IMP newIMP, rt::IMP* store) {
  if (!cls || !sel || !newIMP || !store) return false;
  return sys::guarded(
      "[QB][stable] replace ex: %@",
      [&] {
        rt::Method m = rt::getInstanceMethod(cls, sel);
        if (!m) {
          sys::log("[QB][stable] replace missing %@ %@", rt::className(cls), name(sel));
          return false;
        }
        *store = rt::methodImplementation(m);
        const char* types = rt::typeEncoding(m);
        // A method the class only inherits is overridden on the class itself
        // rather than overwritten in the superclass.
        if (!rt::addMethod(cls, sel, newIMP, types)) rt::setImplementation(m, newIMP);
        sys::log("[QB][stable] replace %@ types=%s", name(sel), types ? types : "?");
        return true;
      },
      false);
}

char QBRuntime::secondArgTypeOfMethod(rt::Method method) {
  const char* types = method ? rt::typeEncoding(method) : nullptr;
  if (!types) return 'Q';
  const char* p = rt::skipType(types);  // the return type
  if (*p == '@') p = rt::skipType(p);   // the receiver
  if (*p == ':') p = rt::skipType(p);   // the selector
  if (*p) return *p;
  if (std::strstr(types, "Q16") || std::strstr(types, "q16")) return 'Q';
  if (std::strstr(types, "I12") || std::strstr(types, "i12") || std::strstr(types, "I16"))
    return 'I';
  return 'Q';
}

std::string QBRuntime::usernameFrom(rt::Id obj) {
  // A host object whose type test itself raises carries nothing.
  return sys::guarded(
      "[QB][stable] QBRuntime usernameFrom ex: %@", [obj] { return usernameAt(obj, 0); },
      std::string());
}

rt::Id QBRuntime::mmContext() {
  return sys::guarded(
      "[QB][stable] mmContext ex: %@",
      []() -> rt::Id {
        rt::Class contextClass = rt::getClass("MMContext");
        if (!contextClass) return nullptr;
        for (const char* selector : kContextClassSelectors)
          if (rt::Id c = classCall(contextClass, selector)) return c;
        rt::Id manager = classCall(rt::getClass("MMContextManager"), "sharedInstance");
        if (!manager) return nullptr;
        for (const char* key : kContextManagerKeys)
          if (rt::Id c = rt::probeKey(manager, key)) return c;
        return nullptr;
      },
      rt::Id{});
}

rt::Id QBRuntime::serviceCenter() {
  return sys::guarded(
      "[QB][stable] serviceCenter ex: %@",
      []() -> rt::Id {
        if (rt::Id context = mmContext()) {
          for (const char* key : kServiceCenterKeys)
            if (rt::Id c = rt::probeKey(context, key)) return c;
        }
        rt::Class centerClass = rt::getClass("MMServiceCenter");
        if (centerClass && rt::respondsTo(rt::toId(centerClass), rt::sel("defaultCenter")))
          return rt::send<rt::Id>(centerClass, "defaultCenter");
        return nullptr;
      },
      rt::Id{});
}

rt::Id QBRuntime::serviceNamed(std::string_view className) {
  return sys::guarded(
      "[QB][stable] serviceNamed %@ ex: %@",
      [className]() -> rt::Id {
        rt::Class cls = rt::getClass(className);
        rt::Id center = serviceCenter();
        if (!cls || !center || !rt::respondsTo(center, rt::sel("getService:"))) return nullptr;
        return rt::send<rt::Id>(center, "getService:", cls);
      },
      rt::Id{}, className);
}

rt::Id QBRuntime::keyWindow() {
  return sys::guarded(
      "[QB][stable] QBRuntime keyWindow ex: %@",
      []() -> rt::Id {
        rt::Class appClass = rt::getClass("UIApplication");
        rt::Id app = appClass ? rt::send<rt::Id>(appClass, "sharedApplication") : nullptr;
        if (!app) return nullptr;
        rt::Class sceneClass = rt::getClass("UIWindowScene");
        for (rt::Id scene : rt::elements(rt::send<rt::Id>(app, "connectedScenes"))) {
          if (!rt::isKindOf(scene, sceneClass)) continue;
          for (rt::Id window : rt::elements(rt::send<rt::Id>(scene, "windows")))
            if (rt::send<bool>(window, "isKeyWindow")) return window;
        }
        std::vector<rt::Id> windows = rt::elements(rt::send<rt::Id>(app, "windows"));
        return windows.empty() ? nullptr : windows.front();
      },
      rt::Id{});
}

rt::Id QBRuntime::lastPresented(rt::Id vc) {
  while (vc) {
    rt::Id next = rt::send<rt::Id>(vc, "presentedViewController");
    if (!next) break;
    vc = next;
  }
  return vc;
}

rt::Id QBRuntime::topPresented() {
  rt::Id window = keyWindow();
  return lastPresented(window ? rt::send<rt::Id>(window, "rootViewController") : nullptr);
}

std::vector<rt::Id> QBRuntime::collectViewControllers() {
  std::vector<rt::Id> result;
  // An exception ends the walk; what was collected so far stands.
  sys::guarded("[QB][stable] QBRuntime collectViewControllers ex: %@", [&result] {
    std::deque<rt::Id> queue;
    if (rt::Id root = rt::send<rt::Id>(keyWindow(), "rootViewController")) queue.push_back(root);
    rt::Class nav = rt::getClass("UINavigationController");
    rt::Class tab = rt::getClass("UITabBarController");
    while (!queue.empty()) {
      rt::Id vc = queue.front();
      queue.pop_front();
      result.push_back(vc);
      for (rt::Id child : rt::elements(rt::send<rt::Id>(vc, "childViewControllers")))
        queue.push_back(child);
      if (rt::Id presented = rt::send<rt::Id>(vc, "presentedViewController"))
        queue.push_back(presented);
      if (rt::isKindOf(vc, nav) || rt::isKindOf(vc, tab))
        for (rt::Id child : rt::elements(rt::send<rt::Id>(vc, "viewControllers")))
          queue.push_back(child);
    }
  });
  return result;
}

}  // namespace host

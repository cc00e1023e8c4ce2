// QBRuntime: how every hook installer reaches into the host. It exchanges or
// replaces method implementations, reads usernames out of any host object,
// finds the host's context, services, key window and live view controllers.
// Host classes, selectors and keys may be missing in a given build; nothing
// here lets an exception escape, and failures become "nothing" results.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rt/kvc.hpp"
#include "rt/types.hpp"

namespace host {

// QBRuntime::usernameFrom for the many entries of one pass over a host list:
// which of the username keys each class answers is learned once per class,
// and only the keys it answers are read. For one pass only: a class that
// gains an accessor later is seen by the next reader.
class UsernameReader {
 public:
  std::string operator()(rt::Id obj);

 private:
  struct ClassKeys {
    rt::Class cls;
    std::vector<std::optional<rt::KeyRead>> reads;  // per key, once asked
  };
  std::size_t keysOf(rt::Class cls);  // the index of cls's entry, made on first use
  std::string at(rt::Id obj, int depth);
  std::vector<ClassKeys> classes_;
};

struct QBRuntime {
  // Exchanges two instance methods of the class, first making sure the
  // swizzled one exists on the class itself.
  static void swizzleInstance(rt::Class cls, rt::SEL original, rt::SEL swizzled);
  // Replaces one instance method's implementation, storing the previous one
  // in `store` before installing the new one.
  static bool replace(rt::Class cls, rt::SEL sel, rt::IMP newIMP, rt::IMP* store);
  // The type character of the method's first explicit argument ('Q' when unknown).
  static char secondArgTypeOfMethod(rt::Method method);
  // The username a host object carries; "" for none.
  static std::string usernameFrom(rt::Id obj);
  static rt::Id mmContext();
  static rt::Id serviceCenter();
  static rt::Id serviceNamed(std::string_view className);
  static rt::Id keyWindow();
  // The end of the chain of presentedViewController from `vc` (`vc` itself when
  // it presents nothing), and that from the key window's root.
  static rt::Id lastPresented(rt::Id vc);
  static rt::Id topPresented();
  // Every view controller reachable from the key window, breadth first;
  // duplicates are kept.
  static std::vector<rt::Id> collectViewControllers();
};

// The key lists, in the order they are tried.
inline constexpr const char* kUsernameKeys[] = {
    "m_nsUsrName", "m_nsUserName",    "username",        "userName",
    "usrName",     "sessionUsername", "m_username",      "m_nsFromUsr",
    "m_nsToUsr",   "m_nsRealChatUsr", "m_nsChatRoomName"};
inline constexpr const char* kNestedContactKeys[] = {"m_contact", "contact"};
inline constexpr const char* kContextClassSelectors[] = {"activeUserContext", "currentContext",
                                                         "rootContext"};
inline constexpr const char* kContextManagerKeys[] = {"activeUserContext", "currentContext",
                                                      "m_currentContext"};
inline constexpr const char* kServiceCenterKeys[] = {"serviceCenter", "m_serviceCenter"};

}  // namespace host

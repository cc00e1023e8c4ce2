#include "notify/probes.hpp"

#include <vector>

#include "core/config.hpp"
#include "host/contact_info.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"

namespace notify {
namespace {

// Host objects can point at each other; deeper than this carries no username.
constexpr int kMaxNesting = 6;

bool isRoom(const std::string& u) { return u.find("@chatroom") != std::string::npos; }

std::string stringAt(rt::Id obj, const char* key) {
  return rt::nonEmptyString(rt::probeKey(obj, key)).value_or("");
}

std::string senderAt(rt::Id m, int depth) {
  if (!m || rt::isNull(m) || depth > kMaxNesting) return "";
  if (rt::isString(m)) return rt::asString(m).value_or("");
  for (const char* key : kMessageSenderKeys) {
    std::string v = stringAt(m, key);
    if (isRoom(v)) return v;
  }
  std::string from =
      firstString(m, {"m_nsFromUsr", "fromUserName", "m_nsFromUserName", "callerUserName"});
  std::string to = firstString(m, {"m_nsToUsr", "toUserName"});
  if (isRoom(from)) return from;
  if (isRoom(to)) return to;
  // The user's own outgoing message belongs to the chat it went to.
  if (!from.empty() && !to.empty() && from == host::QBContactInfo::selfUsername()) return to;
  if (!from.empty()) return from;
  if (!to.empty()) return to;
  if (std::string u = host::QBRuntime::usernameFrom(m); !u.empty()) return u;
  for (const char* key : kNestedMessageKeys) {
    std::string u = senderAt(rt::probeKey(m, key), depth + 1);
    if (!u.empty()) return u;
  }
  return "";
}

// The user info's named keys (fromUserName, username, …) are among its
// values, and every string value is asked: asking the keys first would only
// ask them twice. The first secret ends the search.
bool holds(rt::Id info, const NameTest& named, int depth) {
  if (!rt::isDictionary(info) || depth > kMaxNesting) return false;
  std::vector<rt::Id> nested;
  for (rt::Id key : rt::allKeys(info)) {
    rt::Id value = rt::objectForKey(info, key);
    if (std::optional<std::string> s = rt::nonEmptyString(value); s && named(*s)) return true;
    if (rt::isDictionary(value)) nested.push_back(value);
  }
  for (rt::Id n : nested)
    if (holds(n, named, depth + 1)) return true;
  return false;
}

std::string inviteCallerAt(rt::Id obj, int depth) {
  if (!obj || rt::isNull(obj) || depth > kMaxNesting) return "";
  std::string u = firstString(
      obj, {"fromUserName", "callerUserName", "realCallerUserName", "inviteUserName", "m_nsFromUsr",
            "username", "m_fromUser", "callerUsername", "mInviteUserName", "wxInviteUserName"});
  if (!u.empty()) return u;
  for (const char* key : kNestedInvitationKeys)
    if (std::string n = inviteCallerAt(rt::probeKey(obj, key), depth + 1); !n.empty()) return n;
  for (const char* key : kCallerContactKeys)
    if (std::string c = firstString(rt::probeKey(obj, key), {"m_nsUsrName", "userName"});
        !c.empty())
      return c;
  return "";
}

}  // namespace

bool isSecret(std::string_view username) {
  return !username.empty() && core::QBConfig::shared().isSecretUser(username);
}

std::string firstString(rt::Id obj, std::initializer_list<const char*> keys) {
  if (!obj || rt::isNull(obj)) return "";
  for (const char* key : keys)
    if (std::string v = stringAt(obj, key); !v.empty()) return v;
  return "";
}

std::string messageSender(rt::Id message) {
  std::string u = senderAt(message, 0);
  if (isSecret(u)) return u;
  std::string second = host::QBRuntime::usernameFrom(message);
  return isSecret(second) ? second : u;
}

std::string callCaller(rt::Id obj) {
  return firstString(
      obj, {"fromUserName", "realCallerUserName", "callerUserName", "m_nsUsrName", "userName"});
}

std::string voipPushCaller(rt::Id obj) {
  return firstString(obj, {"fromUserName", "m_nsFromUsr", "m_nsRealChatUsr", "callerUserName"});
}

std::string inviteCaller(rt::Id obj) { return inviteCallerAt(obj, 0); }

bool userInfoHolds(rt::Id userInfo, const NameTest& named) { return holds(userInfo, named, 0); }

bool userInfoHoldsSecret(rt::Id userInfo) { return userInfoHolds(userInfo, isSecret); }

bool partsName(rt::Id userInfo, std::string_view threadIdentifier, const NameTest& named) {
  return (!threadIdentifier.empty() && named(threadIdentifier)) || userInfoHolds(userInfo, named);
}

}  // namespace notify

#include "notify/predicates.hpp"

#include "core/config.hpp"
#include "host/contact_info.hpp"
#include "notify/probes.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"

namespace notify {
namespace {

using core::QBConfig;

bool contains(const std::string& text, const char* word) {
  return text.find(word) != std::string::npos;
}

// A flag or type value that says "video": true, a non-zero number, or a
// string naming video.
bool readsAsVideo(rt::Id v) {
  if (!v || rt::isNull(v)) return false;
  if (auto s = rt::asString(v)) return contains(rt::lowercase(*s), "video") || rt::boolValue(v);
  return rt::isNumber(v) && rt::boolValue(v);
}

bool anyKeyReadsAsVideo(rt::Id obj, std::initializer_list<const char*> keys) {
  for (const char* key : keys)
    if (readsAsVideo(rt::probeKey(obj, key))) return true;
  return false;
}

std::string texts(rt::Id m) {
  std::string all;
  for (const char* key : {"m_nsContent", "content", "title", "body", "m_nsTitle"})
    if (auto s = rt::nonEmptyString(rt::probeKey(m, key))) all += *s + " ";
  return all;
}

bool callerFlagOrSelf(rt::Id m) {
  if (!m || rt::isNull(m)) return false;
  for (const char* key : {"m_bIsCaller", "isCaller", "m_isCaller", "m_bCaller"})
    if (rt::boolValue(rt::probeKey(m, key))) return true;
  std::string from =
      firstString(m, {"m_nsFromUsr", "fromUserName", "m_nsFromUserName", "callerUserName"});
  return !from.empty() && from == host::QBContactInfo::selfUsername();
}

bool secretHiddenWithMode(rt::Id m, long mode) {
  QBConfig& c = QBConfig::shared();
  return c.secretNotifyMode() == mode && c.shouldHideSecrets() && isSecret(messageSender(m));
}

}  // namespace

bool callKindBlocks(const std::string& caller, bool video) {
  if (!isSecret(caller)) return false;
  QBConfig& c = QBConfig::shared();
  bool voice = c.voipVoiceNotifyEnabled(), videoOn = c.voipVideoNotifyEnabled();
  if (!voice && !videoOn) return true;
  return video ? !videoOn : !voice;
}

bool isCallMessage(rt::Id m) {
  if (!m || rt::isNull(m)) return false;
  for (const char* key : {"m_uiMessageType", "msgType", "messageType"}) {
    rt::Id v = rt::probeKey(m, key);
    if (v && rt::answersIntegerValue(v) && rt::integerValue(v) == kCallMessageType) return true;
  }
  return false;
}

bool textReadsLikeCall(rt::Id m) {
  std::string t = texts(m);
  if (t.empty()) return false;
  std::string lower = rt::lowercase(t);
  for (const char* word : kCallWords)
    if (contains(lower, word)) return true;
  return false;
}

bool isVideoCall(rt::Id m) {
  if (!m || rt::isNull(m)) return false;
  if (anyKeyReadsAsVideo(m, {"isVideo", "m_bVideo", "video", "Video", "video_voip", "voipType",
                             "callType", "type", "inviteType", "InviteType"}))
    return true;
  for (const char* key : kNestedInvitationKeys) {
    rt::Id nested = rt::probeKey(m, key);
    if (!nested || rt::isNull(nested)) continue;
    if (anyKeyReadsAsVideo(nested, {"m_bVideo", "isVideo", "m_bVideoMode", "isVideoMode",
                                    "m_bIsVideo", "videoMode", "video_voip", "_video_voip",
                                    "m_iVoipMode", "m_uiVoipMode", "voipMode", "m_voipMode",
                                    "m_uiVoipInviteType", "voipType", "inviteType", "_inviteType"}))
      return true;
  }
  std::string t = texts(m);
  return contains(t, "视频") || contains(rt::lowercase(t), "video");
}

bool isOutgoingCall(rt::Id m) {
  if (callerFlagOrSelf(m)) return true;
  for (const char* key : {"monoMsg", "m_voipMonoMsg", "inviteMonoMsg", "info", "invitationInfo"})
    if (callerFlagOrSelf(rt::probeKey(m, key))) return true;
  return false;
}

// Deliberately blind to shouldHideSecrets: a secret's call announcements
// follow the switches even while revealed.
bool callLeftover(rt::Id m) {
  if (!m || rt::isNull(m)) return false;
  if (!isCallMessage(m) && !textReadsLikeCall(m)) return false;
  return callKindBlocks(messageSender(m), isVideoCall(m));
}

bool hiddenSecretDrop(rt::Id m) { return secretHiddenWithMode(m, 0); }

bool blocked(rt::Id m) { return callLeftover(m) || hiddenSecretDrop(m); }

bool vibrateOnly(rt::Id m) { return !callLeftover(m) && secretHiddenWithMode(m, 1); }

bool muted(rt::Id m) {
  if (callLeftover(m)) return true;
  QBConfig& c = QBConfig::shared();
  return c.secretNotifyMode() != 2 && c.shouldHideSecrets() && isSecret(messageSender(m));
}

// Not the call kind rule: with the voice switch on, a push is still blocked
// while the video switch is off. Required as it is.
bool voipPushLightBlock(rt::Id m) {
  if (!isSecret(voipPushCaller(m))) return false;
  QBConfig& c = QBConfig::shared();
  return !(c.voipVoiceNotifyEnabled() && c.voipVideoNotifyEnabled());
}

bool callDetectionBlocks(const std::string& sender, const std::string& title,
                         const std::string& body, rt::Id userInfo,
                         const std::string& threadIdentifier) {
  std::string user = !sender.empty()             ? sender
                     : !threadIdentifier.empty() ? threadIdentifier
                                                 : callCaller(userInfo);
  if (!isSecret(user)) return false;
  std::string text = title + " " + body;
  std::string joined = text + " " + rt::description(userInfo);
  std::string lower = rt::lowercase(joined);
  bool call = contains(lower, "voip") || contains(lower, "call") || isCallMessage(userInfo);
  for (const char* word : kNotificationCallWords) call = call || contains(joined, word);
  if (call && callKindBlocks(user, isVideoCall(userInfo) || contains(joined, "视频"))) return true;
  // A call the switches allow is still a secret's notification.
  QBConfig& c = QBConfig::shared();
  return c.shouldHideSecrets() && c.secretNotifyMode() == 0;
}

bool contentNamesSecret(rt::Id content) {
  if (!content) return false;
  return userInfoHoldsSecret(rt::send<rt::Id>(content, "userInfo")) ||
         isSecret(rt::asString(rt::send<rt::Id>(content, "threadIdentifier")).value_or(""));
}

}  // namespace notify

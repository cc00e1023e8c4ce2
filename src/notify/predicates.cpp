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

bool contains(std::string_view text, std::string_view word) {
  return text.find(word) != std::string_view::npos;
}

// `word` (lower-case ASCII, or any text without case) in the lower-cased
// `text`, without lower-casing it: no other character lower-cases into an
// ASCII letter of these words, so folding ASCII alone finds the same.
bool containsFolded(std::string_view text, std::string_view word) {
  if (word.size() > text.size()) return false;
  auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
  for (std::size_t i = 0; i + word.size() <= text.size(); ++i) {
    std::size_t k = 0;
    while (k < word.size() && fold(text[i + k]) == word[k]) ++k;
    if (k == word.size()) return true;
  }
  return false;
}

// A flag or type value that says "video": true, a non-zero number, or a
// string naming video.
bool readsAsVideo(rt::Id v) {
  if (!v || rt::isNull(v)) return false;
  if (auto s = rt::asString(v)) return containsFolded(*s, "video") || rt::boolValue(v);
  return rt::isNumber(v) && rt::boolValue(v);
}

bool anyKeyReadsAsVideo(rt::Id obj, std::initializer_list<const char*> keys) {
  rt::KeyProbe probe(obj);
  for (const char* key : keys)
    if (readsAsVideo(probe(key))) return true;
  return false;
}

constexpr std::string_view kTextKeys[] = {"m_nsContent", "content", "title", "body", "m_nsTitle"};

// Whether one of the message's texts holds `word`, folded or not. Texts are
// searched one by one: no word spans two.
bool textsHold(rt::Id m, std::string_view word, bool folded) {
  rt::KeyProbe probe(m);
  for (std::string_view key : kTextKeys)
    if (auto s = rt::nonEmptyString(probe(key)))
      if (folded ? containsFolded(*s, word) : contains(*s, word)) return true;
  return false;
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

namespace {

constexpr std::string_view kMessageTypeKeys[] = {"m_uiMessageType", "msgType", "messageType"};

// One probe serves both tests: every message that could announce a call asks them.
bool isCallMessage(const rt::KeyProbe& probe) {
  for (std::string_view key : kMessageTypeKeys) {
    rt::Id v = probe(key);
    if (v && rt::answersIntegerValue(v) && rt::integerValue(v) == kCallMessageType) return true;
  }
  return false;
}

bool textReadsLikeCall(const rt::KeyProbe& probe) {
  for (std::string_view key : kTextKeys)
    if (auto s = rt::nonEmptyString(probe(key)))
      for (std::string_view word : kCallWords)
        if (containsFolded(*s, word)) return true;
  return false;
}

}  // namespace

bool isCallMessage(rt::Id m) {
  if (!m || rt::isNull(m)) return false;
  return isCallMessage(rt::KeyProbe(m));
}

bool textReadsLikeCall(rt::Id m) { return textReadsLikeCall(rt::KeyProbe(m)); }

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
  return textsHold(m, "视频", false) || textsHold(m, "video", true);
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
  rt::KeyProbe probe(m);
  if (!isCallMessage(probe) && !textReadsLikeCall(probe)) return false;
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
  // Hidden in mode 0 blocks a secret's notification, call or not; with both
  // call switches on no call kind blocks. Either way the texts do not matter.
  QBConfig& c = QBConfig::shared();
  if (c.shouldHideSecrets() && c.secretNotifyMode() == 0) return true;
  return callSwitchesBlock(c.voipVoiceNotifyEnabled(), c.voipVideoNotifyEnabled(), title, body,
                           userInfo);
}

bool callSwitchesBlock(bool voice, bool videoOn, const std::string& title, const std::string& body,
                       rt::Id userInfo) {
  if (voice && videoOn) return false;
  // The parts are searched one by one (no call word spans two), the user
  // info's description last and only when still needed.
  auto readsLikeCall = [](std::string_view t) {
    if (containsFolded(t, "voip") || containsFolded(t, "call")) return true;
    for (std::string_view word : kNotificationCallWords)
      if (contains(t, word)) return true;
    return false;
  };
  std::string description;
  bool call = readsLikeCall(title) || readsLikeCall(body) || isCallMessage(userInfo) ||
              (userInfo && readsLikeCall(description = rt::description(userInfo)));
  if (!call) return false;
  if (voice == videoOn) return true;  // both off: every kind blocks
  if (userInfo && description.empty()) description = rt::description(userInfo);
  bool video = isVideoCall(userInfo) || contains(title, "视频") || contains(body, "视频") ||
               contains(description, "视频");
  return video ? !videoOn : !voice;
}

bool contentNamesSecret(rt::Id content) {
  if (!content) return false;
  return partsNameSecret(rt::send<rt::Id>(content, "userInfo"),
                         rt::asString(rt::send<rt::Id>(content, "threadIdentifier")).value_or(""));
}

bool partsNameSecret(rt::Id userInfo, const std::string& threadIdentifier) {
  return partsName(userInfo, threadIdentifier, isSecret);
}

}  // namespace notify

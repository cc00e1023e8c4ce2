// The decisions: for a message or notification the host is about to
// announce, whether it is dropped, announced without sound with one vibration
// instead, or left to the host. Each is a pure function of the host object and
// the current settings, safe on any thread (settings reads are locked or
// atomic).
#pragma once

#include <string>
#include <string_view>

#include "rt/types.hpp"

namespace notify {

// A call of a secret caller is blocked when the switch of its kind is off, or
// both switches are; a non-secret or empty caller never is.
bool callKindBlocks(const std::string& caller, bool video);

// The host's call-message type, or a user-info dictionary saying so.
bool isCallMessage(rt::Id m);
// One of the message's texts holds a call word ("未接", "已取消", …).
bool textReadsLikeCall(rt::Id m);
// Video detection over the message's keys, its nested invitation and its texts.
bool isVideoCall(rt::Id m);
// The user's own call (a caller flag, or the user as sender), here or nested.
bool isOutgoingCall(rt::Id m);

// The six predicates.
bool callLeftover(rt::Id m);        // a secret's call announcement the switches forbid
bool hiddenSecretDrop(rt::Id m);    // secret sender, hidden, mode 0
bool blocked(rt::Id m);             // either of the two above
bool vibrateOnly(rt::Id m);         // secret, hidden, mode 1, not a call leftover
bool muted(rt::Id m);               // no sound
bool voipPushLightBlock(rt::Id m);  // a VoIP push from a secret unless both switches are on

// Call detection on a notification's parts; true when it must not be shown.
bool callDetectionBlocks(const std::string& sender, const std::string& title,
                         const std::string& body, rt::Id userInfo,
                         const std::string& threadIdentifier);
// Its second half, for a secret's notification, given the two call switches:
// whether the parts announce a call of a kind the switches keep out. A null
// user info leaves out its keys and its description (the costly part).
bool callSwitchesBlock(bool voice, bool videoOn, const std::string& title, const std::string& body,
                       rt::Id userInfo);

// A notification content whose user info (nested dictionaries included) or
// thread identifier names a secret: what the system request gating and the
// delivered-notification sweep both test.
bool contentNamesSecret(rt::Id content);
// The same on the content's user info and thread identifier, already read.
bool partsNameSecret(rt::Id userInfo, const std::string& threadIdentifier);

// Vibrates once: the host's AudioHelper when it has playVibration, else the
// system vibration sound.
void vibrate();

inline constexpr long kCallMessageType = 50;
// Views, not C strings: every message scans its texts for all of them.
inline constexpr std::string_view kCallWords[] = {
    "未接",       "已取消",        "忙线",          "对方无应答", "通话时长",
    "语音通话",   "视频通话",      "邀请你语音",    "邀请你视频", "通话中断",
    "已拒绝",     "对方已取消",    "通话已取消",    "已挂断",     "取消了语音",
    "取消了视频", "voipinvitemsg", "voiplocalinfo", "wordingtype"};
inline constexpr std::string_view kNotificationCallWords[] = {
    "语音通话", "视频通话", "邀请你", "通话", "未接", "已取消", "忙线"};

}  // namespace notify

// The username probes and the predicates on plain host objects: which key
// wins, group chats, the user's own messages, nesting, and call detection.
#include <gtest/gtest.h>

#include "notify/predicates.hpp"
#include "notify/probes.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"

namespace {

using rt::Id;
using rt::str;

class Probes : public qbtest::NotifyWorld {
 protected:
  static Id dict(std::vector<std::pair<const char*, Id>> entries) {
    std::vector<std::pair<Id, Id>> e;
    for (auto& [k, v] : entries) e.push_back({str(k), v});
    return rt::dictionary(e);
  }
};

TEST_F(Probes, MessageSenderOrder) {
  launch();
  // A group chat under a later key beats a person under an earlier one.
  EXPECT_EQ(notify::messageSender(
                dict({{"m_nsFromUsr", str("alice")}, {"fromUser", str("team@chatroom")}})),
            "team@chatroom");
  // The user's own outgoing message belongs to the receiver.
  EXPECT_EQ(
      notify::messageSender(dict({{"m_nsFromUsr", str("wxid_me")}, {"m_nsToUsr", str("bob")}})),
      "bob");
  EXPECT_EQ(
      notify::messageSender(dict({{"m_nsFromUsr", str("alice")}, {"m_nsToUsr", str("wxid_me")}})),
      "alice");
  // From before to; toUserName when m_nsToUsr is absent.
  EXPECT_EQ(notify::messageSender(dict({{"toUserName", str("alice")}})), "alice");
  EXPECT_EQ(
      notify::messageSender(dict({{"callerUserName", str("bob")}, {"userName", str("wxid_me")}})),
      "bob");
  // Nested message objects.
  EXPECT_EQ(notify::messageSender(dict({{"msgWrap", dict({{"fromUserName", str("bob")}})}})),
            "bob");
  EXPECT_EQ(notify::messageSender(dict({{"other", str("x")}})), "");
  // The second opinion: the toolkit's own order finds the secret.
  EXPECT_EQ(
      notify::messageSender(dict({{"m_nsUsrName", str("bob")}, {"fromUserName", str("alice")}})),
      "bob");
}

TEST_F(Probes, CallerListsHaveTheirOwnOrder) {
  launch();
  Id d = dict({{"m_nsFromUsr", str("a1")},
               {"callerUserName", str("a2")},
               {"realCallerUserName", str("a3")}});
  EXPECT_EQ(notify::callCaller(d), "a3");
  EXPECT_EQ(notify::voipPushCaller(d), "a1");
  EXPECT_EQ(notify::inviteCaller(d), "a2");
  EXPECT_EQ(notify::inviteCaller(dict({{"_info", dict({{"inviteUserName", str("bob")}})}})), "bob");
  EXPECT_EQ(notify::inviteCaller(dict({{"callerContact", dict({{"userName", str("bob")}})}})),
            "bob");
}

TEST_F(Probes, VideoDetectionAndOutgoingCalls) {
  launch();
  EXPECT_FALSE(notify::isVideoCall(dict({{"m_nsContent", str("[语音通话]")}})));
  EXPECT_TRUE(notify::isVideoCall(dict({{"m_nsContent", str("[视频通话]")}})));
  EXPECT_TRUE(notify::isVideoCall(dict({{"callType", str("Video")}})));
  EXPECT_TRUE(notify::isVideoCall(dict({{"monoMsg", dict({{"m_uiVoipMode", rt::number(1)}})}})));
  EXPECT_FALSE(notify::isVideoCall(dict({{"monoMsg", dict({{"m_uiVoipMode", rt::number(0)}})}})));
  EXPECT_TRUE(notify::isOutgoingCall(dict({{"m_bIsCaller", rt::boolNumber(true)}})));
  EXPECT_TRUE(notify::isOutgoingCall(dict({{"info", dict({{"fromUserName", str("wxid_me")}})}})));
  EXPECT_FALSE(notify::isOutgoingCall(dict({{"fromUserName", str("bob")}})));
}

TEST_F(Probes, PredicatesFollowModeStateAndSwitches) {
  launch();
  Id text = dict({{"m_nsFromUsr", str("bob")}, {"m_nsContent", str("hello")}});
  Id voiceCall = dict({{"m_nsFromUsr", str("bob")}, {"m_uiMessageType", rt::number(50)}});
  setMode(1);
  EXPECT_TRUE(notify::vibrateOnly(text));
  EXPECT_TRUE(notify::muted(text));
  EXPECT_FALSE(notify::blocked(text));
  setMode(2);
  EXPECT_FALSE(notify::muted(text));
  setMode(0);
  EXPECT_TRUE(notify::hiddenSecretDrop(text));
  config().setUnlocked(true);
  EXPECT_FALSE(notify::blocked(text));
  // Call leftovers ignore the hidden state and follow the switches.
  setSwitches(false, false);
  EXPECT_TRUE(notify::callLeftover(voiceCall));
  setSwitches(false, true);
  EXPECT_TRUE(notify::callLeftover(voiceCall));
  setSwitches(true, false);
  EXPECT_FALSE(notify::callLeftover(voiceCall));
  // The VoIP push light block still blocks here: both switches must be on.
  EXPECT_TRUE(notify::voipPushLightBlock(dict({{"fromUserName", str("bob")}})));
  setSwitches(true, true);
  EXPECT_FALSE(notify::voipPushLightBlock(dict({{"fromUserName", str("bob")}})));
  EXPECT_FALSE(notify::callLeftover(
      dict({{"m_nsFromUsr", str("alice")}, {"m_uiMessageType", rt::number(50)}})));
}

TEST_F(Probes, CallDetection) {
  launch();
  setMode(2);
  setSwitches(true, false);
  Id none = dict({});
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "邀请你视频通话", none, ""));
  EXPECT_FALSE(notify::callDetectionBlocks("bob", "Bob", "邀请你语音通话", none, ""));
  EXPECT_FALSE(notify::callDetectionBlocks("alice", "Alice", "邀请你视频通话", none, ""));
  // The thread identifier names the user when the sender is missing.
  EXPECT_TRUE(notify::callDetectionBlocks("", "Bob", "视频 call", none, "bob"));
  // A plain message of a hidden secret: mode 0 only.
  EXPECT_FALSE(notify::callDetectionBlocks("bob", "Bob", "hello", none, ""));
  setMode(0);
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "hello", none, ""));
  // A call the switches allow still goes while hidden in mode 0, but not revealed.
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "邀请你语音通话", none, ""));
  config().setUnlocked(true);
  EXPECT_FALSE(notify::callDetectionBlocks("bob", "Bob", "邀请你语音通话", none, ""));
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "邀请你视频通话", none, ""));
  setSwitches(true, true);
  EXPECT_FALSE(notify::callDetectionBlocks("bob", "Bob", "邀请你视频通话", none, ""))
      << "both switches on: no kind blocks";
  setSwitches(false, false);
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "VoIP", none, "")) << "case folded";
  EXPECT_TRUE(notify::callDetectionBlocks("bob", "Bob", "hi", dict({{"kind", str("CALL")}}), ""))
      << "read from the user info's description";
  EXPECT_FALSE(notify::callDetectionBlocks("bob", "Bob", "hi", dict({{"kind", str("text")}}), ""));
}

}  // namespace

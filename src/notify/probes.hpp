// The usernames a notification or call carries, read out of host objects by
// fixed key lists tried in order (the first non-empty string wins). Message
// objects, notification user-info dictionaries, call callers and invitation
// callers each have their own list. Nothing here raises: a key the object
// cannot answer is skipped.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

#include "rt/types.hpp"

namespace notify {

// A username counts as secret when it is non-empty and in the secret set.
bool isSecret(std::string_view username);

// The sender of a message: a group chat wins, the user's own outgoing message
// gives its receiver, nested message objects are searched, and a non-secret
// answer gets a second opinion from the toolkit.
std::string messageSender(rt::Id message);
// The caller of a call notification or call message.
std::string callCaller(rt::Id obj);
// The caller of a call that came by VoIP push.
std::string voipPushCaller(rt::Id obj);
// The caller of a call invitation, nested invitations and caller contacts
// included.
std::string inviteCaller(rt::Id obj);
// A test of one non-empty string: is it a secret's username?
using NameTest = std::function<bool(std::string_view)>;
// Whether a user-info dictionary, or one nested in it, holds a string value
// (under any key) that `named` accepts.
bool userInfoHolds(rt::Id userInfo, const NameTest& named);
// Whether a user-info dictionary, or one nested in it, holds a secret
// username under one of its keys or as any string value.
bool userInfoHoldsSecret(rt::Id userInfo);
// The rule for a notification's identifiers: its thread identifier, or any
// string of its user info, named.
bool partsName(rt::Id userInfo, std::string_view threadIdentifier, const NameTest& named);
// The first non-empty string of `keys` on `obj`; "" when none.
std::string firstString(rt::Id obj, std::initializer_list<const char*> keys);

inline constexpr const char* kMessageSenderKeys[] = {
    "m_nsFromUsr",      "m_nsToUsr",          "m_nsChatRoomName", "m_nsRealChatUsr",
    "m_nsFromUserName", "m_fromUserName",     "fromUserName",     "fromUsername",
    "m_nsUsrName",      "username",           "userName",         "sessionUserName",
    "callerUserName",   "realCallerUserName", "inviteUserName",   "mCaller",
    "m_nsFromUserName", "FromUserName",       "mRemoteUserName",  "talkUserName",
    "m_fromUser",       "callerUsername",     "mInviteUserName",  "wxInviteUserName",
    "inviterUserName",  "inviterUsrName",     "fromUser",         "msgFromUserName"};
inline constexpr const char* kNestedMessageKeys[] = {
    "msgWrap", "messageWrap",   "m_msgWrap",     "contact",        "m_contact",
    "monoMsg", "m_voipMonoMsg", "inviteMonoMsg", "invitationInfo", "info"};
inline constexpr const char* kNestedInvitationKeys[] = {
    "invitationInfo",    "info",     "_invitationInfo", "_info",
    "m_invitationInfo",  "monoMsg",  "m_voipMonoMsg",   "inviteMonoMsg",
    "inviteMessageWrap", "m_monoMsg"};
inline constexpr const char* kCallerContactKeys[] = {"callerContact", "fromUserContact", "contact",
                                                     "m_contact", "_callerContact"};

}  // namespace notify

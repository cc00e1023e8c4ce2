// The invitation guard: replacements for the host's incoming-call invitation
// paths (the invite message, the mono-service start and handle steps, the
// invitation views and their updates, the classic vibration, the missed-call
// red dot) and the one-entry suppression record they share. They are complete
// and tested but deliberately not installed by QBNotifyHooks; whoever installs
// one names the host class and selector it replaces.
#pragma once

#include <string>
#include <string_view>

#include "rt/types.hpp"

namespace notify {

enum class InviteHook {
  ProcessInviteMsg,      // qb_processInviteMsg:
  MonoStart,             // qb_onMonoServiceMsgStartWithMsg:
  IlinkMonoStart,        // qb_ilink_onMonoServiceMsgStartWithMsg:
  MultiMonoStart,        // qb_multi_onMonoServiceMsgStartWithMsg:
  MpMonoStart,           // qb_mp_onMonoServiceMsgStartWithMsg:
  MonoHandle,            // qb_onMonoServiceMsgHandleWithMsg:
  StartVoipView,         // + qb_startVoipViewByVoipMonoMsg:
  IlinkStartVoipView,    // + qb_ilink_startVoipViewByVoipMonoMsg:
  HandleInviteMonoMsg,   // + qb_handleInviteMonoMsg:
  HandleInvitationInfo,  // qb_handleInvitationInfo:withTalkingRoomID:talkingRoomKey:
  WillScollIn,           // qb_voIPInvitationViewController:willScollInWithInfo:
  DidScollIn,            // qb_voIPInvitationViewController:didScollInWithInfo:
  SvcUpdate,             // qb_svc_updateWithInvitationInfo:
  VcUpdate,              // qb_vc_updateWithInvitationInfo:
  VibrateClassic,        // qb_vibrateClassicIfNeed
  LoadBreadthView,       // qb_loadBreadthView
  ReceiveInvite,         // qb_receiveInviteMsg:fromUsername:withMsgWrap:isMultiTalk:notifyFrom:
  AddMissedRedTips,      // qb_addMissedVoIPRedTipsWithMsg:
};

// The qb_ selector of a replacement, and whether it replaces a class method.
const char* inviteSelector(InviteHook which);
bool inviteIsClassMethod(InviteHook which);
// Exchanges `selector` of `cls` (a class method where the hook is one) with
// the replacement. False when the class lacks the selector.
bool installInviteHook(InviteHook which, rt::Class cls, std::string_view selector);

// An invitation the call kind rule blocks: not the user's own call, and a
// secret caller (video by video detection).
bool inviteBlocked(rt::Id m);

// The suppression record: one entry, process-wide, absolute time.
inline constexpr double kInviteSuppression_s = 45.0;
void suppressInvitesFrom(const std::string& username);  // "" stands for any caller ("*")
bool inviteSuppressedFor(const std::string& caller);
struct InviteSuppression {
  std::string username;
  double expiry = 0;
};
InviteSuppression currentInviteSuppression();

// Hides every invitation view of every window now (while the app is active)
// and again 0.08 s later.
void hideInvitationViews();

}  // namespace notify

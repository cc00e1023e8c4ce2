#include "notify/invite_guard.hpp"

#include <algorithm>
#include <array>
#include <mutex>

#include "host/hook.hpp"
#include "notify/notify_state.hpp"
#include "notify/predicates.hpp"
#include "notify/probes.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/process_state.hpp"
#include "sys/queue.hpp"

namespace notify {
namespace {

using rt::SEL;

constexpr double kSecondHidePass_s = 0.08;
constexpr std::size_t kHooks = std::size_t(InviteHook::AddMissedRedTips) + 1;

struct InviteState {
  std::mutex mutex;  // the record may be read from the host's other threads
  InviteSuppression record;
  std::array<host::Hook<void(Id)>, kHooks> oneArg;
  host::Hook<void(Id, Id)> viewInfo[2];  // will / did scroll in
  host::Hook<void()> noArg[2];           // vibrate, load breadth view
  host::Hook<void(Id, long, Id)> invitationInfo;
  host::Hook<void(Id, Id, Id, bool, long)> receiveInvite;
};

InviteState& st() { return sys::state<InviteState>(); }

bool viewBlocked(Id info) { return inviteBlocked(info) || inviteSuppressedFor(inviteCaller(info)); }

void hidePass() {
  rt::Class appClass = rt::getClass("UIApplication");
  Id app = appClass ? rt::send<Id>(appClass, "sharedApplication") : nullptr;
  if (!app || rt::send<long>(app, "applicationState") != 0) return;
  std::vector<Id> stack;
  for (Id w : rt::elements(rt::send<Id>(app, "windows"))) stack.push_back(w);
  std::reverse(stack.begin(), stack.end());
  while (!stack.empty()) {
    Id v = stack.back();
    stack.pop_back();
    if (rt::className(v).find("InvitationBreadth") != std::string_view::npos) {
      rt::send<void>(v, "setHidden:", true);
      rt::send<void>(v, "setAlpha:", 0.0);
      rt::send<void>(v, "setUserInteractionEnabled:", false);
    }
    std::vector<Id> subs = rt::elements(rt::send<Id>(v, "subviews"));
    for (auto it = subs.rbegin(); it != subs.rend(); ++it) stack.push_back(*it);
  }
}

// Each invitation hook's failure line, in InviteHook order.
constexpr const char* kExLines[] = {
    "[QB] QBNotifyHooks processInviteMsg: ex: %@",
    "[QB] QBNotifyHooks onMonoServiceMsgStartWithMsg: ex: %@",
    "[QB] QBNotifyHooks ilink_onMonoServiceMsgStartWithMsg: ex: %@",
    "[QB] QBNotifyHooks multi_onMonoServiceMsgStartWithMsg: ex: %@",
    "[QB] QBNotifyHooks mp_onMonoServiceMsgStartWithMsg: ex: %@",
    "[QB] QBNotifyHooks onMonoServiceMsgHandleWithMsg: ex: %@",
    "[QB] QBNotifyHooks startVoipViewByVoipMonoMsg: ex: %@",
    "[QB] QBNotifyHooks ilink_startVoipViewByVoipMonoMsg: ex: %@",
    "[QB] QBNotifyHooks handleInviteMonoMsg: ex: %@",
    "[QB] QBNotifyHooks handleInvitationInfo:withTalkingRoomID:talkingRoomKey: ex: %@",
    "[QB] QBNotifyHooks voIPInvitationViewController:willScollInWithInfo: ex: %@",
    "[QB] QBNotifyHooks voIPInvitationViewController:didScollInWithInfo: ex: %@",
    "[QB] QBNotifyHooks svc_updateWithInvitationInfo: ex: %@",
    "[QB] QBNotifyHooks vc_updateWithInvitationInfo: ex: %@",
    "[QB] QBNotifyHooks vibrateClassicIfNeed ex: %@",
    "[QB] QBNotifyHooks loadBreadthView ex: %@",
    "[QB] QBNotifyHooks receiveInviteMsg:fromUsername:withMsgWrap:isMultiTalk:notifyFrom: ex: %@",
    "[QB] QBNotifyHooks addMissedVoIPRedTipsWithMsg: ex: %@",
};

template <InviteHook W>
constexpr const char* exLineOf() {
  return kExLines[std::size_t(W)];
}

// --- The replacements of one message argument.

template <InviteHook W>
void dropWhenBlocked(Id self, SEL cmd, Id m) {
  st().oneArg[std::size_t(W)].run(
      exLineOf<W>(),
      [&](auto& original) {
        if (!inviteBlocked(m)) {
          original(m);
        } else if (W == InviteHook::ProcessInviteMsg) {
          sys::log("[QB] block incoming voip invite");
        }
      },
      self, cmd, m);
}

void handleInviteMonoMsg(Id self, SEL cmd, Id m) {
  st().oneArg[std::size_t(InviteHook::HandleInviteMonoMsg)].run(
      exLineOf<InviteHook::HandleInviteMonoMsg>(),
      [&](auto& original) {
        if (inviteBlocked(m)) {
          std::string caller = inviteCaller(m);
          sys::log("[QB] suppress handleInviteMonoMsg %@",
                   sys::privately(caller.empty() ? std::string("?") : caller));
          suppressInvitesFrom(caller);
        }
        original(m);
        InviteSuppression r = currentInviteSuppression();
        if (!r.username.empty() && sys::absoluteTime() < r.expiry) hideInvitationViews();
      },
      self, cmd, m);
}

template <InviteHook W>
void updateWithInfo(Id self, SEL cmd, Id info) {
  st().oneArg[std::size_t(W)].run(
      exLineOf<W>(),
      [&](auto& original) {
        if (!viewBlocked(info)) {
          original(info);
          return;
        }
        sys::log(W == InviteHook::SvcUpdate ? "[QB] block invitation update (svc)"
                                            : "[QB] block invitation update (vc)");
        hideInvitationViews();
      },
      self, cmd, info);
}

void addMissedRedTips(Id self, SEL cmd, Id m) {
  st().oneArg[std::size_t(InviteHook::AddMissedRedTips)].run(
      exLineOf<InviteHook::AddMissedRedTips>(),
      [&](auto& original) {
        if (!inviteBlocked(m) && !callLeftover(m)) original(m);
      },
      self, cmd, m);
}

template <int I>
void scrollIn(Id self, SEL cmd, Id controller, Id info) {
  st().viewInfo[I].run(
      exLineOf < I == 0 ? InviteHook::WillScollIn : InviteHook::DidScollIn > (),
      [&](auto& original) {
        if (!viewBlocked(info)) {
          original(controller, info);
          return;
        }
        if (I == 0) sys::log("[QB] block willScollIn float");
        hideInvitationViews();
      },
      self, cmd, controller, info);
}

// The view itself carries the invitation it shows.
void vibrateClassic(Id self, SEL cmd) {
  st().noArg[0].run(
      exLineOf<InviteHook::VibrateClassic>(),
      [&](auto& original) {
        if (!viewBlocked(self)) original();
      },
      self, cmd);
}

void loadBreadthView(Id self, SEL cmd) {
  st().noArg[1].run(
      exLineOf<InviteHook::LoadBreadthView>(),
      [&](auto& original) {
        if (!viewBlocked(self)) {
          original();
          return;
        }
        sys::log("[QB] block loadBreadthView");
        hideInvitationViews();
      },
      self, cmd);
}

void handleInvitationInfo(Id self, SEL cmd, Id info, long roomID, Id roomKey) {
  st().invitationInfo.run(
      exLineOf<InviteHook::HandleInvitationInfo>(),
      [&](auto& original) {
        bool block = inviteBlocked(info);
        if (block) {
          sys::log("[QB] silence handleInvitationInfo (pass-through)");
          suppressInvitesFrom(inviteCaller(info));
        }
        original(info, roomID, roomKey);
        if (block) hideInvitationViews();
      },
      self, cmd, info, roomID, roomKey);
}

void receiveInvite(Id self, SEL cmd, Id m, Id from, Id wrap, bool multiTalk, long notifyFrom) {
  st().receiveInvite.run(
      exLineOf<InviteHook::ReceiveInvite>(),
      [&](auto& original) {
        std::string caller = rt::asString(from).value_or("");
        if (caller.empty()) caller = inviteCaller(m);
        if (caller.empty()) caller = inviteCaller(wrap);
        bool block =
            !isOutgoingCall(m) && callKindBlocks(caller, isVideoCall(m) || isVideoCall(wrap));
        if (block) {
          sys::log("[QB] suppress receiveInvite from %@ (pass-through)", sys::privately(caller));
          suppressInvitesFrom(caller);
        }
        original(m, from, wrap, multiTalk, notifyFrom);
        if (block) hideInvitationViews();
      },
      self, cmd, m, from, wrap, multiTalk, notifyFrom);
}

struct Row {
  const char* qbSelector;
  bool classMethod;
};

constexpr Row kRows[kHooks] = {
    {"qb_processInviteMsg:", false},
    {"qb_onMonoServiceMsgStartWithMsg:", false},
    {"qb_ilink_onMonoServiceMsgStartWithMsg:", false},
    {"qb_multi_onMonoServiceMsgStartWithMsg:", false},
    {"qb_mp_onMonoServiceMsgStartWithMsg:", false},
    {"qb_onMonoServiceMsgHandleWithMsg:", false},
    {"qb_startVoipViewByVoipMonoMsg:", true},
    {"qb_ilink_startVoipViewByVoipMonoMsg:", true},
    {"qb_handleInviteMonoMsg:", true},
    {"qb_handleInvitationInfo:withTalkingRoomID:talkingRoomKey:", false},
    {"qb_voIPInvitationViewController:willScollInWithInfo:", false},
    {"qb_voIPInvitationViewController:didScollInWithInfo:", false},
    {"qb_svc_updateWithInvitationInfo:", false},
    {"qb_vc_updateWithInvitationInfo:", false},
    {"qb_vibrateClassicIfNeed", false},
    {"qb_loadBreadthView", false},
    {"qb_receiveInviteMsg:fromUsername:withMsgWrap:isMultiTalk:notifyFrom:", false},
    {"qb_addMissedVoIPRedTipsWithMsg:", false},
};

template <typename Sig, typename Fn>
bool install(host::Hook<Sig>& hook, rt::Class cls, std::string_view selector, const Row& row,
             Fn fn) {
  if (!cls) return false;
  if (row.classMethod) {
    rt::Method m = rt::getClassMethod(cls, rt::sel(selector));
    const char* types = m ? rt::typeEncoding(m) : nullptr;
    return m && hook.exchangeClassMethod(cls, selector, row.qbSelector, fn, types ? types : "v@:");
  }
  if (!rt::getInstanceMethod(cls, rt::sel(selector))) return false;
  return hook.swizzle(categoryOwner(), cls, selector, row.qbSelector, fn);
}

}  // namespace

const char* inviteSelector(InviteHook which) { return kRows[std::size_t(which)].qbSelector; }
bool inviteIsClassMethod(InviteHook which) { return kRows[std::size_t(which)].classMethod; }

bool installInviteHook(InviteHook which, rt::Class cls, std::string_view selector) {
  InviteState& s = st();
  const Row& row = kRows[std::size_t(which)];
  auto& one = s.oneArg[std::size_t(which)];
  using H = InviteHook;
  switch (which) {
    case H::ProcessInviteMsg:
      return install(one, cls, selector, row, dropWhenBlocked<H::ProcessInviteMsg>);
    case H::MonoStart:
      return install(one, cls, selector, row, dropWhenBlocked<H::MonoStart>);
    case H::IlinkMonoStart:
      return install(one, cls, selector, row, dropWhenBlocked<H::IlinkMonoStart>);
    case H::MultiMonoStart:
      return install(one, cls, selector, row, dropWhenBlocked<H::MultiMonoStart>);
    case H::MpMonoStart:
      return install(one, cls, selector, row, dropWhenBlocked<H::MpMonoStart>);
    case H::MonoHandle:
      return install(one, cls, selector, row, dropWhenBlocked<H::MonoHandle>);
    case H::StartVoipView:
      return install(one, cls, selector, row, dropWhenBlocked<H::StartVoipView>);
    case H::IlinkStartVoipView:
      return install(one, cls, selector, row, dropWhenBlocked<H::IlinkStartVoipView>);
    case H::HandleInviteMonoMsg:
      return install(one, cls, selector, row, handleInviteMonoMsg);
    case H::HandleInvitationInfo:
      return install(s.invitationInfo, cls, selector, row, handleInvitationInfo);
    case H::WillScollIn:
      return install(s.viewInfo[0], cls, selector, row, scrollIn<0>);
    case H::DidScollIn:
      return install(s.viewInfo[1], cls, selector, row, scrollIn<1>);
    case H::SvcUpdate:
      return install(one, cls, selector, row, updateWithInfo<H::SvcUpdate>);
    case H::VcUpdate:
      return install(one, cls, selector, row, updateWithInfo<H::VcUpdate>);
    case H::VibrateClassic:
      return install(s.noArg[0], cls, selector, row, vibrateClassic);
    case H::LoadBreadthView:
      return install(s.noArg[1], cls, selector, row, loadBreadthView);
    case H::ReceiveInvite:
      return install(s.receiveInvite, cls, selector, row, receiveInvite);
    case H::AddMissedRedTips:
      return install(one, cls, selector, row, addMissedRedTips);
  }
  return false;
}

bool inviteBlocked(Id m) {
  if (!m || rt::isNull(m) || isOutgoingCall(m)) return false;
  return callKindBlocks(inviteCaller(m), isVideoCall(m));
}

void suppressInvitesFrom(const std::string& username) {
  InviteState& s = st();
  std::string who = username.empty() ? "*" : username;
  {
    std::lock_guard lock(s.mutex);
    s.record = {who, sys::absoluteTime() + kInviteSuppression_s};
  }
  sys::log("[QB] invite suppress %@ for 45s", sys::privately(who));
}

bool inviteSuppressedFor(const std::string& caller) {
  InviteSuppression r = currentInviteSuppression();
  if (r.username.empty() || sys::absoluteTime() >= r.expiry) return false;
  return r.username == "*" || r.username == caller || isSecret(caller);
}

InviteSuppression currentInviteSuppression() {
  InviteState& s = st();
  std::lock_guard lock(s.mutex);
  return s.record;
}

void hideInvitationViews() {
  sys::async(hidePass);
  sys::after(kSecondHidePass_s, hidePass);
}

}  // namespace notify
